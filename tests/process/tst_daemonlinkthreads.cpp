// Several threads at one link. The daemon is a thread of the test, so that race checkers see both sides.

#include "lowlevelfunctions/daemonlink.h"
#include "platform/files.h"
#include "platform/peer.h"
#include "platform/support.h"
#include "support/crew.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

using namespace Zorvan;
using namespace Zorvan::platform::tests;

namespace {

const std::string request = "<msgbox>1[#]a[#]b</msgbox>";

/// The test process itself counts as the running daemon, by its name.
class DaemonLinkThreads : public testing::Test
{
protected:
    DaemonLinkThreads()
    {
        prctl(PR_SET_NAME, m_name.c_str());
        const std::string ports = std::to_string(m_daemon.port()) + "\n0\n";
        EXPECT_TRUE(platform::replaceFile((m_folder / "DebugDaemonRunning_assertion.lock").c_str(), ports));
    }
    int showBox(int type) { return m_link.showBox("a", "b", type, {}); }

    const std::string m_name = "zd" + std::to_string(getpid()) + 'x';
    const TemporaryFolder m_folder;
    const Variable m_temp{"TEMP", m_folder.path()};
    Peer m_daemon;
    DaemonLink m_link{m_name};
};

TEST_F(DaemonLinkThreads, EachRequestGetsItsOwnAnswer)
{
    constexpr int rounds = 5;
    constexpr int askers = 4;
    const test::Crew crew(askers, [this](int asker) {
        for (int round = 0; round < rounds; ++round)
            EXPECT_EQ(showBox(asker + 1), '1' + asker);
    });
    m_daemon.accept();
    for (int i = 0; i < askers * rounds; ++i) {
        const std::int32_t answer = m_daemon.read(request.size())[std::strlen("<msgbox>")];
        m_daemon.write({reinterpret_cast<const char *>(&answer), sizeof answer});
    }
}

TEST_F(DaemonLinkThreads, ExitMeetsWaitingAndNewRequests)
{
    std::array<std::atomic<int>, 2> results{};
    test::Crew crew(3, [&](int) { ++results.at(static_cast<std::size_t>(showBox(1))); });
    m_daemon.accept();
    EXPECT_EQ(m_daemon.read(request.size()), request);
    std::thread otherExit([this] { m_link.finish(); });
    m_link.finish();
    otherExit.join();
    crew.join();
    EXPECT_EQ(results[DaemonLink::noAnswer], 1) << "woken";
    EXPECT_EQ(results[DaemonLink::sendingFailed], 2) << "came too late";
    EXPECT_EQ(m_daemon.read(7), "<exit/>");
    EXPECT_EQ(m_daemon.read(1), "");
}

} // namespace
