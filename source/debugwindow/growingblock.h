#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace Zorvan {

/// Does what realloc() does. A test has one that fails.
using Reallocate = void *(*)(void *block, std::size_t bytes);

/// The limits of a block's growth, in bytes.
struct Growth
{
    std::uint64_t step;
    std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
};

/// Makes a block of the C heap larger, by one step or as many as it takes; \a capacity is in bytes. Null: no
/// memory, or the most is passed, which the system log tells; the block is as before.
void *grownBlock(Reallocate reallocate, void *block, std::uint32_t &capacity, std::uint64_t neededBytes,
                 Growth growth);

/// An array that grows by steps and is not initialised. It lies in the C heap, which moves large blocks
/// without copying them.
template <typename Element>
class GrowingBlock
{
public:
    GrowingBlock(Reallocate reallocate, std::uint32_t step)
        : m_reallocate(reallocate)
        , m_growth{step * sizeof(Element)}
    {}
    ~GrowingBlock() { release(); }
    GrowingBlock(const GrowingBlock &) = delete;
    GrowingBlock &operator=(const GrowingBlock &) = delete;

    /// How many elements the block grows by; 0 leaves the step as it is.
    void setGrowthStep(std::uint32_t step)
    {
        m_growth.step = step > 0 ? step * sizeof(Element) : m_growth.step;
    }
    /// How large the block may become; one that is larger already stays.
    void setMostBytes(std::uint32_t bytes) { m_growth.most = bytes; }
    /// For more than \a count elements.
    [[nodiscard]] bool hasRoom(std::uint64_t count) const { return count * sizeof(Element) < m_capacity; }
    /// Grows unless there is room for more than \a count elements. False: as grownBlock().
    bool makeRoom(std::uint64_t count)
    {
        if (hasRoom(count))
            return true;
        const std::uint64_t needed = count * sizeof(Element);
        void *const grown = grownBlock(m_reallocate, m_elements, m_capacity, needed, m_growth);
        if (grown != nullptr)
            m_elements = static_cast<Element *>(grown);
        return grown != nullptr;
    }
    void release()
    {
        std::free(m_elements);
        m_elements = nullptr;
        m_capacity = 0;
    }
    /// In bytes; 0: there is no block.
    [[nodiscard]] std::uint32_t capacity() const { return m_capacity; }
    [[nodiscard]] Element *elements() const { return m_elements; }
    [[nodiscard]] Element &operator[](std::size_t i) const { return m_elements[i]; }

private:
    Reallocate m_reallocate;
    Element *m_elements = nullptr;
    Growth m_growth;
    std::uint32_t m_capacity = 0;
};

} // namespace Zorvan
