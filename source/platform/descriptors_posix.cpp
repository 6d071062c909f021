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
    std::vector<int> opened;
    while (reason.empty() && static_cast<int>(opened.size()) < count) {
        const int descriptor = open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor >= 0)
            opened.push_back(descriptor);
        else if (errno != EINTR)
            reason = std::strerror(errno);
    }
    for (const int descriptor : opened)
        close(descriptor);
    return reason;
}

} // namespace Zorvan::platform
