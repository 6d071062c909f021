#pragma once

/// Clocks. Any thread.

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Zorvan::platform {

/// One reading of the wall clock: seconds and milliseconds of the same instant.
struct WallClock
{
    std::int64_t seconds; ///< since 1970-01-01 00:00 UTC
    int milliseconds; ///< 0 to 999
};
[[nodiscard]] WallClock wallClock();

/// Writes the local time of \a seconds as strftime() would with \a format; returns the length, 0 if it does
/// not fit. Costly (time-zone rules): cache the text for as long as the second lasts.
std::size_t formatLocalTime(char *buffer, std::size_t capacity, const char *format, std::int64_t seconds);

/// Cycles of the processor's time-stamp counter, or nanoseconds of a steady clock where there is none. Only
/// differences mean something.
[[nodiscard]] std::uint64_t cycleCounter();

/// Sleeps at least that long.
void sleepFor(std::chrono::milliseconds duration);

} // namespace Zorvan::platform
