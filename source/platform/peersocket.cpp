#include "platform/peersocket.h"

#include "platform/socketcalls_p.h"

#include <algorithm>

namespace Zorvan::platform {

int sendAtOnce(std::intptr_t socket, const char *bytes, int count)
{
    const std::int64_t sent = socketcalls::send(socket, bytes, static_cast<std::size_t>(count));
    return static_cast<int>(std::max<std::int64_t>(sent, 0));
}

void shutDown(std::intptr_t socket)
{
    socketcalls::shutDown(socket);
}

} // namespace Zorvan::platform
