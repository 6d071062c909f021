#include "debugwindow/growingblock.h"

#include <zorvan/debug.h>

namespace Zorvan {

void *grownBlock(Reallocate reallocate, void *block, std::uint32_t &capacity, std::uint64_t neededBytes,
                 Growth growth)
{
    const std::uint64_t missing = neededBytes > capacity ? neededBytes - capacity : 1;
    const std::uint64_t bytes = capacity + (missing + growth.step - 1) / growth.step * growth.step;
    const bool isTooLarge = bytes > growth.most;
    void *const grown = isTooLarge ? nullptr : reallocate(block, static_cast<std::size_t>(bytes));
    if (grown == nullptr) {
        gyxLog(
            "source/debugwindow", 106,
            "CFilteredTextBuffer reallocation of block with size %d KBytes failed. Switching to wraparound\n",
            static_cast<int>(bytes / 1024));
        return nullptr;
    }
    capacity = static_cast<std::uint32_t>(bytes);
    return grown;
}

} // namespace Zorvan
