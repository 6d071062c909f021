#include "platform/lock.h"

#include <cstdint>
#include <windows.h>

namespace Zorvan::platform {

void *currentThreadId()
{
    return reinterpret_cast<void *>(static_cast<std::uintptr_t>(GetCurrentThreadId()));
}

std::uint64_t kernelThreadId()
{
    return GetCurrentThreadId();
}

} // namespace Zorvan::platform
