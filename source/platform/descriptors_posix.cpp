#include "platform/descriptors.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/resource.h>
#include <system_error>
#include <vector>

namespace Zorvan::platform {

namespace {

constexpr rlim_t highestLimit = 1 << 20; // nobody comes near it
constexpr int shortStretch = 16;
constexpr int longStretch = 4096;

/// How many of \a count numbers from \a first on are free. Opening something to find out would take what
/// other threads are about to need.
int freeDescriptors(int first, int count)
{
    std::vector<pollfd> entries;
    entries.reserve(static_cast<std::size_t>(count));
    for (int descriptor = first; descriptor < first + count; ++descriptor)
        entries.push_back({descriptor, 0, 0});
    if (poll(entries.data(), entries.size(), 0) < 0)
        return count; // it says nothing about descriptors
    return static_cast<int>(std::count_if(
        entries.begin(), entries.end(), [](const pollfd &entry) { return (entry.revents & POLLNVAL) != 0; }));
}

} // namespace

std::string descriptorShortage(int count)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return {};
    // The system gives away the lowest free number, so that a look at the highest ones will do as a rule.
    int end = static_cast<int>(std::min(limit.rlim_cur, highestLimit));
    int stretch = shortStretch;
    int found = 0;
    while (found < count && end > 0) {
        const int length = std::min(stretch, end);
        end -= length;
        found += freeDescriptors(end, length);
        stretch = longStretch;
    }
    return found < count ? std::system_category().message(EMFILE) : std::string();
}

} // namespace Zorvan::platform
