#pragma once

/// Physical memory of the machine.

#include <cstdint>

namespace Zorvan::platform {

/// Bytes of physical memory that programs can still get without swapping; 0 if the system does not tell. Any
/// thread.
[[nodiscard]] std::uint64_t availablePhysicalMemory();

} // namespace Zorvan::platform
