#include "platform/peersocket.h"

#include "platform/socketcalls_p.h"

namespace Zorvan::platform {

int sendAtOnce(std::intptr_t socket, const char *bytes, int count)
{
    const std::int64_t sent = socketcalls::send(socket, bytes, static_cast<std::size_t>(count));
    if (sent < 0 && socketcalls::lastState() == SocketState::WouldBlock)
        return 0;
    return static_cast<int>(sent);
}

void closeSocket(std::intptr_t socket)
{
    socketcalls::close(socket);
}

void shutDown(std::intptr_t socket)
{
    socketcalls::shutDown(socket);
}

} // namespace Zorvan::platform
