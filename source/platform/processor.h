#pragma once

/// Hints to the processor.

#include <cstdint>

namespace Zorvan::platform {

/// Tells the processor that this thread waits in a loop; some ten nanoseconds.
void spinPause();

/// Tells the processor that the memory at \a address will be needed soon. Any number will do.
inline void prefetch([[maybe_unused]] std::uintptr_t address)
{
#if defined(__GNUC__)
    __builtin_prefetch(reinterpret_cast<const void *>(address), 1);
#endif
}

} // namespace Zorvan::platform
