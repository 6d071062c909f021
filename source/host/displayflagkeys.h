#pragma once

/// The display flags and the keys of the host's settings that keep them from one start to the next.

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

struct FlagKey
{
    const char *key;
    Flag flag;
};

/// Stored as "On" or "Off". The module name has a key of its own, which is read before these.
constexpr FlagKey storedFlags[] = {
    {"DebugServerFileOutput", fileOutput},       {"DebugServerThrowAssert", throwAssertion},
    {"DebugServerShowTimestamp", timeStamp},     {"DebugServerShowThreadID", threadId},
    {"DebugServerConsoleOutput", consoleOutput}, {"DebugServerAllowClear", allowProgrammaticClear},
};
constexpr FlagKey storedModuleName{"DebugServerShowModule", moduleName};

} // namespace Zorvan::displayflags
