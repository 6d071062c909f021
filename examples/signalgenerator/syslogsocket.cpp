#include "syslogsocket.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace SignalGenerator {

namespace {

// Small: what waits in here would otherwise come on top of what the collector's system holds.
constexpr int sendBufferBytes = 128 * 1024;
constexpr int silenceSeconds = 30; // then the system asks whether the collector is still there
constexpr int answerMilliseconds = 60'000; // a collector that takes nothing for so long counts as gone

void setOption(int socket, int level, int option, int value)
{
    setsockopt(socket, level, option, &value, sizeof value); // works without it, too, only not as well
}

int millisecondsUntil(SyslogSocket::Clock::time_point deadline)
{
    using std::chrono::milliseconds;
    const auto left =
        std::chrono::ceil<milliseconds>(deadline - SyslogSocket::Clock::now()); // 0 would spin at the end
    return static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, 60'000));
}

bool connectionFailed(int socket)
{
    int error = 0;
    socklen_t size = sizeof error;
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0;
}

bool isPort(const std::string &text)
{
    const bool isNumber =
        !text.empty() && text.size() <= 5 && text.find_first_not_of("0123456789") == std::string::npos;
    const int number = isNumber ? std::stoi(text) : 0;
    return number >= 1 && number <= 65'535;
}

bool takeApart(const std::string &text, SyslogAddress &address)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos)
        return false;
    address = {text.substr(0, colon), text.substr(colon + 1)};
    std::string &host = address.host;
    if (host.size() > 1 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    else if (host.find_first_of(":[]") != std::string::npos)
        return false; // which of the colons is it?
    return !host.empty() && isPort(address.port);
}

} // namespace

bool parseSyslogAddress(const std::string &text, SyslogAddress &address)
{
    if (takeApart(text, address))
        return true;
    std::fprintf(stderr, "\"%s\" is no address of a collector: HOST:PORT or [NUMBER]:PORT, port 1 to 65535\n",
                 text.c_str());
    return false;
}

SyslogSocket::SyslogSocket()
    : m_wake(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{}

SyslogSocket::~SyslogSocket()
{
    close();
    ::close(m_wake);
}

bool SyslogSocket::open(const SyslogAddress &address, Clock::time_point deadline)
{
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo *all = nullptr;
    if (getaddrinfo(address.host.c_str(), address.port.c_str(), &wanted, &all) != 0)
        return false;
    int left = 0;
    for (const addrinfo *each = all; each != nullptr; each = each->ai_next)
        ++left;
    for (const addrinfo *each = all; each != nullptr && !isOpen(); each = each->ai_next, --left) {
        const Clock::time_point now = Clock::now();
        if (!connect(*each, now + (deadline - now) / left))
            close();
    }
    freeaddrinfo(all);
    return isOpen();
}

bool SyslogSocket::connect(const addrinfo &address, Clock::time_point deadline)
{
    m_socket = socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol);
    if (!isOpen())
        return false;
    setOption(m_socket, SOL_SOCKET, SO_SNDBUF, sendBufferBytes);
    setOption(m_socket, SOL_SOCKET, SO_KEEPALIVE, 1);
    setOption(m_socket, IPPROTO_TCP, TCP_KEEPIDLE, silenceSeconds);
    setOption(m_socket, IPPROTO_TCP, TCP_USER_TIMEOUT, answerMilliseconds);
    if (::connect(m_socket, address.ai_addr, address.ai_addrlen) == 0)
        return true;
    pollfd wanted{m_socket, POLLOUT, 0};
    return errno == EINPROGRESS && poll(&wanted, 1, millisecondsUntil(deadline)) == 1
        && !connectionFailed(m_socket);
}

void SyslogSocket::close()
{
    if (isOpen())
        ::close(m_socket);
    m_socket = -1;
}

std::size_t SyslogSocket::send(const iovec *pieces, std::size_t count)
{
    msghdr message{};
    message.msg_iov = const_cast<iovec *>(pieces); // the system only reads it
    message.msg_iovlen = count;
    const ssize_t sent = sendmsg(m_socket, &message, MSG_NOSIGNAL);
    if (sent < 0 && errno != EAGAIN && errno != EINTR)
        close();
    return sent < 0 ? 0 : static_cast<std::size_t>(sent);
}

bool SyslogSocket::allAcknowledged() const
{
    int bytes = 0;
    return ioctl(m_socket, SIOCOUTQ, &bytes) == 0 && bytes == 0;
}

bool SyslogSocket::endCame()
{
    char ignored[256];
    ssize_t size = 0;
    do {
        size = recv(m_socket, ignored, sizeof ignored, MSG_DONTWAIT);
    } while (size > 0);
    if (size < 0 && errno != EAGAIN && errno != EINTR)
        close();
    return size == 0;
}

bool SyslogSocket::finish(Clock::time_point deadline)
{
    shutdown(m_socket, SHUT_WR);
    while (isOpen() && Clock::now() < deadline) {
        pollfd wanted{m_socket, POLLIN, 0};
        poll(&wanted, 1, millisecondsUntil(deadline));
        if (endCame()) { // perhaps on its own account, before it had everything
            const bool inOrder = allAcknowledged();
            close();
            return inOrder;
        }
    }
    return false;
}

void SyslogSocket::wait(For what, Clock::time_point deadline)
{
    const short events = what == For::Room ? POLLIN | POLLOUT : POLLIN;
    pollfd wanted[] = {{m_wake, POLLIN, 0}, {m_socket, events, 0}}; // one below 0 is left out
    if (poll(wanted, 2, millisecondsUntil(deadline)) <= 0)
        return;
    if (wanted[0].revents != 0) {
        eventfd_t ignored = 0;
        eventfd_read(m_wake, &ignored);
    }
    if ((wanted[1].revents & ~POLLOUT) != 0 && endCame())
        close();
}

void SyslogSocket::wake()
{
    eventfd_write(m_wake, 1);
}

} // namespace SignalGenerator
