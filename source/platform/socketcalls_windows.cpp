#include "platform/peersocket.h"
#include "platform/socketcalls_p.h"

#include <algorithm>
#include <climits>
#include <winsock2.h>
#include <ws2tcpip.h>
// Only after those
#include <mstcpip.h>

namespace Zorvan::platform {

namespace socketcalls {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds longestSlice(50);
constexpr std::size_t longestSend = 65536; // the system would take any number of bytes into its own memory

SOCKET nativeSocket(std::intptr_t socket)
{
    return static_cast<SOCKET>(socket);
}

// Never cleaned up: sockets are used until the process ends.
void startWinsock()
{
    [[maybe_unused]] static const int result = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
}

/// The longest single transfer that the calls with an int can name.
int lengthOf(std::size_t count)
{
    return static_cast<int>(std::min<std::size_t>(count, INT_MAX));
}

/// The outcome of a connect() that does not block; the thread's last error tells it too.
bool finishConnect(std::intptr_t socket, milliseconds limit)
{
    // Not WSAPoll(): older systems never tell it that connecting has failed.
    fd_set connected;
    FD_ZERO(&connected);
    FD_SET(nativeSocket(socket), &connected);
    fd_set failed = connected;
    const auto count = static_cast<long>(limit.count());
    timeval wait{count / 1000, count % 1000 * 1000};
    int error = WSAETIMEDOUT;
    int length = sizeof(error);
    if (select(0, nullptr, &connected, &failed, &wait) > 0
        && getsockopt(nativeSocket(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char *>(&error), &length)
            != 0)
        return false;
    WSASetLastError(error);
    return error == 0;
}

/// Sending nothing puts nothing on the wire, but fails once shutDown() was called.
bool isShutDown(std::intptr_t socket)
{
    return ::send(nativeSocket(socket), "", 0, 0) < 0 && WSAGetLastError() == WSAESHUTDOWN;
}

/// Waits for \a event, an error or the end of the connection. A wait that has begun may not notice that
/// another thread of this process ends the connection: look for that between short waits.
bool waitFor(std::intptr_t socket, short event, milliseconds limit)
{
    const auto start = steady_clock::now();
    WSAPOLLFD entry{nativeSocket(socket), event, 0};
    while (!isShutDown(socket)) {
        const milliseconds left = limit - std::chrono::floor<milliseconds>(steady_clock::now() - start);
        const milliseconds slice = limit < milliseconds::zero() ? longestSlice : std::min(left, longestSlice);
        const int ready = WSAPoll(&entry, 1, static_cast<int>(std::max(slice, milliseconds::zero()).count()));
        if (ready != 0)
            return ready > 0 && (entry.revents & POLLNVAL) == 0;
        if (slice < longestSlice)
            return false;
    }
    return true;
}

} // namespace

bool parseAddress(const char *text, std::uint16_t port, Address &address)
{
    startWinsock();
    address.port = htons(port);
    return inet_pton(AF_INET, text, &address.host) == 1;
}

std::intptr_t open()
{
    startWinsock();
    return static_cast<std::intptr_t>(WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                                 WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
}

void close(std::intptr_t socket)
{
    closesocket(nativeSocket(socket));
}

bool connect(std::intptr_t socket, const Address &address, milliseconds limit)
{
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = address.host;
    peer.sin_port = address.port;
    setBlocking(socket, false);
    if (::connect(nativeSocket(socket), reinterpret_cast<const sockaddr *>(&peer), sizeof(peer)) != 0
        && (WSAGetLastError() != WSAEWOULDBLOCK || !finishConnect(socket, limit)))
        return false;
    setBlocking(socket, true);
    return true;
}

bool isConnectedToItself(std::intptr_t socket)
{
    sockaddr_in own{};
    sockaddr_in peer{};
    int ownLength = sizeof(own);
    int peerLength = sizeof(peer);
    return getsockname(nativeSocket(socket), reinterpret_cast<sockaddr *>(&own), &ownLength) == 0
        && getpeername(nativeSocket(socket), reinterpret_cast<sockaddr *>(&peer), &peerLength) == 0
        && own.sin_port == peer.sin_port && own.sin_addr.s_addr == peer.sin_addr.s_addr;
}

std::int64_t send(std::intptr_t socket, const char *bytes, std::size_t count)
{
    return ::send(nativeSocket(socket), bytes, lengthOf(std::min(count, longestSend)), 0);
}

std::int64_t receive(std::intptr_t socket, char *buffer, std::size_t capacity)
{
    const int count = ::recv(nativeSocket(socket), buffer, lengthOf(capacity), 0);
    // After our own shutDown() other systems report an orderly end.
    return count < 0 && WSAGetLastError() == WSAESHUTDOWN ? 0 : count;
}

bool waitReadable(std::intptr_t socket, milliseconds limit)
{
    return waitFor(socket, POLLRDNORM, limit);
}

bool waitWritable(std::intptr_t socket, milliseconds limit)
{
    return waitFor(socket, POLLWRNORM, limit);
}

std::size_t pendingBytes(std::intptr_t socket)
{
    u_long bytes = 0;
    return ioctlsocket(nativeSocket(socket), FIONREAD, &bytes) == 0 ? bytes : 0;
}

void setBlocking(std::intptr_t socket, bool blocking)
{
    u_long nonBlocking = blocking ? 0 : 1;
    ioctlsocket(nativeSocket(socket), static_cast<long>(FIONBIO), &nonBlocking);
}

void shutDown(std::intptr_t socket)
{
    ::shutdown(nativeSocket(socket), SD_BOTH);
}

SocketState lastState()
{
    const int error = WSAGetLastError();
    switch (error) {
    case WSAEACCES:
    case WSAEWOULDBLOCK:
    case WSAENETUNREACH:
    case WSAECONNABORTED:
    case WSAECONNRESET:
    case WSAEISCONN:
    case WSAETIMEDOUT:
    case WSAECONNREFUSED:
        return static_cast<SocketState>(error);
    case WSAEINPROGRESS:
    case WSAEALREADY:
        return SocketState::InProgress;
    case WSAESHUTDOWN:
        return SocketState::Reset;
    default:
        return SocketState::Ok;
    }
}

} // namespace socketcalls

namespace {

/// Has the system find out about a peer that has vanished: while nothing is sent to it, by itself.
void askForLife(std::intptr_t socket)
{
    tcp_keepalive settings{1, 60000, 10000}; // milliseconds
    DWORD length = 0;
    WSAIoctl(socketcalls::nativeSocket(socket), SIO_KEEPALIVE_VALS, &settings, sizeof(settings), nullptr, 0,
             &length, nullptr, nullptr);
}

} // namespace

Accepted acceptPeer(std::intptr_t listening)
{
    Accepted accepted;
    const SOCKET socket = ::accept(socketcalls::nativeSocket(listening), nullptr, nullptr);
    if (socket == INVALID_SOCKET) {
        const int error = WSAGetLastError();
        if (error != WSAEWOULDBLOCK && error != WSAECONNRESET)
            accepted.fault = "error " + std::to_string(error);
        return accepted;
    }
    accepted.socket = static_cast<std::intptr_t>(socket);
    SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
    socketcalls::setBlocking(accepted.socket, false);
    askForLife(accepted.socket);
    return accepted;
}

} // namespace Zorvan::platform
