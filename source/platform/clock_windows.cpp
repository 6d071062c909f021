#include "platform/clock.h"

#include <ctime>
#include <windows.h>

namespace Zorvan::platform {
namespace {

constexpr std::int64_t ticksPerMillisecond = 10'000;
constexpr std::int64_t ticksPerSecond = 1000 * ticksPerMillisecond;
constexpr std::int64_t secondsFrom1601To1970 = 11'644'473'600;

} // namespace

WallClock wallClock()
{
    FILETIME now{};
    GetSystemTimePreciseAsFileTime(&now);
    const auto ticks =
        static_cast<std::int64_t>((static_cast<std::uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime);
    return {ticks / ticksPerSecond - secondsFrom1601To1970,
            static_cast<int>(ticks % ticksPerSecond / ticksPerMillisecond)};
}

std::size_t formatLocalTime(char *buffer, std::size_t capacity, const char *format, std::int64_t seconds)
{
    const __time64_t time = seconds;
    std::tm local{};
    if (_localtime64_s(&local, &time) != 0)
        return 0;
    return std::strftime(buffer, capacity, format, &local);
}

} // namespace Zorvan::platform
