#pragma once

/// The system's socket calls, made alike: interrupted calls are repeated, no call raises a signal.

#include "platform/tcpsocket.h"

namespace Zorvan::platform::socketcalls {

/// IPv4 address and port in network byte order.
struct Address
{
    std::uint32_t host = 0;
    std::uint16_t port = 0;
};

/// False if \a text is not four decimal numbers with dots between them.
bool parseAddress(const char *text, std::uint16_t port, Address &address);

/// A new stream socket that child programs do not inherit; -1 on failure.
std::intptr_t open();
void close(std::intptr_t socket);

/// One attempt, given up after \a limit.
bool connect(std::intptr_t socket, const Address &address, std::chrono::milliseconds limit);
/// True if the socket is connected to itself: the system may choose the very port that is asked for as its
/// own.
bool isConnectedToItself(std::intptr_t socket);

/// Bytes sent or received; negative on failure, see lastState().
std::int64_t send(std::intptr_t socket, const char *bytes, std::size_t count);
std::int64_t receive(std::intptr_t socket, char *buffer, std::size_t capacity);

/// Waits until there is something to read or the connection has ended. False after the limit, if it is not
/// negative.
bool waitReadable(std::intptr_t socket, std::chrono::milliseconds limit);
/// The same until at least one byte can be sent.
bool waitWritable(std::intptr_t socket, std::chrono::milliseconds limit);
std::size_t pendingBytes(std::intptr_t socket);
void setBlocking(std::intptr_t socket, bool blocking);
void shutDown(std::intptr_t socket);

/// Why the last call of this thread failed; only right after a failure.
SocketState lastState();

} // namespace Zorvan::platform::socketcalls
