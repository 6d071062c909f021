#include "peer.h"

#include "platform/socketcalls_p.h"

#if defined(_WIN32)
#include <winsock2.h>
#include <ws2tcpip.h>
using NativeSocket = SOCKET;
using SocketLength = int;
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
using NativeSocket = int;
using SocketLength = socklen_t;
inline int closesocket(NativeSocket socket)
{
    return ::close(socket);
}
#endif

namespace Zorvan::platform::tests {
namespace {

NativeSocket native(std::intptr_t socket)
{
    return static_cast<NativeSocket>(socket);
}

} // namespace

Peer::Peer()
{
    socketcalls::Address any;
    socketcalls::parseAddress("127.0.0.1", 0, any);
    m_listener = socketcalls::open();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = any.host;
    SocketLength length = sizeof(address);
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    ::bind(native(m_listener), generic, length);
    listen(native(m_listener), 5);
    getsockname(native(m_listener), generic, &length);
    m_port = ntohs(address.sin_port);
}

Peer::~Peer()
{
    close();
    stopListening();
}

void Peer::accept()
{
    close();
    m_connection = static_cast<std::intptr_t>(::accept(native(m_listener), nullptr, nullptr));
    const int atOnce = 1; // what is written goes out, whatever went before
    setsockopt(native(m_connection), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char *>(&atOnce),
               sizeof(atOnce));
}

std::string Peer::read(std::size_t count)
{
    std::string bytes(count, '\0');
    std::size_t length = 0;
    std::int64_t received = 1;
    while (length < count && received > 0) {
        received = socketcalls::receive(m_connection, bytes.data() + length, count - length);
        length += received > 0 ? static_cast<std::size_t>(received) : 0;
    }
    bytes.resize(length);
    return bytes;
}

void Peer::write(std::string_view bytes)
{
    socketcalls::send(m_connection, bytes.data(), bytes.size());
}

void Peer::close()
{
    if (m_connection != -1)
        closesocket(native(m_connection));
    m_connection = -1;
}

void Peer::reset()
{
    linger dropAll{};
    dropAll.l_onoff = 1;
    setsockopt(native(m_connection), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char *>(&dropAll),
               sizeof(dropAll));
    close();
}

void Peer::stopListening()
{
    if (m_listener != -1)
        closesocket(native(m_listener));
    m_listener = -1;
}

} // namespace Zorvan::platform::tests
