#include "peer.h"
#include "platform/lock.h"
#include "platform/tcpsocket.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace Zorvan::platform::tests {
namespace {

using namespace std::chrono_literals;

class ConnectedSocket : public testing::Test
{
protected:
    void SetUp() override { reconnect(); }
    void reconnect()
    {
        ASSERT_TRUE(m_socket.connect("127.0.0.1", m_peer.port()));
        m_peer.accept();
    }
    std::int64_t receive() { return m_socket.receive(m_buffer.data(), m_buffer.size()); }

    Peer m_peer;
    TcpSocket m_socket;
    std::array<char, 64> m_buffer{};
};

TEST_F(ConnectedSocket, bytesGoBothWaysUntilTheOrderlyEnd)
{
    EXPECT_EQ(m_socket.send("hello"), 5);
    EXPECT_EQ(m_peer.read(5), "hello");
    EXPECT_EQ(m_socket.pendingBytes(), 0U);
    EXPECT_FALSE(m_socket.waitReadable(0ms));
    m_peer.write("answer");
    EXPECT_TRUE(m_socket.waitReadable(-1ms));
    EXPECT_EQ(m_socket.pendingBytes(), 6U);
    EXPECT_EQ(receive(), 6);
    EXPECT_EQ(std::string(m_buffer.data(), 6), "answer");
    m_peer.close();
    EXPECT_TRUE(m_socket.waitReadable(-1ms));
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(m_socket.state(), SocketState::Ok);
}

TEST_F(ConnectedSocket, nonBlockingCallsReturnWhatIsDone)
{
    m_socket.setBlocking(false);
    EXPECT_EQ(receive(), -2);
    EXPECT_EQ(m_socket.state(), SocketState::WouldBlock);
    const std::string text(64U << 20, 'x');
    const std::int64_t sent = m_socket.send(text);
    EXPECT_GT(sent, 0);
    EXPECT_LT(sent, static_cast<std::int64_t>(text.size()));
    EXPECT_EQ(m_socket.state(), SocketState::WouldBlock);
    Thread reader([&] { m_peer.read(static_cast<std::size_t>(sent) + 1); });
    m_socket.setBlocking(true);
    EXPECT_EQ(m_socket.send("y"), 1);
    EXPECT_EQ(m_socket.state(), SocketState::Ok);
}

TEST_F(ConnectedSocket, resetEndsReceivingAndFailsSending)
{
    m_peer.reset();
    EXPECT_EQ(receive(), 0);
    reconnect();
    Thread breaker([&] {
        m_peer.read(1);
        m_peer.reset();
    });
    EXPECT_EQ(m_socket.send(std::string(64U << 20, 'x')), -1) << "though some pieces went out";
    EXPECT_EQ(m_socket.state(), SocketState::Reset);
    EXPECT_EQ(m_socket.send("after the end"), -1) << "and no signal";
}

TEST_F(ConnectedSocket, shutDownWakesAWaitingThread)
{
    for (int round = 0; round < 20; ++round) {
        Thread waiting([&] {
            // With and without the wait; early and late, as the threads happen to run.
            if (round % 2 == 0) {
                EXPECT_TRUE(m_socket.waitReadable(-1ms));
            }
            EXPECT_EQ(receive(), 0);
        });
        std::this_thread::sleep_for(std::chrono::microseconds(200 * round));
        m_socket.shutDown();
        waiting.join();
        EXPECT_EQ(m_peer.read(1), "");
        EXPECT_EQ(m_socket.send("x"), -1);
        EXPECT_EQ(m_socket.state(), SocketState::Reset);
        EXPECT_TRUE(m_socket.isOpen());
        reconnect();
    }
}

TEST_F(ConnectedSocket, closedSocketFailsAtOnce)
{
    m_socket.close();
    EXPECT_EQ(m_peer.read(1), "");
    EXPECT_FALSE(m_socket.isOpen());
    EXPECT_FALSE(m_socket.waitReadable(-1ms));
    EXPECT_EQ(m_socket.send("x"), -1);
    EXPECT_EQ(receive(), -1);
    EXPECT_EQ(m_socket.pendingBytes(), 0U);
    m_socket.shutDown();
    m_socket.setBlocking(false);
    m_socket.close();
    reconnect();
    EXPECT_EQ(m_socket.send("again"), 5);
    EXPECT_EQ(m_peer.read(5), "again");
}

TEST_F(ConnectedSocket, refusedConnectionDropsTheOldOne)
{
    m_peer.stopListening();
    EXPECT_FALSE(m_socket.connect("127.0.0.1", m_peer.port()));
    EXPECT_EQ(m_socket.state(), SocketState::Refused);
    EXPECT_FALSE(m_socket.isOpen());
    EXPECT_EQ(m_peer.read(1), "");
}

TEST_F(ConnectedSocket, onlyNumericAddressesConnect)
{
    for (const char *address :
         {"", "1.2.3", "1.2.3.256", "1.2.3.4.5", "127.0.0.1 ", "localhost", "0x7f.0.0.1"}) {
        EXPECT_FALSE(m_socket.connect(address, m_peer.port())) << address;
        EXPECT_EQ(m_socket.state(), SocketState::Ok);
    }
    EXPECT_FALSE(m_socket.connect(nullptr, m_peer.port()));
}

} // namespace
} // namespace Zorvan::platform::tests
