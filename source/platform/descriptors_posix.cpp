#include "platform/descriptors.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace Zorvan::platform {

std::string descriptorShortage(int count)
{
    std::string reason;
    std::vector<int> taken;
    while (reason.empty() && static_cast<int>(taken.size()) < count) {
        const int next =
            taken.empty() ? eventfd(0, EFD_CLOEXEC) : fcntl(taken.front(), F_DUPFD_CLOEXEC, 0); // far cheaper
        if (next >= 0)
            taken.push_back(next);
        else if (errno == EMFILE || errno == ENFILE || errno == ENOMEM)
            reason = std::system_category().message(errno);
        else
            break; // something else is wrong, which says nothing about descriptors
    }
    for (const int descriptor : taken)
        close(descriptor);
    return reason;
}

} // namespace Zorvan::platform
