#include "platform/peersocket.h"
#include "platform/socketcalls_p.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace Zorvan::platform {

namespace socketcalls {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

int descriptor(std::intptr_t socket)
{
    return static_cast<int>(socket);
}

/// Time left for poll(); -1 waits without end.
int remaining(milliseconds limit, steady_clock::time_point start)
{
    if (limit < milliseconds::zero())
        return -1;
    // Rounded up, so that the wait does not end in a row of polls without a pause.
    const milliseconds left = limit - std::chrono::floor<milliseconds>(steady_clock::now() - start);
    return static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, INT_MAX));
}

/// Waits for one of \a events, an error or the end of the connection.
bool waitFor(std::intptr_t socket, short events, milliseconds limit)
{
    const auto start = steady_clock::now();
    pollfd entry{descriptor(socket), events, 0};
    int ready = 0;
    do {
        ready = poll(&entry, 1, remaining(limit, start));
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && (entry.revents & POLLNVAL) == 0;
}

/// A connect() that does not block goes on by itself, also if a signal interrupted it; calling it again would
/// fail.
bool finishConnect(std::intptr_t socket, milliseconds limit)
{
    int error = ETIMEDOUT;
    socklen_t length = sizeof(error);
    if (waitFor(socket, POLLOUT, limit)
        && getsockopt(descriptor(socket), SOL_SOCKET, SO_ERROR, &error, &length) != 0)
        return false;
    errno = error;
    return error == 0;
}

template <typename Call>
ssize_t repeatInterrupted(Call call)
{
    ssize_t result = 0;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

} // namespace

bool parseAddress(const char *text, std::uint16_t port, Address &address)
{
    address.port = htons(port);
    return inet_pton(AF_INET, text, &address.host) == 1;
}

std::intptr_t open()
{
    return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

void close(std::intptr_t socket)
{
    ::close(descriptor(socket));
}

bool connect(std::intptr_t socket, const Address &address, milliseconds limit)
{
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = address.host;
    peer.sin_port = address.port;
    setBlocking(socket, false);
    if (::connect(descriptor(socket), reinterpret_cast<const sockaddr *>(&peer), sizeof(peer)) != 0
        && ((errno != EINPROGRESS && errno != EINTR) || !finishConnect(socket, limit)))
        return false;
    setBlocking(socket, true);
    return true;
}

bool isConnectedToItself(std::intptr_t socket)
{
    sockaddr_in own{};
    sockaddr_in peer{};
    socklen_t ownLength = sizeof(own);
    socklen_t peerLength = sizeof(peer);
    return getsockname(descriptor(socket), reinterpret_cast<sockaddr *>(&own), &ownLength) == 0
        && getpeername(descriptor(socket), reinterpret_cast<sockaddr *>(&peer), &peerLength) == 0
        && own.sin_port == peer.sin_port && own.sin_addr.s_addr == peer.sin_addr.s_addr;
}

std::int64_t send(std::intptr_t socket, const char *bytes, std::size_t count)
{
    return repeatInterrupted([=] { return ::send(descriptor(socket), bytes, count, MSG_NOSIGNAL); });
}

std::int64_t receive(std::intptr_t socket, char *buffer, std::size_t capacity)
{
    return repeatInterrupted([=] { return ::recv(descriptor(socket), buffer, capacity, 0); });
}

bool waitReadable(std::intptr_t socket, milliseconds limit)
{
    return waitFor(socket, POLLIN, limit);
}

bool waitWritable(std::intptr_t socket, milliseconds limit)
{
    return waitFor(socket, POLLOUT, limit);
}

std::size_t pendingBytes(std::intptr_t socket)
{
    int bytes = 0;
    return ioctl(descriptor(socket), FIONREAD, &bytes) == 0 ? static_cast<std::size_t>(bytes) : 0;
}

void setBlocking(std::intptr_t socket, bool blocking)
{
    const int flags = fcntl(descriptor(socket), F_GETFL);
    fcntl(descriptor(socket), F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK);
}

void shutDown(std::intptr_t socket)
{
    ::shutdown(descriptor(socket), SHUT_RDWR);
}

SocketState lastState()
{
    switch (errno) {
    case EACCES:
    case EPERM:
        return SocketState::AccessDenied;
    case EAGAIN:
    case EINPROGRESS:
        return SocketState::WouldBlock;
    case EALREADY:
        return SocketState::InProgress;
    case ENETUNREACH:
        return SocketState::NetworkUnreachable;
    case ECONNABORTED:
        return SocketState::Aborted;
    case ECONNRESET:
    case EPIPE:
        return SocketState::Reset;
    case EISCONN:
        return SocketState::AlreadyConnected;
    case ETIMEDOUT:
        return SocketState::TimedOut;
    case ECONNREFUSED:
        return SocketState::Refused;
    default:
        return SocketState::Ok;
    }
}

} // namespace socketcalls

namespace {

/// Has the system find out about a peer that has vanished: while nothing is sent to it, by itself.
void askForLife(std::intptr_t socket)
{
    const auto set = [=](int layer, int option, int value) {
        setsockopt(socketcalls::descriptor(socket), layer, option, &value, sizeof(value));
    };
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPIDLE, 60); // seconds
    set(IPPROTO_TCP, TCP_KEEPINTVL, 10);
    set(IPPROTO_TCP, TCP_KEEPCNT, 6);
}

} // namespace

Accepted acceptPeer(std::intptr_t listening)
{
    Accepted accepted;
    accepted.socket = socketcalls::repeatInterrupted([=] {
        return accept4(socketcalls::descriptor(listening), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    });
    if (accepted.socket >= 0)
        askForLife(accepted.socket);
    else if (errno != EAGAIN && errno != ECONNABORTED)
        accepted.fault = std::system_category().message(errno);
    return accepted;
}

} // namespace Zorvan::platform
