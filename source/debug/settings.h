#pragma once

namespace Zorvan {

/// Reads output file, size and display flags from the host's settings, as initDebug() does once per start.
void readStartSettings();

} // namespace Zorvan
