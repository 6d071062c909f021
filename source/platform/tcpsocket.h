#pragma once

/// A plain TCP client for one local peer, usable without Qt and without an event loop.

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Zorvan::platform {

/// Why the last operation of a TcpSocket failed. The numbers are the classical socket codes, on every system.
enum class SocketState : int {
    Ok = 0, ///< no failure, or one that has no number below
    AccessDenied = 10013,
    WouldBlock = 10035,
    InProgress = 10036,
    NetworkUnreachable = 10051,
    Aborted = 10053,
    Reset = 10054,
    AlreadyConnected = 10056,
    TimedOut = 10060,
    Refused = 10061,
};

/// One stream connection. Not for two threads at once, except that while the connection stays open other
/// threads may call send(), the waits and shutDown(); the last wakes a thread that waits in waitReadable(),
/// waitWritable() or receive().
///
/// Sending to a closed peer never raises a signal. The descriptor is close-on-exec. After close() every
/// operation fails at once; the number of the old descriptor is never used again.
class TcpSocket
{
public:
    TcpSocket() = default;
    ~TcpSocket();
    TcpSocket(const TcpSocket &) = delete;
    TcpSocket &operator=(const TcpSocket &) = delete;

    /// Connects to a numeric IPv4 address ("127.0.0.1"). One attempt of at most 200 ms; a fresh
    /// descriptor at each call. A connection that ends up at its own port counts as refused.
    bool connect(const char *address, std::uint16_t port);
    [[nodiscard]] bool isOpen() const { return m_handle != invalidHandle; }
    /// Bytes taken by the system: all of them, fewer if it would block, -1 if the connection is gone.
    std::int64_t send(std::string_view bytes);
    /// Bytes received; 0 when the connection has ended, orderly or not, -2 if it would block, -1 on other
    /// errors.
    std::int64_t receive(char *buffer, std::size_t capacity);
    /// Waits until something can be read or the connection has ended; false at once when not open, or after
    /// the limit. A negative limit waits without end.
    bool waitReadable(std::chrono::milliseconds limit);
    /// The same until something can be sent or the connection has ended.
    bool waitWritable(std::chrono::milliseconds limit);
    /// Bytes that can be received without waiting; 0 if none or unknown.
    [[nodiscard]] std::size_t pendingBytes() const;
    /// A new connection blocks.
    void setBlocking(bool blocking);
    /// Ends the connection both ways but keeps the descriptor.
    void shutDown();
    void close();
    /// The failure of the last operation, of whichever thread.
    [[nodiscard]] SocketState state() const { return m_state; }

private:
    static constexpr std::intptr_t invalidHandle = -1;
    std::intptr_t m_handle = invalidHandle;
    std::atomic<SocketState> m_state{SocketState::Ok};
    bool m_isBlocking = true;
};

} // namespace Zorvan::platform
