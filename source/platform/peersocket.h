#pragma once

/// Connections that others make to this process.

#include <cstdint>
#include <string>

namespace Zorvan::platform {

/// What came of an attempt to take a connection.
struct Accepted
{
    /// Does not block, is not inherited by programs, and ends when its peer has not been heard of for some
    /// two minutes. -1: none.
    std::intptr_t socket = -1;
    std::string fault; ///< why a connection that waits could not be taken, such as a lack of descriptors
};

/// Takes the connection that waits longest at a listening socket that does not block. Neither a socket nor a
/// fault: none waits, or it has gone meanwhile.
Accepted acceptPeer(std::intptr_t listening);

/// Hands bytes to the system, as many as it takes at once. Returns their number, 0 if it would have to wait,
/// -1 if the connection is gone.
int sendAtOnce(std::intptr_t socket, const char *bytes, int count);

void closeSocket(std::intptr_t socket);

/// Ends a connection, or the listening, for all processes that have the socket. It remains to be closed.
void shutDown(std::intptr_t socket);

} // namespace Zorvan::platform
