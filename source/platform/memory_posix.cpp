#include "platform/files.h"
#include "platform/memory.h"

#include <cstdlib>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

constexpr std::size_t meminfoLimitBytes = 16 * 1024;

/// Counts memory that the system would free for a program, such as its file cache; 0 if the kernel does not
/// tell.
std::uint64_t availableByKernel()
{
    std::string text;
    readFileStart("/proc/meminfo", meminfoLimitBytes, text);
    const std::string_view key = "MemAvailable:";
    const std::size_t found = text.find(key);
    if (found == std::string::npos)
        return 0;
    return std::strtoull(text.c_str() + found + key.size(), nullptr, 10) * 1024;
}

} // namespace

std::uint64_t availablePhysicalMemory()
{
    const std::uint64_t available = availableByKernel();
    if (available > 0)
        return available;
    const long pages = sysconf(_SC_AVPHYS_PAGES);
    const long pageBytes = sysconf(_SC_PAGESIZE);
    return pages < 0 || pageBytes < 0
        ? 0
        : static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageBytes);
}

void preferLargePages(void *block, std::size_t bytes)
{
    const auto pageBytes = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto begin = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t firstPage = (begin + pageBytes - 1) / pageBytes * pageBytes;
    if (firstPage - begin < bytes) // a hint: whether or not it is taken, the block is the same
        madvise(reinterpret_cast<void *>(firstPage), bytes - (firstPage - begin), MADV_HUGEPAGE);
}

std::size_t usableBytes(void *block)
{
    return malloc_usable_size(block);
}

} // namespace Zorvan::platform
