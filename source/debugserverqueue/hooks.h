#pragma once

/// The hook registry behind the facade's hook calls, as the rest of the library uses it.

#include <zorvan/debug.h>

class QThread;

namespace Zorvan::hooks {

/// Installs the queue as handler of the library's own keys, without telling the window. Takes only the lock
/// of the registry.
void installLibraryHooks(IHookInterface *queue);
/// Takes the queue out of the registry again, and deletes the window of its hooks; harmless if it is not in
/// the registry. In the thread of the queue.
void removeLibraryHooks(IHookInterface *queue);

/// Joins and deletes a thread that has announced its end; nothing if that has happened already. GUI thread.
void reap(QThread *thread);
/// Asks all hook threads to end (QThread::isInterruptionRequested()) and waits up to two seconds for them,
/// but not for the caller. Those that still run then are left to themselves. Call with no lock held.
void endThreads();
/// Forgets all keys, handlers and adapters.
void release();

/// Makes the lock of the registry survive fork(). Idempotent; whoever registers locks that are taken before
/// this one calls it first.
void registerForkHandlers();

} // namespace Zorvan::hooks
