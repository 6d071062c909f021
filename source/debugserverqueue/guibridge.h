#pragma once

/// The road into the GUI thread: how every thread reaches the one queue that lives there.
///
/// Any thread may call everything in here. The queue is made when a Qt application runs and something first
/// asks for it, and is disposed of by the last exitDebug() or with the application, whichever comes first.

#include <zorvan/debug.h>

#include <QEvent>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Zorvan {

class DebugServerQueue;

namespace guibridge {

/// Whether a Qt application object exists and is neither starting up nor closing down. Asked anew each time:
/// an application may end and another one start.
[[nodiscard]] bool qtApplicationRuns();
/// Whether the application that the queue was made for can show windows.
[[nodiscard]] bool canShowWindows();

/// Makes the queue if a Qt application runs. True if there is a queue to take lines.
bool usingQt();
[[nodiscard]] bool queueExists();
/// Whether the caller is in the thread in which the queue lives; false without a queue.
[[nodiscard]] bool isGuiThread();
/// The queue for callers in the GUI thread, where it cannot go away unnoticed; null in every other thread.
[[nodiscard]] DebugServerQueue *queueHere();

/// Hands an event over to the queue. False, and the event destroyed, without a queue.
bool post(std::unique_ptr<QEvent> event);
/// The same for an event whose answer somebody waits for: refused also when the event loop does not run.
bool postRequest(std::unique_ptr<QEvent> event);

/// Hands one finished Latin-1 line over to the queue. False: there is none to take it. Call inside a
/// TableLock, which pays at its end what the line costs; see afterlines.
bool handOver(std::string_view line);
/// Tells the queue that a batch has begun.
void announceLines();
/// How many lines were handed over since the last batch.
[[nodiscard]] std::int32_t waitingLines();
/// Counts anew from here; the lines go on waiting.
void forgetWaitingLines();
[[nodiscard]] bool linesWait();
/// Delivers the lines that wait, as one batch, to the standard output, where there is neither a remote client
/// nor a window; drops them if isWindowOutputDropped(). Any thread. \a batch lends its memory; see
/// PendingLines::take().
void deliverLines(std::string &batch);
/// Takes the lines that wait, for remote clients or the window. GUI thread. False: there was none.
[[nodiscard]] bool takeLines(std::string &batch);
/// Asks the host, once per process, whether batches are dropped that only a window would take. Before the
/// first batch is delivered, with no lock held: the host may do anything, even end the library.
void readOutputSettings();
[[nodiscard]] bool isWindowOutputDropped();
/// Drops the lines that wait and clears the window's text.
void clear();

/// Ask the window to show changed names and prefixes, or changed hooks and levels. Dropped unless a queue
/// exists, a Qt application runs and the event loop was reported as running.
void requestRebuild();
void requestRedraw();

/// Stopping the loop answers every request that still waits.
void setEventLoopRunning(bool running);
[[nodiscard]] bool eventLoopRunning();
void setGuiThreadId(void *id);
[[nodiscard]] void *guiThreadId();
void setExternalWindow(DebugWindow *window);
/// Null if there is none, or not any more.
[[nodiscard]] DebugWindow *externalWindow();
/// The table was reset for a remote client that mirrors another process; see Debug::createModule().
void setClientMode();
[[nodiscard]] bool isClientMode();
/// How many remote clients are connected. The window follows, at once if the caller is in its thread.
void setClientCount(int count);
[[nodiscard]] int clientCount();
/// Have the window follow the mode of the process, or the start of a hook with a thread of its own.
void announceModes();
/// Switches the output off and has the window drop its own, if there is one, unless in server mode.
void switchWindowOff();
void announceHookStart();
/// Stores the configuration as the host's default, with the window's own settings if there is one. In the
/// thread of the queue or without a queue. Runs code of the host.
void makeDefault();
/// The window; null if there is none, and outside its thread.
[[nodiscard]] DebugWindow *windowHere();
/// The window, after it has got all lines that wait; null if there is none, and outside its thread.
[[nodiscard]] DebugWindow *windowWithAllLines();
/// For the queue: there is a window now.
void setHasWindow(bool has);

/// Forgets the GUI thread and the state of its loop when the application they belonged to is gone.
void applicationGone();

/// Called by the queue when its loop handles the first event: from now on the calling thread is the one that
/// lines are not held back for.
void loopFound();

/// The window's title; null while none was set for the present queue. Setting it without a queue does
/// nothing.
void setWindowTitle(const QString &title);
[[nodiscard]] QString windowTitle();

/// Makes the locks of the road survive fork(). A child has no GUI thread: its lines go to the standard
/// output. Idempotent; whoever registers locks that are taken before these calls it first.
void registerForkHandlers();

/// \name The end of the queue
/// @{

/// What else must happen when the application object is destroyed; runs before the queue goes.
void setEndHandler(void (*handler)());
/// Has the queue, and what setEndHandler() named, end with the present or next application.
void watchApplicationEnd();

/// Disposes of the queue; until its end no other one is made, and lines go to the standard output.
///
/// First the road is closed: lines that wait are delivered and waiting requests answered, with the module
/// table locked, so that no line overtakes another. Then, with the lock released, running hooks are waited
/// for up to two seconds and the queue is deleted, later if the caller is not in the GUI thread.
class Ending
{
public:
    Ending();
    ~Ending();
    Ending(const Ending &) = delete;
    Ending &operator=(const Ending &) = delete;

    /// Call with the module table unlocked.
    void deleteQueue();

private:
    DebugServerQueue *m_queue = nullptr;
    bool m_isGuiThread = false;
};

/// For the queue's destructor.
void queueGone(DebugServerQueue *queue);

/// @}

} // namespace guibridge
} // namespace Zorvan
