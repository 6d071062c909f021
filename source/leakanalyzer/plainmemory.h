#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>
#include <vector>

namespace Zorvan::analysis {

/// Memory of the analyzer's own: from malloc(), never from operator new. A host may have replaced that, or
/// have installed a handler for the case that it fails, and either would run under the analyzer's locks.
///
/// Throws std::bad_alloc; whatever lets the outside in catches it.
template <typename T>
struct PlainMemory
{
    using value_type = T;

    PlainMemory() = default;
    template <typename Other>
    PlainMemory(const PlainMemory<Other> &) // NOLINT(google-explicit-constructor): containers convert theirs
    {}

    [[nodiscard]] T *allocate(std::size_t count)
    {
        constexpr bool isOrdinary = alignof(T) <= alignof(std::max_align_t);
        const std::size_t bytes = count * sizeof(T); // NOLINT(bugprone-sizeof-expression): T may be a pointer
        void *const memory = isOrdinary ? std::malloc(bytes) : std::aligned_alloc(alignof(T), bytes);
        if (memory == nullptr)
            throw std::bad_alloc();
        return static_cast<T *>(memory);
    }
    void deallocate(T *memory, std::size_t /*count*/) { std::free(memory); }

    friend bool operator==(const PlainMemory &, const PlainMemory &) { return true; }
    friend bool operator!=(const PlainMemory &, const PlainMemory &) { return false; }
};

template <typename T>
using PlainVector = std::vector<T, PlainMemory<T>>;

/// An object that is never deleted.
template <typename T, typename... Arguments>
[[nodiscard]] T *makeLasting(Arguments &&...arguments)
{
    PlainMemory<T> memory;
    T *const place = memory.allocate(1);
    try {
        return new (place) T(std::forward<Arguments>(arguments)...);
    } catch (...) {
        memory.deallocate(place, 1);
        throw;
    }
}

} // namespace Zorvan::analysis
