#include "debugwindow/filterindex.h"

#include <algorithm>

namespace Zorvan {

bool FilterIndex::makeRoom(std::uint64_t more)
{
    if (m_first > 0 && !m_entries.hasRoom(m_count + more)) { // it may grow: the first entry to its begin
        std::rotate(m_entries.elements(), &m_entries[m_first], m_entries.elements() + places());
        m_first = 0;
    }
    return m_entries.makeRoom(m_count + more);
}

/// Of the lines before it, only those that follow the last entry: no negative slot either, when there is
/// none. The line and those behind it always.
bool FilterIndex::enter(std::uint32_t slot, std::uint32_t extraLines)
{
    if (!makeRoom(2 * std::uint64_t(extraLines) + 1))
        return false;
    const std::int64_t last = m_count > 0 ? std::int64_t(entry(m_count - 1)) : -1;
    const std::int64_t end = std::int64_t(slot) + extraLines + 1;
    const std::int64_t behindLast = std::min<std::int64_t>(last + 1, slot);
    for (std::int64_t k = std::max(behindLast, std::int64_t(slot) - extraLines); k < end; ++k)
        entry(m_count++) = static_cast<std::uint32_t>(k);
    return true;
}

/// The caller lowers their count.
void FilterIndex::dropFirst(std::uint32_t count)
{
    const std::size_t place = std::size_t(m_first) + count;
    m_first = static_cast<std::uint32_t>(place < places() ? place : place - places());
}

void FilterIndex::lowerCount(std::uint64_t by)
{
    m_count -= static_cast<std::uint32_t>(std::min<std::uint64_t>(by, m_count));
    m_start -= std::min(by, m_start);
}

void FilterIndex::dropOverwritten(std::uint32_t ringStart, std::uint32_t extraLines)
{
    if (m_count < 2 || entry(0) >= ringStart)
        return;
    dropFirst(1);
    lowerCount(2 * std::uint64_t(extraLines) + 1);
}

void FilterIndex::dropOldestQuarter()
{
    const std::uint32_t quarter = m_count / 4;
    dropFirst(quarter);
    lowerCount(quarter);
}

void FilterIndex::clear()
{
    m_entries.release();
    m_first = 0;
    m_count = 0;
    m_start = 0;
}

} // namespace Zorvan
