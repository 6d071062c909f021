#pragma once

/// Physical memory of the machine.

#include <cstddef>
#include <cstdint>

namespace Zorvan::platform {

/// Bytes of physical memory that programs can still get without swapping; 0 if the system does not tell. Any
/// thread.
[[nodiscard]] std::uint64_t availablePhysicalMemory();

/// To be called for a large new block that will be written at once as a whole: memory that comes in small
/// pages takes the system several times as long as the program takes to fill them. Any thread.
void preferLargePages(void *block, std::size_t bytes);

/// Bytes that the owner of a block of malloc() may use: at least as many as were asked for. 0 for null. Any
/// thread.
[[nodiscard]] std::size_t usableBytes(void *block);

} // namespace Zorvan::platform
