#pragma once

/// The same socket calls on every system, for tests that play the other end.

#include <cstdint>

#if defined(_WIN32)
#include <winsock2.h>
#include <ws2tcpip.h>
using NativeSocket = SOCKET;
using SocketLength = int;
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
using NativeSocket = int;
using SocketLength = socklen_t;
inline int closesocket(NativeSocket socket)
{
    return ::close(socket);
}
#endif

inline NativeSocket native(std::intptr_t socket)
{
    return static_cast<NativeSocket>(socket);
}
