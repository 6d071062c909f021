#pragma once

#include <QStringList>

namespace Zorvan::host {

/// What Debug::getHooks() lists, for the library's own use: the array of that call belongs to the host, whose
/// loop over it may come back here. Any thread. Defined beside the registry of hooks.
[[nodiscard]] QStringList hookKeys();

} // namespace Zorvan::host
