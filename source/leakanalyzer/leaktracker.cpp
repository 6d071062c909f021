#include "leakanalyzer/leaktracker.h"

#include "leakanalyzer/insideanalyzer.h"
#include "leakanalyzer/leakrecords.h"
#include "leakanalyzer/newblocks.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "platform/memory.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <cstring>
#include <optional>

namespace Zorvan::analysis {

namespace detail {

std::atomic<bool> s_memoryTracked{false};
std::atomic<unsigned> s_releaseWork{0};

void *allocateRecorded(std::size_t size, const char *file, int line, bool useNew)
{
    // From within operator new of a host that gets its memory here, another new would never end.
    void *const block = useNew && !InsideAnalyzer::isActive() ? newBlock(size) : std::malloc(size);
    if (file == nullptr || !s_memoryTracked.load(std::memory_order_acquire) || InsideAnalyzer::isActive())
        return block;
    LeakRecords &records = leakRecords();
    records.prefetch(blockKey(block));
    const AnalyzerTurn turn;
    records.enter(blockKey(block), size, file, line);
    return block;
}

void freeWithWork(void *block, unsigned work)
{
    // Recorded first: once the block is freed, another thread may get and record its address.
    if ((work & recordReleases) != 0 && !InsideAnalyzer::isActive())
        leakRecords().release(blockKey(block));
    if ((work & newBlocksExist) == 0 || !deleteNewBlock(block))
        std::free(block);
}

} // namespace detail

void *allocateZeroed(std::size_t size, const char *file, int line)
{
    void *const block = allocate(size, file, line, false);
    if (block != nullptr)
        std::memset(block, 0, size);
    return block;
}

void *reallocate(void *old, std::size_t size, const char *file, int line)
{
    void *const block = allocate(size, file, line, false);
    if (block == nullptr || old == nullptr)
        return block;
    const std::optional<std::size_t> newSize = newBlockSize(old);
    // Only malloc() may be asked: a host's operator new may return the middle of a block.
    const std::size_t oldSize = newSize ? *newSize : platform::usableBytes(old);
    std::memcpy(block, old, std::min(size, oldSize));
    freeBlock(old);
    return block;
}

void setMemoryTracking(int state)
{
    if (!isRunning())
        return;
    const AnalyzerTurn turn;
    if (state == 0) {
        detail::s_releaseWork.fetch_and(~detail::recordReleases, std::memory_order_relaxed);
        detail::s_memoryTracked.store(false, std::memory_order_relaxed);
        return;
    }
    detail::s_releaseWork.fetch_or(detail::recordReleases, std::memory_order_release);
    if (!detail::s_memoryTracked.load(std::memory_order_relaxed)) {
        leakRecords().restartCounters();
        detail::s_memoryTracked.store(true, std::memory_order_release);
    }
}

int memoryTracking()
{
    return detail::s_memoryTracked.load(std::memory_order_relaxed) ? 1 : 0;
}

int memoryTrackingEnabled(int state)
{
    if (state >= 0) {
        setMemoryTracking(state);
        setLowlevelIntegerProperty(static_cast<int>(LowlevelProperty::memTrackingEnabled), state);
    }
    return memoryTracking();
}

int trackedMemoryUsage()
{
    return isRunning() ? leakRecords().liveBytes() : 0;
}

void clearLeaks()
{
    if (!isRunning())
        return;
    const AnalyzerTurn turn;
    leakRecords().clear();
}

void prepareLeakTracking()
{
    leakRecords();
}

void holdReleasesForFork() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    leakRecords().releases().hold();
}

void releaseReleases() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    leakRecords().releases().release();
}

} // namespace Zorvan::analysis
