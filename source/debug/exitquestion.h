#pragma once

namespace Zorvan {

/// Shows the window large and asks over the debug daemon whether its text is to be saved in the output file,
/// if the host's setting "enableQuitMessage" is 1. Nothing happens without a window, or outside the GUI
/// thread. Without a daemon the answer is no. Runs code of the host; waits for the answer without a limit.
void offerToSaveWindowText();

} // namespace Zorvan
