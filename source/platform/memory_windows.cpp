#include "platform/memory.h"

#include <malloc.h>
#include <windows.h>

namespace Zorvan::platform {

std::uint64_t availablePhysicalMemory()
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof(status);
    return GlobalMemoryStatusEx(&status) == 0 ? 0 : status.ullAvailPhys;
}

void preferLargePages(void * /*block*/, std::size_t /*bytes*/) {} // a right that few users have

std::size_t usableBytes(void *block)
{
    return block == nullptr ? 0 : _msize(block);
}

} // namespace Zorvan::platform
