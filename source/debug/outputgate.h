#pragma once

/// Whether anything is printed at all: the switches that stand before those of the modules.

#include "debug/moduletable.h"

namespace Zorvan {

/// Finds out whether any module can print. \a enable is remembered as the output-enabled flag; without it
/// nothing prints until the next call with true.
void setupOutputEnabled(bool enable);
[[nodiscard]] bool outputEnabled();

/// Makes several changes of modules and switches one, with the table locked. Questions of other threads wait
/// for its end: halfway there messages would be refused that pass before and after. Scopes may lie inside
/// each other.
class ZORVAN_SCOPED_CAPABILITY ChangeScope
{
public:
    ChangeScope() ZORVAN_ACQUIRE(moduleTable().lock());
    ~ChangeScope() ZORVAN_RELEASE();
    ChangeScope(const ChangeScope &) = delete;
    ChangeScope &operator=(const ChangeScope &) = delete;
};

} // namespace Zorvan
