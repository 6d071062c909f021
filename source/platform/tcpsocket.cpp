#include "platform/tcpsocket.h"

#include "platform/socketcalls_p.h"

#include <algorithm>

namespace Zorvan::platform {
namespace {

constexpr std::size_t longestPiece = 49152; // bytes
constexpr std::chrono::milliseconds connectLimit(200); // a peer of this machine answers in far less

} // namespace

TcpSocket::~TcpSocket()
{
    close();
}

bool TcpSocket::connect(const char *address, std::uint16_t port)
{
    close();
    socketcalls::Address peer;
    if (address == nullptr || !socketcalls::parseAddress(address, port, peer))
        return false;
    m_handle = socketcalls::open();
    m_isBlocking = true;
    if (isOpen() && socketcalls::connect(m_handle, peer, connectLimit)) {
        if (!socketcalls::isConnectedToItself(m_handle))
            return true;
        m_state = SocketState::Refused;
    } else {
        m_state = socketcalls::lastState();
    }
    const SocketState reason = m_state;
    close();
    m_state = reason;
    return false;
}

std::int64_t TcpSocket::send(std::string_view bytes)
{
    m_state = SocketState::Ok;
    if (!isOpen())
        return -1;
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const std::size_t piece = std::min(longestPiece, bytes.size() - sent);
        const std::int64_t count = socketcalls::send(m_handle, bytes.data() + sent, piece);
        if (count < 0) {
            const SocketState reason = socketcalls::lastState();
            m_state = reason;
            return reason == SocketState::WouldBlock ? static_cast<std::int64_t>(sent) : -1;
        }
        sent += static_cast<std::size_t>(count);
    }
    return static_cast<std::int64_t>(sent);
}

std::int64_t TcpSocket::receive(char *buffer, std::size_t capacity)
{
    m_state = SocketState::Ok;
    if (!isOpen())
        return -1;
    // Waiting is left to waitReadable(), which shutDown() wakes on every system.
    if (m_isBlocking)
        socketcalls::waitReadable(m_handle, std::chrono::milliseconds(-1));
    const std::int64_t count = socketcalls::receive(m_handle, buffer, capacity);
    if (count >= 0)
        return count;
    const SocketState reason = socketcalls::lastState();
    m_state = reason;
    if (reason == SocketState::WouldBlock)
        return -2;
    return reason == SocketState::Reset || reason == SocketState::Aborted ? 0 : -1;
}

bool TcpSocket::waitReadable(std::chrono::milliseconds limit)
{
    return isOpen() && socketcalls::waitReadable(m_handle, limit);
}

bool TcpSocket::waitWritable(std::chrono::milliseconds limit)
{
    return isOpen() && socketcalls::waitWritable(m_handle, limit);
}

std::size_t TcpSocket::pendingBytes() const
{
    return isOpen() ? socketcalls::pendingBytes(m_handle) : 0;
}

void TcpSocket::setBlocking(bool blocking)
{
    if (!isOpen())
        return;
    socketcalls::setBlocking(m_handle, blocking);
    m_isBlocking = blocking;
}

// Leaves the state alone: it belongs to the thread that may be waiting.
void TcpSocket::shutDown()
{
    if (isOpen())
        socketcalls::shutDown(m_handle);
}

// The system's default for lingering stays: closing returns at once, and what was sent is still delivered.
void TcpSocket::close()
{
    if (isOpen())
        socketcalls::close(m_handle);
    m_handle = invalidHandle;
    m_state = SocketState::Ok;
}

} // namespace Zorvan::platform
