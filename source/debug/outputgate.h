#pragma once

/// Whether anything is printed at all: the switches that stand before those of the modules.

#include "debug/moduletable.h"

namespace Zorvan {

/// Finds out whether any module can print. \a enable is remembered as the output-enabled flag; without it
/// nothing prints until the next call with true.
void setupOutputEnabled(bool enable);
[[nodiscard]] bool outputEnabled();

/// The time in which the start builds and describes the modules one by one, with the table locked. Questions
/// of other threads wait for its end: half-described modules would refuse their messages.
class StartScope
{
public:
    StartScope();
    ~StartScope();
    StartScope(const StartScope &) = delete;
    StartScope &operator=(const StartScope &) = delete;

private:
    platform::Locked<platform::RecursiveLock> m_guard;
};

} // namespace Zorvan
