#include "peer.h"
#include "platform/socketcalls_p.h"

#include <array>
#include <csignal>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace Zorvan::platform::tests {
namespace {

using namespace std::chrono_literals;

class PosixTcpSocket : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_socket.connect("127.0.0.1", m_peer.port()));
        m_peer.accept();
    }

    Peer m_peer;
    TcpSocket m_socket;
};

volatile std::sig_atomic_t s_alarms = 0;

TEST_F(PosixTcpSocket, signalsNeitherShortenNorProlongAWait)
{
    struct sigaction action = {};
    action.sa_handler = [](int) { s_alarms = s_alarms + 1; };
    sigaction(SIGALRM, &action, nullptr);
    const itimerval everyTwoMilliseconds{{0, 2000}, {0, 2000}};
    setitimer(ITIMER_REAL, &everyTwoMilliseconds, nullptr);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(m_socket.waitReadable(50ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_GT(s_alarms, 0); // a loaded machine merges them
}

TEST_F(PosixTcpSocket, peerThatAcceptsNobodyIsGivenUpSoon)
{
    std::array<TcpSocket, 20> sockets; // more than fit into its queue
    SocketState state = SocketState::Ok;
    const auto start = std::chrono::steady_clock::now();
    for (TcpSocket &socket : sockets) {
        if (!socket.connect("127.0.0.1", m_peer.port())) {
            state = socket.state();
            break;
        }
    }
    EXPECT_EQ(state, SocketState::TimedOut);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s) << "the system's own limit is two minutes";
}

TEST_F(PosixTcpSocket, connectionToOneselfIsRecognised)
{
    m_peer.stopListening();
    socketcalls::Address own;
    ASSERT_TRUE(socketcalls::parseAddress("127.0.0.2", m_peer.port(), own));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = own.host;
    address.sin_port = own.port;
    const std::intptr_t socket = socketcalls::open();
    ASSERT_EQ(bind(static_cast<int>(socket), reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    ASSERT_TRUE(socketcalls::connect(socket, own, 1s));
    EXPECT_TRUE(socketcalls::isConnectedToItself(socket));
    socketcalls::close(socket);
}

} // namespace
} // namespace Zorvan::platform::tests
