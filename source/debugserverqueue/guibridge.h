#pragma once

/// The road into the GUI thread, as the message core sees it.
///
/// This version has no queue in the GUI thread: finished lines go to the standard output, and requests for
/// the debug window are dropped, as they are whenever there is no window. What the host tells about its GUI
/// is kept. Any thread.

#include <zorvan/debug.h>

namespace Zorvan::guibridge {

/// Whether a Qt application object exists and is neither starting up nor closing down. Asked anew each time:
/// an application may end and another one start.
[[nodiscard]] bool qtApplicationRuns();

/// Makes the queue if a Qt application runs. True if there is a queue to take lines.
bool usingQt();
[[nodiscard]] bool queueExists();

/// Ask the window to show changed names and prefixes, or changed levels. Dropped unless a queue exists, a Qt
/// application runs and the event loop was reported as running.
void requestRebuild();
void requestRedraw();

void setEventLoopRunning(bool running);
[[nodiscard]] bool eventLoopRunning();
void setGuiThreadId(void *id);
[[nodiscard]] void *guiThreadId();
void setExternalWindow(DebugWindow *window);
[[nodiscard]] DebugWindow *externalWindow();
/// The table was reset for a remote client that mirrors another process; see Debug::createModule().
void setClientMode();
[[nodiscard]] bool isClientMode();

/// Forgets the GUI thread and the state of its loop when the application they belonged to is gone.
void applicationGone();

} // namespace Zorvan::guibridge
