#include "platform/descriptors.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace Zorvan::platform {

std::string descriptorShortage(int count)
{
    std::string reason;
    std::vector<int> taken;
    while (reason.empty() && static_cast<int>(taken.size()) < count) {
        const int next = taken.empty() ? open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC)
                                       : fcntl(taken.front(), F_DUPFD_CLOEXEC, 0); // far cheaper
        if (next >= 0)
            taken.push_back(next);
        else if (errno != EINTR)
            reason = std::strerror(errno);
    }
    for (const int descriptor : taken)
        close(descriptor);
    return reason;
}

} // namespace Zorvan::platform
