#include "lowlevelfunctions/nativetcpsocket.h"

namespace Zorvan {

namespace {

nativeTCPSocket::State stateAfter(platform::SocketState failure)
{
    using platform::SocketState;
    using State = nativeTCPSocket::State;
    switch (failure) {
    case SocketState::AccessDenied:
    case SocketState::NetworkUnreachable:
    case SocketState::Refused:
        return State::Refused;
    case SocketState::WouldBlock:
    case SocketState::InProgress:
        return State::InProgress;
    case SocketState::AlreadyConnected:
        return State::Connected;
    case SocketState::Ok:
    case SocketState::Aborted:
    case SocketState::Reset:
    case SocketState::TimedOut:
        break;
    }
    return State::NotConnected;
}

} // namespace

bool nativeTCPSocket::connect(const char *address, std::uint16_t port)
{
    const bool connected = m_socket.connect(address, port);
    m_state = connected ? State::Connected : stateAfter(m_socket.state());
    return connected;
}

void nativeTCPSocket::close()
{
    m_socket.close();
    m_state = State::NotConnected;
}

} // namespace Zorvan
