#pragma once

#include <string>

namespace SignalGenerator {

/// What stands on the command line.
struct Options
{
    std::string script; ///< empty: none given; "-": standard input
    std::string settings;
    std::string analysis; ///< "on" or "off": switch the analysis tools for the next start, and end
    std::string picture; ///< not empty: the autopilot drives the panel and saves its picture here
    std::string collector; ///< "HOST:PORT" of a syslog collector; empty: none
    std::string name; ///< the instrument's name there; empty: that of the machine
    bool headless = false;
    bool help = false;
};

extern const char *const usage;

/// False if the command line is wrong.
[[nodiscard]] bool parseOptions(int count, const char *const *arguments, Options &options);

} // namespace SignalGenerator
