#pragma once

/// The hook registry behind the facade's hook calls, as the rest of the library uses it.

#include <zorvan/debug.h>

class QThread;

namespace Zorvan::hooks {

/// Installs the handler of the library's own keys, without telling the window. Takes only the lock of the
/// registry. The keys belong to the queue, which is made and ended with them; their handler lives for ever,
/// since hooks may run beside the queue's end.
void installLibraryHooks();
void removeLibraryHooks();

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
