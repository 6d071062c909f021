#include "debugserverqueue/hookregistry.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Zorvan {

namespace {

constexpr std::ptrdiff_t mostThreads = 1000; // clients far away trigger hooks, as often as they like

bool has(const HookHandlers &handlers, const IHookInterface *handler)
{
    return std::any_of(handlers.begin(), handlers.end(),
                       [handler](const HookHandler &each) { return each.called == handler; });
}

} // namespace

void callHandlers(const HookHandlers &handlers, std::string_view key, std::string_view parameters)
{
    for (const HookHandler &handler : handlers) {
        std::string ownKey(key);
        std::string ownParameters(parameters);
        handler.called->hookActivated(ownKey.data(), ownParameters.data());
    }
}

HookRegistry &hookRegistry()
{
    static auto *const registry = new HookRegistry;
    return *registry;
}

HookRegistry::Key &HookRegistry::keyFor(const std::string &key, bool direct)
{
    Key &entry = m_keys[key];
    if (entry.handlers.empty())
        entry.direct = direct;
    return entry;
}

void HookRegistry::install(const std::string &key, const HookHandler &handler, bool direct)
{
    const platform::Locked guard(m_lock);
    HookHandlers &handlers = keyFor(key, direct).handlers;
    if (!has(handlers, handler.called))
        handlers.push_back(handler);
}

void HookRegistry::installAdapter(const std::string &key, std::shared_ptr<HookObject> adapter,
                                  const AdapterFilter &isSame)
{
    HookHandlers dead; // destroyed after the lock is released
    const platform::Locked guard(m_lock);
    const auto present = m_keys.find(key);
    const bool direct = present != m_keys.end() && present->second.direct; // also if all its objects are gone
    dead =
        takeHandlers(key, [](const HookHandler &each) { return each.adapter && !each.adapter->isAlive(); });
    HookHandlers &handlers = keyFor(key, direct).handlers;
    const bool isThere = std::any_of(handlers.begin(), handlers.end(), [&](const HookHandler &each) {
        return each.adapter && isSame(*each.adapter);
    });
    if (!isThere)
        handlers.emplace_back(std::move(adapter));
}

HookHandlers HookRegistry::takeHandlers(const std::string &key, const Predicate &matches)
{
    const auto found = m_keys.find(key);
    if (found == m_keys.end())
        return {};
    HookHandlers &handlers = found->second.handlers;
    const auto firstTaken = std::stable_partition(handlers.begin(), handlers.end(),
                                                  [&](const HookHandler &each) { return !matches(each); });
    HookHandlers taken(std::make_move_iterator(firstTaken), std::make_move_iterator(handlers.end()));
    handlers.erase(firstTaken, handlers.end());
    if (handlers.empty())
        m_keys.erase(found);
    return taken;
}

void HookRegistry::remove(const std::string &key, const IHookInterface *handler)
{
    const platform::Locked guard(m_lock);
    (void)takeHandlers(key, [handler](const HookHandler &each) { return each.called == handler; });
}

void HookRegistry::removeAdapters(const std::string &key, const AdapterFilter &filter)
{
    HookHandlers taken; // destroyed after the lock is released
    const platform::Locked guard(m_lock);
    taken = takeHandlers(key, [&](const HookHandler &each) { return each.adapter && filter(*each.adapter); });
}

void HookRegistry::removeFromAllKeys(const IHookInterface *handler)
{
    const std::vector<std::string> keys = sortedKeys();
    for (const std::string &key : keys)
        remove(key, handler);
}

void HookRegistry::removeAllKeys()
{
    Keys removed; // destroyed after the lock is released
    const platform::Locked guard(m_lock);
    removed.swap(m_keys);
}

HookRegistry::Key HookRegistry::find(std::string_view key) const
{
    const platform::Locked guard(m_lock);
    const auto found = m_keys.find(key);
    return found == m_keys.end() ? Key{} : found->second;
}

std::vector<std::string> HookRegistry::sortedKeys() const
{
    const platform::Locked guard(m_lock);
    std::vector<std::string> keys;
    keys.reserve(m_keys.size());
    for (const auto &[key, entry] : m_keys)
        keys.push_back(key);
    return keys;
}

bool HookRegistry::addThread(const std::shared_ptr<QThread> &thread)
{
    const platform::Locked guard(m_lock);
    const auto runs = [](const Thread &each) { return !each.hasEnded; };
    if (std::count_if(m_threads.begin(), m_threads.end(), runs) >= mostThreads)
        return false;
    m_threads.push_back({thread});
    return true;
}

int HookRegistry::startingThreads() const
{
    const platform::Locked guard(m_lock);
    const auto starts = [](const Thread &each) { return !each.hasBegun; };
    return static_cast<int>(std::count_if(m_threads.begin(), m_threads.end(), starts));
}

void HookRegistry::threadBegins(const QThread *thread)
{
    const platform::Locked guard(m_lock);
    const auto found = findThread(thread);
    if (found != m_threads.end())
        found->hasBegun = true;
}

void HookRegistry::dropThread(const QThread *thread)
{
    const platform::Locked guard(m_lock);
    const auto found = findThread(thread);
    if (found == m_threads.end())
        return;
    m_threads.erase(found);
    m_threadEnded.wakeAll();
}

void HookRegistry::threadEnds(const QThread *thread)
{
    const platform::Locked guard(m_lock);
    const auto found = findThread(thread);
    if (found == m_threads.end())
        return; // the handler has forked, and this is the child
    found->hasEnded = true;
    m_threadEnded.wakeAll();
}

HookRegistry::Threads HookRegistry::threads() const
{
    const platform::Locked guard(m_lock);
    Threads all;
    for (const Thread &each : m_threads)
        all.push_back(each.thread);
    return all;
}

std::shared_ptr<QThread> HookRegistry::takeEndedThread(const QThread *thread)
{
    const platform::Locked guard(m_lock);
    const auto found = findThread(thread);
    if (found == m_threads.end() || !found->hasEnded)
        return nullptr; // a new thread may have the address of one that was taken before
    std::shared_ptr<QThread> taken = std::move(found->thread);
    m_threads.erase(found);
    return taken;
}

HookRegistry::Threads HookRegistry::takeEndedThreads()
{
    const platform::Locked guard(m_lock);
    const auto firstEnded = std::stable_partition(m_threads.begin(), m_threads.end(),
                                                  [](const Thread &each) { return !each.hasEnded; });
    Threads taken;
    for (auto each = firstEnded; each != m_threads.end(); ++each)
        taken.push_back(std::move(each->thread));
    m_threads.erase(firstEnded, m_threads.end());
    return taken;
}

void HookRegistry::waitForThreads(std::chrono::milliseconds limit)
{
    using namespace std::chrono;
    const auto end = steady_clock::now() + limit;
    const QThread *const caller = QThread::currentThread();
    const platform::Locked guard(m_lock);
    while (anyRunsBut(caller)) {
        const auto rest = ceil<milliseconds>(end - steady_clock::now());
        if (rest <= milliseconds::zero())
            break;
        m_threadEnded.waitFor(m_lock, rest);
    }
    for (Thread &each : m_threads)
        each.isGivenUp = true;
}

void HookRegistry::releaseInChild()
{
    std::move(m_threads.begin(), m_threads.end(), std::back_inserter(m_parentsThreads));
    m_threads.clear();
    m_threadEnded.forgetWaiters();
    m_lock.unlock();
}

bool HookRegistry::anyRunsBut(const QThread *thread) const
{
    return std::any_of(m_threads.begin(), m_threads.end(), [thread](const Thread &each) {
        return !each.hasEnded && !each.isGivenUp && each.thread.get() != thread;
    });
}

std::vector<HookRegistry::Thread>::iterator HookRegistry::findThread(const QThread *thread)
{
    return std::find_if(m_threads.begin(), m_threads.end(),
                        [thread](const Thread &each) { return each.thread.get() == thread; });
}

} // namespace Zorvan
