#pragma once

#include <zorvan/debug.h>

namespace Zorvan {

/// Debug::println() for a message that the switches of its module do not refuse at once. Any thread.
void printUnlessRefused(moduleId module, int cls, const QString &text, int level, int reserved,
                        const char *file, int line);

} // namespace Zorvan
