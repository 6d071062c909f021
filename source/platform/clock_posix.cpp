#include "platform/clock.h"

#include <ctime>
#include <time.h>

namespace Zorvan::platform {

WallClock wallClock()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return {now.tv_sec, static_cast<int>(now.tv_nsec / 1'000'000)};
}

std::size_t formatLocalTime(char *buffer, std::size_t capacity, const char *format, std::int64_t seconds)
{
    const std::time_t time = seconds;
    std::tm local{};
    if (localtime_r(&time, &local) == nullptr)
        return 0;
    return std::strftime(buffer, capacity, format, &local);
}

} // namespace Zorvan::platform
