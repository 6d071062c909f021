#pragma once

#include "modules.h"

#include <chrono>

namespace SignalGenerator {

/// A debug message that begins with red is red in the debug window and in a terminal; plain at its end ends
/// that for the terminal.
namespace Color {
constexpr const char *red = "\x1b[31m";
constexpr const char *plain = "\x1b[0m";
} // namespace Color

/// Prints a debug message (printf format, at most 1,023 characters, Latin-1) from any thread.
///
/// It asks the library first and formats only what somebody wants to see, so calls may stay in hot paths.
ZORVAN_PRINTF_FORMAT(3, 4)
void print(Zorvan::moduleId module, int level, const char *format, ...);

/// The same on a class of the module's own.
ZORVAN_PRINTF_FORMAT(4, 5)
void printClass(Zorvan::moduleId module, int messageClass, int level, const char *format, ...);

/// Prints how long its scope took, in microseconds, as a time measurement of \a module.
class TimeMeasurement
{
public:
    /// \a what is kept as a pointer: pass a literal.
    TimeMeasurement(Zorvan::moduleId module, const char *what);
    ~TimeMeasurement();
    TimeMeasurement(const TimeMeasurement &) = delete;
    TimeMeasurement &operator=(const TimeMeasurement &) = delete;

private:
    const Zorvan::moduleId m_module;
    const char *const m_what;
    const std::chrono::steady_clock::time_point m_start;
};

} // namespace SignalGenerator
