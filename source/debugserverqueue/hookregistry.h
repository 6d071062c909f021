#pragma once

#include "debugserverqueue/hookobject.h"
#include "platform/lock.h"

#include <zorvan/debug.h>

#include <QThread>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvan {

/// A handler as it is called: the host's own, which the host keeps alive, or an adapter, which lives as long
/// as a copy of this.
struct HookHandler
{
    explicit HookHandler(IHookInterface *hostHandler)
        : called(hostHandler)
    {}
    explicit HookHandler(std::shared_ptr<HookObject> shared)
        : called(shared.get())
        , adapter(std::move(shared))
    {}

    IHookInterface *called;
    std::shared_ptr<HookObject> adapter;
};
using HookHandlers = std::vector<HookHandler>;

/// Calls each handler with copies of its own. Call with no lock held.
void callHandlers(const HookHandlers &handlers, std::string_view key, std::string_view parameters);

/// The keys with their handlers, and the threads that run them.
///
/// Any thread. No function calls host code, prints, or destroys an adapter or a thread with the lock held.
class HookRegistry
{
public:
    using Threads = std::vector<std::shared_ptr<QThread>>;
    using AdapterFilter = std::function<bool(const HookObject &adapter)>;

    /// \name Keys: Latin-1 texts
    /// @{

    struct Key
    {
        bool direct = false; ///< as the first handler was installed
        HookHandlers handlers;
    };

    void install(const std::string &key, const HookHandler &handler, bool direct);
    /// Installs an adapter unless the key has one that \a isSame says is as good and whose target is alive.
    void installAdapter(const std::string &key, std::shared_ptr<HookObject> adapter,
                        const AdapterFilter &isSame);

    void remove(const std::string &key, const IHookInterface *handler);
    void removeAdapters(const std::string &key, const AdapterFilter &filter);
    void removeFromAllKeys(const IHookInterface *handler);
    void removeAllKeys();

    /// A copy; without handlers if the key is unknown.
    [[nodiscard]] Key find(std::string_view key) const;
    [[nodiscard]] std::vector<std::string> sortedKeys() const;
    /// @}

    /// \name Threads, from before their start until they are joined
    /// @{

    /// False: 1,000 of them run already.
    [[nodiscard]] bool addThread(const std::shared_ptr<QThread> &thread);
    /// How many were added, but do not run yet.
    [[nodiscard]] int startingThreads() const;
    /// The first thing that a thread does.
    void threadBegins(const QThread *thread);
    /// Forgets a thread that could not be started.
    void dropThread(const QThread *thread);
    /// The last thing that a thread does, but for passing its end on.
    void threadEnds(const QThread *thread);

    [[nodiscard]] Threads threads() const;
    /// Takes a thread out if it has ended; null if it has not, or if another one has taken it.
    [[nodiscard]] std::shared_ptr<QThread> takeEndedThread(const QThread *thread);
    [[nodiscard]] Threads takeEndedThreads();
    /// Waits until all threads but the calling one have ended, and gives up those that have not by then.
    void waitForThreads(std::chrono::milliseconds limit);
    /// @}

    /// \name Around fork()
    /// @{
    void holdForFork() ZORVAN_ACQUIRE(m_lock) { m_lock.lock(); }
    void releaseInParent() ZORVAN_RELEASE(m_lock) { m_lock.unlock(); }
    void releaseInChild() ZORVAN_RELEASE(m_lock);
    /// @}

private:
    struct Thread
    {
        std::shared_ptr<QThread> thread;
        bool hasBegun = false;
        bool hasEnded = false;
        bool isGivenUp = false; ///< an end has waited for it in vain; no other one does
    };
    using Keys = std::map<std::string, Key, std::less<>>;
    using Predicate = std::function<bool(const HookHandler &handler)>;

    [[nodiscard]] Key &keyFor(const std::string &key, bool direct) ZORVAN_REQUIRES(m_lock);
    [[nodiscard]] HookHandlers takeHandlers(const std::string &key, const Predicate &matches)
        ZORVAN_REQUIRES(m_lock);
    [[nodiscard]] std::vector<Thread>::iterator findThread(const QThread *thread) ZORVAN_REQUIRES(m_lock);
    [[nodiscard]] bool anyRunsBut(const QThread *thread) const ZORVAN_REQUIRES(m_lock);

    mutable platform::Mutex m_lock;
    Keys m_keys ZORVAN_GUARDED_BY(m_lock);
    std::vector<Thread> m_threads ZORVAN_GUARDED_BY(m_lock);
    std::vector<Thread> m_parentsThreads ZORVAN_GUARDED_BY(m_lock); // they run, but not in this process
    platform::WaitCondition m_threadEnded;
};

/// The one registry of the process, never destroyed: threads and static objects of the host may outlive the
/// library's own static objects.
HookRegistry &hookRegistry();

} // namespace Zorvan
