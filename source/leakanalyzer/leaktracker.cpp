#include "leakanalyzer/leaktracker.h"

#include <cstdlib>

namespace Zorvan::analysis {

namespace detail {
std::atomic<bool> s_memoryTracked{false};
std::atomic<bool> s_releasesRecorded{false};
} // namespace detail

void *allocate(std::size_t size, const char *, int, bool)
{
    return std::malloc(size);
}
void *allocateZeroed(std::size_t size, const char *, int)
{
    return std::calloc(1, size);
}
void *reallocate(void *old, std::size_t size, const char *, int)
{
    return std::realloc(old, size);
}
void freeBlock(void *block)
{
    std::free(block);
}
void setMemoryTracking(int) {}
int memoryTracking()
{
    return 0;
}
int memoryTrackingEnabled(int)
{
    return 0;
}
int trackedMemoryUsage()
{
    return 0;
}
void clearLeaks() {}
void dumpLeaks(const char *) {}
void prepareLeakTracking() {}
void holdReleasesForFork() {}
void releaseReleases() {}

} // namespace Zorvan::analysis
