#include "lowlevelfunctions/nativetcpsocket.h"
#include "platform/peer.h"

#include <gtest/gtest.h>

namespace Zorvan {
namespace {

using State = nativeTCPSocket::State;

TEST(NativeTcpSocket, StateTellsHowConnectingEnded)
{
    platform::tests::Peer peer;
    nativeTCPSocket socket;
    EXPECT_EQ(socket.state(), State::NotConnected);
    EXPECT_TRUE(socket.connect("127.0.0.1", peer.port()));
    EXPECT_EQ(socket.state(), State::Connected);
    socket.close();
    EXPECT_EQ(socket.state(), State::NotConnected);
    EXPECT_EQ(socket.send("y"), -1);
    EXPECT_FALSE(socket.connect("1.2.3.256", peer.port()));
    EXPECT_EQ(socket.state(), State::NotConnected) << "no address, no attempt";
    EXPECT_FALSE(socket.connect("255.255.255.255", peer.port()));
    EXPECT_EQ(socket.state(), State::Refused) << "out of reach";
    peer.stopListening();
    EXPECT_FALSE(socket.connect("127.0.0.1", peer.port()));
    EXPECT_EQ(socket.state(), State::Refused);
}

} // namespace
} // namespace Zorvan
