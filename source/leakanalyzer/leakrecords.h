#pragma once

#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/liveblocks.h"
#include "leakanalyzer/releasequeue.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace Zorvan::analysis {

/// Holds the analyzer lock for a scope. It is held for short steps by every allocation: who finds it taken
/// stays away for long enough that the holder gets several of them done, with the tables in its cache.
class ZORVAN_SCOPED_CAPABILITY AnalyzerTurn
{
public:
    AnalyzerTurn() ZORVAN_ACQUIRE(analyzerLock());
    ~AnalyzerTurn() ZORVAN_RELEASE() { m_lock.unlock(); }
    AnalyzerTurn(const AnalyzerTurn &) = delete;
    AnalyzerTurn &operator=(const AnalyzerTurn &) = delete;

private:
    simpleCASMutex &m_lock;
};

/// The counters are 32 bits wide for those who read them: larger values wrap around.
struct LeakStatistics
{
    int averageBytes = 0;
    int averageBlocks = 0;
    int peakBytes = 0;
    int peakBlocks = 0;
    int peakRequests = 0;
    int peakReleases = 0;
};

/// The live blocks, the releases that still wait to be taken out of them, and the counters.
class LeakRecords
{
public:
    /// Works off the releases, then enters the block.
    void enter(BlockKey key, std::size_t size, const char *file, int line) ZORVAN_REQUIRES(analyzerLock());
    /// Unknown blocks are ignored.
    void workOffReleases() ZORVAN_REQUIRES(analyzerLock());
    /// Any thread, with no lock held, before the block is freed.
    void release(BlockKey key);

    /// Sets the live, peak and average counters to 0; blocks and queue fills stay.
    void restartCounters() ZORVAN_REQUIRES(analyzerLock());
    /// Forgets the blocks, but not what they add up to.
    void clear() ZORVAN_REQUIRES(analyzerLock());

    [[nodiscard]] const LiveBlocks &blocks() const ZORVAN_REQUIRES(analyzerLock()) { return m_blocks; }
    [[nodiscard]] LeakStatistics statistics() ZORVAN_REQUIRES(analyzerLock());
    /// Any thread, with or without the lock.
    [[nodiscard]] int liveBytes() const { return m_liveBytes.load(std::memory_order_relaxed); }
    [[nodiscard]] ReleaseQueue &releases() { return m_releases; }
    void prefetch(BlockKey key) const ZORVAN_NO_THREAD_SAFETY_ANALYSIS { m_blocks.prefetch(key); }

private:
    void leave(BlockKey key) ZORVAN_REQUIRES(analyzerLock());
    void countBlock(std::size_t size) ZORVAN_REQUIRES(analyzerLock());
    const char *sourceOf(const char *file) ZORVAN_REQUIRES(analyzerLock());

    struct KnownName
    {
        const char *file = nullptr;
        const char *copy = nullptr;
    };

    std::array<KnownName, 64> m_names ZORVAN_GUARDED_BY(analyzerLock()); // the last ones used
    LiveBlocks m_blocks ZORVAN_GUARDED_BY(analyzerLock());
    LeakStatistics m_statistics ZORVAN_GUARDED_BY(analyzerLock()); // all but peakReleases
    int m_liveBlocks ZORVAN_GUARDED_BY(analyzerLock()) = 0;
    bool m_isFirstRequest ZORVAN_GUARDED_BY(analyzerLock()) = true;
    std::atomic<int> m_liveBytes{0}; // written with the analyzer lock held
    ReleaseQueue m_releases;
};

/// The records of the process.
LeakRecords &leakRecords();

} // namespace Zorvan::analysis
