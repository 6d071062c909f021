#include "peer.h"
#include "platform/tcpsocket.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/time.h>

namespace Zorvan::platform::tests {
namespace {

using namespace std::chrono_literals;

volatile std::sig_atomic_t s_alarms = 0;

/// Interrupts this process every two milliseconds, as the timers of a host do.
class Alarms
{
public:
    Alarms()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) { s_alarms = s_alarms + 1; };
        sigaction(SIGALRM, &action, nullptr);
        const itimerval often{{0, 2000}, {0, 2000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~Alarms()
    {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
    }
    Alarms(const Alarms &) = delete;
    Alarms &operator=(const Alarms &) = delete;
};

TEST(PosixTcpSocket, signalsNeitherShortenNorProlongAWait)
{
    Peer peer;
    TcpSocket socket;
    ASSERT_TRUE(socket.connect("127.0.0.1", peer.port()));
    peer.accept();
    const Alarms alarms;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(socket.waitReadable(50ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
    EXPECT_GT(s_alarms, 2);
    EXPECT_TRUE(socket.isOpen());
}

TEST(PosixTcpSocket, resetIsToldFromTheOrderlyEnd)
{
    Peer peer;
    TcpSocket socket;
    ASSERT_TRUE(socket.connect("127.0.0.1", peer.port()));
    peer.accept();
    peer.reset();
    char byte = 0;
    EXPECT_EQ(socket.receive(&byte, 1), 0);
    EXPECT_EQ(socket.state(), SocketState::Reset);
}

} // namespace
} // namespace Zorvan::platform::tests
