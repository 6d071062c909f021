#include "leakanalyzer/leakrecords.h"

#include "leakanalyzer/plainmemory.h"
#include "leakanalyzer/sourcenames.h"
#include "platform/processor.h"

#include <algorithm>
#include <cstdint>

namespace Zorvan::analysis {

namespace {

constexpr int triesBeforeLock = 100;
constexpr int firstPause = 4; // calls of spinPause()
constexpr int longestPauseBetweenTries = 256;

const char *const unknownSource = "unknown"; // no memory for the name

int wrapped(std::int64_t value)
{
    return static_cast<int>(static_cast<std::uint32_t>(value));
}

/// Weights recent values most. Exact halving, which rounds towards zero.
int movedAverage(int average, int value)
{
    return static_cast<int>((static_cast<std::int64_t>(average) + value) / 2);
}

} // namespace

AnalyzerTurn::AnalyzerTurn() ZORVAN_NO_THREAD_SAFETY_ANALYSIS : m_lock(analyzerLock())
{
    int pauses = firstPause;
    for (int attempt = 0; attempt < triesBeforeLock; ++attempt) {
        if (m_lock.tryLock())
            return;
        for (int i = 0; i < pauses; ++i)
            platform::spinPause();
        pauses = std::min(2 * pauses, longestPauseBetweenTries);
    }
    m_lock.lock();
}

void LeakRecords::enter(BlockKey key, std::size_t size, const char *file, int line)
{
    // A request is worked off before the next one can come, so that one at most is pending. The first one
    // counts twice, like any in a queue that was never read.
    m_statistics.peakRequests = std::max(m_statistics.peakRequests, m_isFirstRequest ? 2 : 1);
    m_isFirstRequest = false;
    workOffReleases();
    if (m_blocks.enter({key, sourceOf(file), size, line, 0}))
        countBlock(size);
}

/// The analyzer's copy of the name, mostly without a look into the table of names.
const char *LeakRecords::sourceOf(const char *file)
{
    const auto address = reinterpret_cast<std::uintptr_t>(file);
    KnownName &known = m_names[(address ^ (address >> 6)) % m_names.size()];
    if (known.file != file) {
        const char *const copy = nameCopy(file);
        if (copy == nullptr)
            return unknownSource; // this time: there may be memory for the name when it is used again
        known = {file, copy};
    }
    return known.copy;
}

void LeakRecords::countBlock(std::size_t size)
{
    m_liveBlocks = wrapped(std::int64_t{m_liveBlocks} + 1);
    m_statistics.peakBlocks = std::max(m_statistics.peakBlocks, m_liveBlocks);
    m_statistics.averageBlocks = movedAverage(m_statistics.averageBlocks, m_liveBlocks);
    const int bytes = wrapped(liveBytes() + static_cast<std::int64_t>(static_cast<std::uint32_t>(size)));
    m_liveBytes.store(bytes, std::memory_order_relaxed);
    m_statistics.peakBytes = std::max(m_statistics.peakBytes, bytes);
    m_statistics.averageBytes = movedAverage(m_statistics.averageBytes, bytes);
}

/// Only what is pending at the start: threads that go on releasing do not keep the lock from the others.
void LeakRecords::workOffReleases()
{
    if (m_releases.isIdle())
        return;
    constexpr std::size_t batch = 64;
    BlockKey keys[batch];
    std::size_t pending = m_releases.count();
    do {
        const std::size_t taken = m_releases.take(keys, std::min(batch, pending));
        for (std::size_t i = 0; taken > 1 && i < taken; ++i)
            m_blocks.prefetch(keys[i]);
        for (std::size_t i = 0; i < taken; ++i)
            leave(keys[i]);
        pending -= taken;
    } while (pending > 0);
}

void LeakRecords::leave(BlockKey key)
{
    LiveBlock *const block = m_blocks.find(key);
    if (block == nullptr)
        return;
    const auto size = static_cast<std::int64_t>(static_cast<std::uint32_t>(block->size));
    m_liveBytes.store(wrapped(liveBytes() - size), std::memory_order_relaxed);
    m_liveBlocks = wrapped(std::int64_t{m_liveBlocks} - 1);
    if (--block->repetitions < 0)
        m_blocks.remove(block);
}

void LeakRecords::release(BlockKey key)
{
    prefetch(key);
    if (m_releases.push(key))
        return;
    // No memory for a longer queue: a release that were lost would be reported as a leak.
    const AnalyzerTurn turn;
    workOffReleases();
    leave(key);
}

void LeakRecords::restartCounters()
{
    const int peakRequests = m_statistics.peakRequests;
    m_statistics = {};
    m_statistics.peakRequests = peakRequests;
    m_liveBlocks = 0;
    m_liveBytes.store(0, std::memory_order_relaxed);
}

void LeakRecords::clear()
{
    m_blocks.clear();
    m_statistics = {};
    m_releases.resetPeak();
}

LeakStatistics LeakRecords::statistics()
{
    LeakStatistics statistics = m_statistics;
    statistics.peakReleases = wrapped(static_cast<std::int64_t>(m_releases.peak()));
    return statistics;
}

LeakRecords &leakRecords()
{
    static auto *const records = makeLasting<LeakRecords>(); // blocks are freed until the very end
    return *records;
}

} // namespace Zorvan::analysis
