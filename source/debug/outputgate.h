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
class ZORVAN_SCOPED_CAPABILITY StartScope
{
public:
    StartScope() ZORVAN_ACQUIRE(moduleTable().lock());
    ~StartScope() ZORVAN_RELEASE();
    StartScope(const StartScope &) = delete;
    StartScope &operator=(const StartScope &) = delete;
};

} // namespace Zorvan
