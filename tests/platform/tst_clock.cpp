#include "platform/clock.h"
#include "support.h"

#include <array>
#include <ctime>
#include <gtest/gtest.h>

namespace Zorvan::platform::tests {
namespace {

using namespace std::chrono_literals;

std::string formatted(const char *format, std::int64_t seconds, std::size_t capacity = 64)
{
    std::array<char, 64> buffer{};
    return {buffer.data(), formatLocalTime(buffer.data(), capacity, format, seconds)};
}

TEST(Clock, wallClockAgreesWithTheStandardLibrary)
{
    const auto now = [] { return std::chrono::system_clock::now().time_since_epoch(); };
    const auto before = std::chrono::floor<std::chrono::milliseconds>(now());
    const WallClock clock = wallClock();
    const auto after = now();
    EXPECT_GE(clock.milliseconds, 0);
    EXPECT_LE(clock.milliseconds, 999);
    const auto reading = std::chrono::seconds(clock.seconds) + std::chrono::milliseconds(clock.milliseconds);
    // Some systems keep two clocks for the time of day, the coarse one behind by up to a tick.
    EXPECT_GE(reading, before - 20ms);
    EXPECT_LE(reading, after + 20ms);
}

TEST(Clock, localTimeFollowsTheZone)
{
    Variable zone("TZ", "XYZ-2");
    tzset();
    EXPECT_EQ(formatted("%Y-%m-%d %H:%M:%S", 1'700'000'000), "2023-11-15 00:13:20");
    EXPECT_EQ(formatted("%Y-%m-%d", 4'102'444'800), "2100-01-01") << "beyond 32 bits";
    EXPECT_EQ(formatted("%H:%M:%S", 0, 4), "") << "does not fit";
    zone.set("UTC0");
    tzset();
    EXPECT_EQ(formatted("%H:%M:%S", 1'700'000'000), "22:13:20");
}

} // namespace
} // namespace Zorvan::platform::tests
