#include "platform/memory.h"

#include <windows.h>

namespace Zorvan::platform {

std::uint64_t availablePhysicalMemory()
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof(status);
    return GlobalMemoryStatusEx(&status) == 0 ? 0 : status.ullAvailPhys;
}

} // namespace Zorvan::platform
