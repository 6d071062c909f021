#include "leakanalyzer/newblocks.h"

#include "leakanalyzer/insideanalyzer.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/liveblocks.h"
#include "leakanalyzer/plainmemory.h"
#include "platform/lock.h"
#include "platform/process.h"

#include <new>

namespace Zorvan::analysis {

namespace {

/// Nothing is allocated from the host under its lock: the table uses calloc().
struct NewBlocks
{
    platform::Mutex mutex;
    LiveBlocks table ZORVAN_GUARDED_BY(mutex);
};

void hold() ZORVAN_NO_THREAD_SAFETY_ANALYSIS;
void letGo() ZORVAN_NO_THREAD_SAFETY_ANALYSIS;

NewBlocks *makeNewBlocks()
{
    platform::aroundFork(hold, letGo, letGo);
    return makeLasting<NewBlocks>();
}

NewBlocks &newBlocks()
{
    static auto *const blocks = makeNewBlocks(); // blocks are freed until the very end
    return *blocks;
}

void hold()
{
    newBlocks().mutex.lock();
}

void letGo()
{
    newBlocks().mutex.unlock();
}

bool remember(const void *block, std::size_t size)
{
    NewBlocks &blocks = newBlocks();
    const platform::Locked guard(blocks.mutex);
    if (LiveBlock *const stale = blocks.table.find(blockKey(block)))
        blocks.table.remove(stale); // the host gave it back on its own
    if (!blocks.table.enter({blockKey(block), nullptr, size, 0, 0}))
        return false;
    detail::s_releaseWork.fetch_or(detail::newBlocksExist, std::memory_order_release);
    return true;
}

} // namespace

void prepareNewBlocks()
{
    newBlocks();
}

void *newBlock(std::size_t size)
{
    const InsideAnalyzer inside;
    void *const block = ::operator new(size, std::nothrow);
    if (block == nullptr || remember(block, size))
        return block;
    ::operator delete(block);
    return nullptr;
}

std::optional<std::size_t> newBlockSize(const void *block)
{
    if ((detail::s_releaseWork.load(std::memory_order_acquire) & detail::newBlocksExist) == 0)
        return {};
    NewBlocks &blocks = newBlocks();
    const platform::Locked guard(blocks.mutex);
    const LiveBlock *const found = blocks.table.find(blockKey(block));
    return found == nullptr ? std::optional<std::size_t>() : found->size;
}

bool deleteNewBlock(void *block)
{
    {
        NewBlocks &blocks = newBlocks();
        const platform::Locked guard(blocks.mutex);
        LiveBlock *const found = blocks.table.find(blockKey(block));
        if (found == nullptr)
            return false;
        blocks.table.remove(found);
        if (blocks.table.count() == 0)
            detail::s_releaseWork.fetch_and(~detail::newBlocksExist, std::memory_order_relaxed);
    }
    const InsideAnalyzer inside; // the host's operator delete may end in freeBlock() again
    ::operator delete(block);
    return true;
}

} // namespace Zorvan::analysis
