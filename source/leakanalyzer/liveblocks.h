#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Zorvan::analysis {

/// What the tables call a block: its address + 1, which tells a null block from an empty place.
using BlockKey = std::uint64_t;
[[nodiscard]] inline BlockKey blockKey(const void *block)
{
    return static_cast<BlockKey>(reinterpret_cast<std::uintptr_t>(block)) + 1;
}

struct LiveBlock
{
    BlockKey key = 0; ///< 0: an empty place of the table
    const char *source = nullptr; ///< the analyzer's own copy
    std::size_t size = 0;
    int line = 0;
    int repetitions = 0; ///< how often the address was entered again while it was known
};

/// Blocks by their addresses: a flat table with linear probing. A block that goes leaves no mark behind,
/// since those that follow it move up; so the table stays as quick as it was when it was new.
///
/// Threads: none of its own, apart from prefetch(). Memory comes from calloc(), not from operator new, which
/// a host may have routed through the analyzer.
class LiveBlocks
{
public:
    LiveBlocks() = default;
    ~LiveBlocks() { clear(); }
    LiveBlocks(const LiveBlocks &) = delete;
    LiveBlocks &operator=(const LiveBlocks &) = delete;

    /// Null if the address is not known. Valid until the table changes.
    [[nodiscard]] LiveBlock *find(BlockKey key);
    /// A known address keeps its record, with one repetition more. False: the table is nearly full and there
    /// is no memory for a larger one; nothing was entered.
    bool enter(const LiveBlock &block);
    /// \a block comes from find().
    void remove(LiveBlock *block);
    /// Gives the memory back, too.
    void clear();

    [[nodiscard]] std::size_t count() const { return m_count; }
    template <typename Visit>
    void forEach(Visit visit) const
    {
        const LiveBlock *const places = m_places.load(std::memory_order_relaxed);
        for (std::size_t i = 0; places != nullptr && i < m_capacity; ++i)
            if (places[i].key != 0)
                visit(places[i]);
    }

    /// Any thread: has the processor fetch the place of an address that is about to be looked up. A hint.
    void prefetch(BlockKey key) const;

private:
    [[nodiscard]] std::size_t placeOf(BlockKey key) const;
    [[nodiscard]] std::size_t next(std::size_t place) const { return (place + 1) & (m_capacity - 1); }
    bool makeRoom();
    bool resize(std::size_t capacity);

    // Atomic for prefetch() only, which may get an old value of either.
    std::atomic<LiveBlock *> m_places{nullptr};
    std::atomic<unsigned> m_shift{0};
    std::size_t m_capacity = 0; // a power of two, or 0
    std::size_t m_count = 0;
};

} // namespace Zorvan::analysis
