#pragma once

#include "platform/tcpsocket.h"

namespace Zorvan {

/// A connection to the debug daemon: a TcpSocket that remembers in one number how its last attempt to connect
/// ended. The same threads may use it as a TcpSocket.
class nativeTCPSocket
{
public:
    enum class State {
        NotConnected = 0, ///< never tried, closed, or failed for a reason not named here
        Connected = 1,
        Refused = 2, ///< or out of reach
        InProgress = 3,
    };

    nativeTCPSocket() = default;
    virtual ~nativeTCPSocket() = default;
    nativeTCPSocket(const nativeTCPSocket &) = delete;
    nativeTCPSocket &operator=(const nativeTCPSocket &) = delete;

    /// Connects to a numeric IPv4 address; what was connected before is closed.
    bool connect(const char *address, std::uint16_t port);
    [[nodiscard]] State state() const { return m_state; }

    /// \name As in TcpSocket
    /// @{
    std::int64_t send(std::string_view bytes) { return m_socket.send(bytes); }
    std::int64_t receive(char *buffer, std::size_t capacity) { return m_socket.receive(buffer, capacity); }
    bool waitReadable(std::chrono::milliseconds limit) { return m_socket.waitReadable(limit); }
    bool waitWritable(std::chrono::milliseconds limit) { return m_socket.waitWritable(limit); }
    [[nodiscard]] std::size_t pendingBytes() const { return m_socket.pendingBytes(); }
    void setBlocking(bool blocking) { m_socket.setBlocking(blocking); }
    void shutDown() { m_socket.shutDown(); }
    void close();
    /// @}

private:
    platform::TcpSocket m_socket;
    State m_state = State::NotConnected;
};

} // namespace Zorvan
