#pragma once

#include <zorvan/debug.h>

namespace Zorvan::host {

/// Whether a message class of a module is switched on, whatever the module's clipping level lets through.
/// False for an unknown module or class. Any thread. The module table, which the lower rooms cannot include,
/// defines it.
[[nodiscard]] bool isClassEnabled(moduleId module, int cls);

} // namespace Zorvan::host
