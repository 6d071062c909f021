#pragma once

/// The word of display flags. Any thread.

namespace Zorvan::displayflags {

enum Flag : unsigned {
    fileOutput = 1,
    moduleName = 2,
    classDescription = 4,
    levelDescription = 8,
    throwAssertion = 16,
    allowProgrammaticClear = 32,
    timeStamp = 256,
    threadId = 512,
    consoleOutput = 1024, ///< kept and reported; changes no sink
};

[[nodiscard]] unsigned word();
[[nodiscard]] inline bool has(unsigned word, Flag flag)
{
    return (word & flag) != 0;
}
/// Changes one flag and prints the notice about all of them.
void change(Flag flag, bool on);
/// Back to the default: module name, class and level are shown.
void reset();

} // namespace Zorvan::displayflags
