#pragma once

#include "leakanalyzer/liveblocks.h"
#include "platform/lock.h"

#include <atomic>
#include <cstddef>

namespace Zorvan::analysis {

/// A lock for a few instructions at a time: one atomic operation to take it, a plain store to give it back.
/// Whoever finds it taken looks again less and less often, and sleeps if that does not help.
class ZORVAN_CAPABILITY("mutex") BriefLock
{
public:
    void lock() ZORVAN_ACQUIRE()
    {
        if (!tryLock())
            wait();
    }
    void unlock() ZORVAN_RELEASE() { m_isHeld.store(false, std::memory_order_release); }

private:
    bool tryLock() { return !m_isHeld.exchange(true, std::memory_order_acquire); }
    void wait();

    std::atomic<bool> m_isHeld{false};
};

/// Blocks that were released and still have to be taken out of the table of live blocks, in order. Whoever
/// releases waits for nothing but its turn here. Any thread.
///
/// Memory of the queue is used only as far as releases pile up, and is never given back.
class ReleaseQueue
{
public:
    static constexpr std::size_t firstCapacity = 262'144;

    explicit ReleaseQueue(std::size_t capacity = firstCapacity);
    ~ReleaseQueue();
    ReleaseQueue(const ReleaseQueue &) = delete;
    ReleaseQueue &operator=(const ReleaseQueue &) = delete;

    /// False: no memory to grow, and nothing was added.
    [[nodiscard]] bool push(BlockKey key);
    /// Moves up to \a limit of the oldest entries to \a keys and tells how many.
    std::size_t take(BlockKey *keys, std::size_t limit);
    [[nodiscard]] std::size_t count() const { return m_count.load(std::memory_order_relaxed); }
    /// Whether take() would change nothing.
    [[nodiscard]] bool isIdle() const { return count() == 0 && m_isRead.load(std::memory_order_relaxed); }

    /// The most entries so far. Until the queue is read for the first time, one more is counted.
    [[nodiscard]] std::size_t peak();
    void resetPeak();

    /// For fork().
    void hold() ZORVAN_ACQUIRE(m_lock) { m_lock.lock(); }
    void release() ZORVAN_RELEASE(m_lock) { m_lock.unlock(); }

private:
    bool grow() ZORVAN_REQUIRES(m_lock);

    alignas(64) BriefLock m_lock;
    BlockKey *m_ring ZORVAN_GUARDED_BY(m_lock);
    std::size_t m_capacity ZORVAN_GUARDED_BY(m_lock);
    std::size_t m_first ZORVAN_GUARDED_BY(m_lock) = 0; // place of the oldest entry
    std::size_t m_peak ZORVAN_GUARDED_BY(m_lock) = 0;
    std::atomic<std::size_t> m_count{0}; // written with the lock held
    std::atomic<bool> m_isRead{false}; // written with the lock held
};

} // namespace Zorvan::analysis
