#pragma once

#include <string>

namespace Zorvan::test {

struct ChildResult
{
    int exitCode = -1; ///< -1: it ended by a signal
    int signal = 0;
    std::string output; ///< its standard output
};

/// Runs a shell command to its end; environment assignments may stand before the program.
[[nodiscard]] ChildResult runChild(const std::string &command);

} // namespace Zorvan::test
