#pragma once

#include "debug/moduletable.h"

#include <string>

namespace Zorvan {

/// Whether a header may ask the host for its clock and its thread names.
enum class HostCalls {
    Allowed,
    Forbidden, ///< callbacks are nested too deeply: the clock stands still, the thread has no name
};

/// Appends the header of a line as the display flags want it: time stamp, thread, module, class, level.
void appendLineHeader(std::string &line, moduleId module, int cls, int level, unsigned displayFlags,
                      HostCalls hostCalls) ZORVAN_REQUIRES(moduleTable().lock());

} // namespace Zorvan
