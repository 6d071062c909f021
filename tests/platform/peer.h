#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Zorvan::platform::tests {

/// The other end of a TcpSocket: a server on a free port of this machine, for one connection at a time.
class Peer
{
public:
    Peer();
    ~Peer();
    Peer(const Peer &) = delete;
    Peer &operator=(const Peer &) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_port; }
    /// Waits for the next connection; drops the one before.
    void accept();
    /// Exactly \a count bytes; fewer if the connection ends before.
    std::string read(std::size_t count);
    void write(std::string_view bytes);
    void close();
    /// Ends the connection with a reset.
    void reset();
    void stopListening();

private:
    std::intptr_t m_listener;
    std::intptr_t m_connection = -1;
    std::uint16_t m_port = 0;
};

} // namespace Zorvan::platform::tests
