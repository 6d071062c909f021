#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>

/// Leak tracking: which blocks are alive, and which source position allocated them. Any thread.
namespace Zorvan::analysis {

namespace detail {
/// Whether allocations are recorded. Never without a running analyzer.
extern std::atomic<bool> s_memoryTracked;
/// What a release has to do beside free(); one word, so that nothing to do costs one load and one branch.
enum ReleaseWork : unsigned {
    recordReleases = 1, ///< never without a running analyzer
    newBlocksExist = 2, ///< some blocks have to go back to operator delete
};
extern std::atomic<unsigned> s_releaseWork;

[[nodiscard]] void *allocateRecorded(std::size_t size, const char *file, int line, bool useNew);
void freeWithWork(void *block, unsigned work);
} // namespace detail

/// Allocates with malloc(), or with operator new if \a useNew, and records the block if \a file is not null.
/// Null if there is no memory. For a host whose operator new ends here again, it is malloc() on the second
/// time.
[[nodiscard]] inline void *allocate(std::size_t size, const char *file, int line, bool useNew)
{
    if (!useNew && !detail::s_memoryTracked.load(std::memory_order_acquire))
        return std::malloc(size);
    return detail::allocateRecorded(size, file, line, useNew);
}
[[nodiscard]] void *allocateZeroed(std::size_t size, const char *file, int line);
/// A new block with as much of the old block's content as fits; the old block is freed. Null \a old: a plain
/// allocation. Null result: no memory, the old block stays.
[[nodiscard]] void *reallocate(void *old, std::size_t size, const char *file, int line);
/// Frees a block of any of these functions or of malloc(); null is fine.
inline void freeBlock(void *block)
{
    const unsigned work = detail::s_releaseWork.load(std::memory_order_acquire);
    if (work == 0)
        std::free(block);
    else
        detail::freeWithWork(block, work);
}

/// Switches tracking on (any value but 0), which sets the counters to zero if it was off, or off. Nothing
/// happens without a running analyzer.
void setMemoryTracking(int state);
/// Whether tracking is switched on.
[[nodiscard]] int memoryTracking();
/// Sets a state of 0 or more, stored as a property as well; returns the switch.
int memoryTrackingEnabled(int state);

/// Bytes in live blocks. Releases count from the next recorded allocation or report on.
[[nodiscard]] int trackedMemoryUsage();
/// Forgets all live blocks, the peaks and the averages.
void clearLeaks();
/// Hands the live blocks, by source position and size, and the statistics to the output handler.
void dumpLeaks(const char *sourceFilter);

/// For the start of the analyzer: makes the queues.
void prepareLeakTracking();
/// For fork(): the lock of the release queue. The analyzer lock is held already.
void holdReleasesForFork();
void releaseReleases();

} // namespace Zorvan::analysis
