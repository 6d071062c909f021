#include "leakanalyzer/releasequeue.h"

#include <algorithm>
#include <cstdlib>

namespace Zorvan::analysis {

namespace {

BlockKey *newRing(std::size_t capacity) // not written to before it is needed
{
    return static_cast<BlockKey *>(std::malloc(capacity * sizeof(BlockKey)));
}

} // namespace

ReleaseQueue::ReleaseQueue(std::size_t capacity)
    : m_ring(newRing(capacity))
    , m_capacity(m_ring == nullptr ? 0 : capacity)
{}

ReleaseQueue::~ReleaseQueue()
{
    std::free(m_ring);
}

bool ReleaseQueue::push(BlockKey key)
{
    const platform::Locked turn(m_lock);
    const std::size_t count = m_count.load(std::memory_order_relaxed);
    if (count == m_capacity && !grow())
        return false;
    const std::size_t place = m_first + count;
    m_ring[place < m_capacity ? place : place - m_capacity] = key;
    m_count.store(count + 1, std::memory_order_relaxed);
    const std::size_t unread = m_isRead.load(std::memory_order_relaxed) ? 0 : 1;
    m_peak = std::max(m_peak, count + 1 + unread);
    return true;
}

std::size_t ReleaseQueue::take(BlockKey *keys, std::size_t limit)
{
    const platform::Locked turn(m_lock);
    m_isRead.store(true, std::memory_order_relaxed);
    const std::size_t count = m_count.load(std::memory_order_relaxed);
    const std::size_t taken = std::min(limit, count);
    const std::size_t beforeEnd = std::min(taken, m_capacity - m_first);
    std::copy_n(m_ring + m_first, beforeEnd, keys);
    std::copy_n(m_ring, taken - beforeEnd, keys + beforeEnd);
    m_first += taken;
    if (m_first >= m_capacity)
        m_first -= m_capacity;
    if (taken == count)
        m_first = 0; // the same memory again, which is in the cache
    m_count.store(count - taken, std::memory_order_relaxed);
    return taken;
}

bool ReleaseQueue::grow()
{
    const std::size_t capacity = m_capacity == 0 ? firstCapacity : 2 * m_capacity;
    BlockKey *const ring = newRing(capacity);
    if (ring == nullptr)
        return false;
    std::copy(m_ring + m_first, m_ring + m_capacity, ring);
    std::copy(m_ring, m_ring + m_first, ring + (m_capacity - m_first));
    std::free(m_ring);
    m_ring = ring;
    m_capacity = capacity;
    m_first = 0;
    return true;
}

std::size_t ReleaseQueue::peak()
{
    const platform::Locked turn(m_lock);
    return m_peak;
}

void ReleaseQueue::resetPeak()
{
    const platform::Locked turn(m_lock);
    m_peak = 0;
}

} // namespace Zorvan::analysis
