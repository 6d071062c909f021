#pragma once

namespace Zorvan {

/// Tells the user, in a box, that what was just changed takes effect at the next start of the host. Returns
/// when the box was closed; the caller's window may be gone by then. The GUI thread only.
void showRestartMessage();

} // namespace Zorvan
