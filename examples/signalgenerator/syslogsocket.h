#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <sys/uio.h>

struct addrinfo;

namespace SignalGenerator {

/// Where a collector listens.
struct SyslogAddress
{
    std::string host; ///< name or number
    std::string port;
};

/// Reads "host:port" or "[number]:port"; false: it is neither, which the standard error tells.
[[nodiscard]] bool parseSyslogAddress(const std::string &text, SyslogAddress &address);

/// The TCP connection to a collector. One thread, but wake() may be called by any.
///
/// Nothing waits longer than it is told to, but the look-up of a host's name, which the system limits.
/// Errors: nothing throws; what fails closes the connection.
class SyslogSocket
{
public:
    using Clock = std::chrono::steady_clock;

    SyslogSocket();
    ~SyslogSocket();
    SyslogSocket(const SyslogSocket &) = delete;
    SyslogSocket &operator=(const SyslogSocket &) = delete;

    [[nodiscard]] bool isOpen() const { return m_socket >= 0; }
    /// Each address of the host gets its share of the time. False: nobody answered.
    [[nodiscard]] bool open(const SyslogAddress &address, Clock::time_point deadline);
    void close();

    /// Sends what fits into the system's buffer and returns its size.
    [[nodiscard]] std::size_t send(const iovec *pieces, std::size_t count);
    /// Tells the collector that nothing follows, and waits until it has closed the connection, too. True: it
    /// read everything before it did; the system resets a connection that is closed with unread bytes.
    [[nodiscard]] bool finish(Clock::time_point deadline);

    enum class For { Room, Lines };
    /// Until there is room in the system's buffer (Room only), wake() was called, the collector has closed
    /// the connection, or the time is over.
    void wait(For what, Clock::time_point deadline);
    void wake();

private:
    [[nodiscard]] bool connect(const addrinfo &address, Clock::time_point deadline);
    /// Whether the collector's system has acknowledged everything, our end included.
    [[nodiscard]] bool allAcknowledged() const;
    /// Looks at what came back, which is nothing but the end. True: it is there.
    [[nodiscard]] bool endCame();

    int m_socket = -1;
    const int m_wake; // an eventfd
};

} // namespace SignalGenerator
