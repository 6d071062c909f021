#pragma once

#include <cstddef>
#include <optional>

/// Blocks of operator new among those that free functions get to see: they go back to operator delete. Known
/// whether or not allocations are recorded. Any thread.
namespace Zorvan::analysis {

/// Makes the table and has fork() keep its lock. Call it before the analyzer has fork() keep its own: what
/// comes first is locked last, and this lock may be taken by who holds the analyzer's.
void prepareNewBlocks();

/// A block of operator new; null if there is no memory.
[[nodiscard]] void *newBlock(std::size_t size);
/// Its size, if \a block is such a block.
[[nodiscard]] std::optional<std::size_t> newBlockSize(const void *block);
/// Gives the block back if it is one of these; false: it is not.
bool deleteNewBlock(void *block);

} // namespace Zorvan::analysis
