#include "leakanalyzer/liveblocks.h"

#include "platform/memory.h"
#include "platform/processor.h"

#include <cstdlib>

namespace Zorvan::analysis {

namespace {

constexpr std::size_t firstCapacity = 1024;
constexpr std::size_t largePageBytes = 2 * 1024 * 1024;
// A table is fuller than this only when it cannot grow...
constexpr std::size_t fillNumerator = 5;
constexpr std::size_t fillDenominator = 8;
// ...and never fuller than this: a search in a full one looks at all its places, with a lock held.
constexpr std::size_t mostNumerator = 15;
constexpr std::size_t mostDenominator = 16;

/// Spreads addresses over 64 bits, the upper ones best. Blocks are at least 16 bytes apart.
std::uint64_t spread(BlockKey key)
{
    constexpr unsigned alignmentBits = 4;
    constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15;
    return (key >> alignmentBits) * goldenRatio;
}

unsigned shiftFor(std::size_t capacity)
{
    unsigned shift = 64;
    for (; capacity > 1; capacity /= 2)
        --shift;
    return shift;
}

} // namespace

std::size_t LiveBlocks::placeOf(BlockKey key) const
{
    return static_cast<std::size_t>(spread(key) >> m_shift.load(std::memory_order_relaxed));
}

void LiveBlocks::prefetch(BlockKey key) const
{
    if (const LiveBlock *const places = m_places.load(std::memory_order_relaxed))
        platform::prefetch(reinterpret_cast<std::uintptr_t>(places) + placeOf(key) * sizeof(LiveBlock));
}

LiveBlock *LiveBlocks::find(BlockKey key)
{
    if (m_count == 0)
        return nullptr;
    LiveBlock *const places = m_places.load(std::memory_order_relaxed);
    for (std::size_t place = placeOf(key); places[place].key != 0; place = next(place)) {
        if (places[place].key == key)
            return &places[place];
    }
    return nullptr;
}

bool LiveBlocks::enter(const LiveBlock &block)
{
    if (!makeRoom())
        return false;
    LiveBlock *const places = m_places.load(std::memory_order_relaxed);
    std::size_t place = placeOf(block.key);
    for (; places[place].key != 0; place = next(place)) {
        if (places[place].key == block.key) {
            ++places[place].repetitions;
            return true;
        }
    }
    places[place] = block;
    ++m_count;
    return true;
}

void LiveBlocks::remove(LiveBlock *block)
{
    LiveBlock *const places = m_places.load(std::memory_order_relaxed);
    auto gap = static_cast<std::size_t>(block - places);
    const std::size_t mask = m_capacity - 1;
    for (std::size_t place = next(gap); places[place].key != 0; place = next(place)) {
        // A block moves up unless it would then stand before the place where a search for it begins.
        if (((place - placeOf(places[place].key)) & mask) >= ((place - gap) & mask)) {
            places[gap] = places[place];
            gap = place;
        }
    }
    places[gap].key = 0;
    --m_count;
}

void LiveBlocks::clear()
{
    std::free(m_places.exchange(nullptr, std::memory_order_relaxed));
    m_capacity = 0;
    m_count = 0;
}

/// Some places always stay empty: they end the searches.
bool LiveBlocks::makeRoom()
{
    if ((m_count + 1) * fillDenominator <= m_capacity * fillNumerator)
        return true;
    return resize(m_capacity == 0 ? firstCapacity : 2 * m_capacity)
        || (m_count + 1) * mostDenominator <= m_capacity * mostNumerator;
}

bool LiveBlocks::resize(std::size_t capacity)
{
    auto *const places = static_cast<LiveBlock *>(std::calloc(capacity, sizeof(LiveBlock)));
    if (places == nullptr)
        return false;
    if (capacity * sizeof(LiveBlock) >= largePageBytes)
        platform::preferLargePages(places, capacity * sizeof(LiveBlock));
    LiveBlock *const old = m_places.load(std::memory_order_relaxed);
    const std::size_t oldCapacity = m_capacity;
    m_capacity = capacity;
    m_shift.store(shiftFor(capacity), std::memory_order_relaxed);
    for (std::size_t i = 0; i < oldCapacity; ++i) {
        if (old[i].key == 0)
            continue;
        std::size_t place = placeOf(old[i].key); // goes up with i: both tables are walked through in order
        while (places[place].key != 0)
            place = next(place);
        places[place] = old[i];
    }
    m_places.store(places, std::memory_order_relaxed);
    std::free(old);
    return true;
}

} // namespace Zorvan::analysis
