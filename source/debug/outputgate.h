#pragma once

/// Whether anything is printed at all: the switches that stand before those of the modules.

#include "debug/moduletable.h"

namespace Zorvan {

/// Notes that somebody asked about a module: from now on it has a prefix in the line header. Unknown ids and ids that
/// were not handed out yet are left alone.
void markInUse(moduleId module);

/// Finds out whether any module can print. \a enable is remembered as the output-enabled flag; without it nothing
/// prints until the next call with true.
void setOutputEnabled(bool enable);
[[nodiscard]] bool isOutputEnabled();

/// Back to the state at load: everything may print.
void resetOutputGate();

} // namespace Zorvan
