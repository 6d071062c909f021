#pragma once

#include "syslogsocket.h"

#include <cstdint>
#include <deque>
#include <string>

namespace SignalGenerator {

/// Messages in the order in which they go out: those that were sent, as far as they are kept for the next
/// connection, then those to be sent. One thread.
class SyslogOutbox
{
public:
    /// \a keptBytes: how much of what was sent is kept.
    explicit SyslogOutbox(std::size_t keptBytes);

    void add(std::string message);
    [[nodiscard]] bool hasUnsent() const { return m_next < m_messages.size(); }
    /// Hands a part of what is unsent to the connection; false: it took nothing.
    bool sendSome(SyslogSocket &socket);
    /// On a new connection everything that is kept goes out again. The collector may have read it all; it
    /// tells by the numbers of the lines.
    void sendAllAgain();

    [[nodiscard]] std::uint64_t sent() const { return m_sent; } ///< each message once
    [[nodiscard]] std::uint64_t sentAgain() const { return m_sentAgain; }
    [[nodiscard]] std::uint64_t neverSent() const { return m_messages.size() - m_oldCount; }

private:
    void countSent(std::size_t bytes);
    void limitKept();

    const std::size_t m_keptBytes;
    std::deque<std::string> m_messages;
    std::size_t m_next = 0; // the first that is not sent, or sent in part, on this connection
    std::size_t m_offset = 0; // how much of it is
    std::size_t m_oldCount = 0; // how many at the front were sent at least once
    std::size_t m_sentBytes = 0; // of those before m_next
    std::uint64_t m_sent = 0;
    std::uint64_t m_sentAgain = 0;
};

} // namespace SignalGenerator
