#pragma once

#include "debugwindow/growingblock.h"

namespace Zorvan {

/// The slots of the lines that are shown when only marked lines are: those with a marker, and as many extra
/// lines before and behind each. The GUI thread only.
///
/// Entries may repeat, and may name lines behind a marked one that have not come yet. Counts and the order of
/// the entries are what users of the window know, down to what is entered twice.
class FilterIndex
{
public:
    FilterIndex(Reallocate reallocate, std::uint32_t step)
        : m_entries(reallocate, step)
    {
        setMemoryLimit(0);
    }
    void setGrowthStep(std::uint32_t step) { m_entries.setGrowthStep(step); }
    /// Of all lines, in bytes; 0: none. The index gets a quarter, or 1 GiB.
    void setMemoryLimit(std::uint32_t bytes) { m_entries.setMostBytes(bytes > 0 ? bytes / 4 : 1U << 30U); }

    /// Entries from the first that is shown on.
    [[nodiscard]] std::uint32_t rowCount() const
    {
        return m_start < m_count ? static_cast<std::uint32_t>(m_count - m_start) : 0;
    }
    /// \a row is less than rowCount().
    [[nodiscard]] std::uint32_t slotOf(std::uint32_t row) const { return entry(m_start + row); }
    /// In bytes.
    [[nodiscard]] std::uint32_t capacity() const { return m_entries.capacity(); }

    /// Enters a marked line and its neighbours. False: no memory, nothing was entered.
    bool enter(std::uint32_t slot, std::uint32_t extraLines);
    /// Once the ring has overwritten the first entry's line: drops that entry, and from the end so many that
    /// it makes a marked line with its neighbours.
    void dropOverwritten(std::uint32_t ringStart, std::uint32_t extraLines);
    void dropOldestQuarter();
    /// One entry less is shown.
    void hideOldest() { ++m_start; }
    void clear();

private:
    /// The memory of entries that were dropped at the front is used again behind the end of the block: moving
    /// all entries for each dropped one would take longer than anything else in a full ring.
    [[nodiscard]] std::uint32_t &entry(std::size_t i) const
    {
        const std::size_t place = m_first + i;
        return m_entries[place < places() ? place : place - places()];
    }
    [[nodiscard]] std::size_t places() const { return m_entries.capacity() / sizeof(std::uint32_t); }
    bool makeRoom(std::uint64_t more);
    void dropFirst(std::uint32_t count);
    void lowerCount(std::uint64_t by);

    GrowingBlock<std::uint32_t> m_entries;
    std::uint32_t m_first = 0; // place of the first entry
    std::uint32_t m_count = 0;
    std::uint64_t m_start = 0; // first entry shown; beyond the last: none is
};

} // namespace Zorvan
