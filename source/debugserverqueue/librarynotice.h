#pragma once

#include "host/tablestate.h"

#include <zorvan/debug.h>

namespace Zorvan {

/// Prints something that whoever watches the output should know: as critical, so that it shows unless the
/// library's module is silenced. Any thread, with no lock held.
inline void libraryNotice(const QString &text)
{
    Debug::println(libraryModule, 0, text, 0);
}

} // namespace Zorvan
