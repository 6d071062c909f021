#pragma once

#include "leakanalyzer/brieflock.h"
#include "leakanalyzer/liveblocks.h"

#include <atomic>
#include <cstddef>

namespace Zorvan::analysis {

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
