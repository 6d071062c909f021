#pragma once

namespace Zorvan::host {

/// Stores the present configuration as the one of the next start: classes and levels of the modules in use,
/// filters, display flags, output file, remote access. A process that is watched by another one, or watches
/// one, leaves the stored filters alone.
///
/// Any thread, with no lock held: the hook "DebugServerMakeDefaultHook" is activated.
void saveConfiguration();

} // namespace Zorvan::host
