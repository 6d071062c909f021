// The link to a daemon that is slow, deaf or comes and goes: nobody waits longer than promised.

#include "process/daemontest.h"

#include <algorithm>
#include <thread>

using namespace Zorvan;
using namespace Zorvan::platform::tests;
using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

namespace {

const std::string question = "<assert>why</assert>";

template <typename Action>
std::chrono::steady_clock::duration timeOf(Action action)
{
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::steady_clock::now() - start;
}

class DaemonLinkFaults : public test::DaemonLinkTest
{
protected:
    static bool logHas(const std::string &line)
    {
        const Lines lines = log();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    Variable m_habits{"DAEMON_HABITS", std::nullopt};
};

TEST_F(DaemonLinkFaults, ADaemonThatReadsNothingHoldsNobodyUp)
{
    ASSERT_TRUE(setUp());
    kill(daemon(), SIGSTOP);
    constexpr int moreThanBuffersHold = 400'000;
    for (int i = 0; i < moreThanBuffersHold; ++i)
        m_link.sendProgress("messageStart");
    EXPECT_EQ(ask(), DaemonLink::sendingFailed);
    EXPECT_LT(timeOf([&] { m_link.finish(); }), 1s) << "nobody waits for an answer to what was not sent";
}

TEST_F(DaemonLinkFaults, APartOfARequestIsTheLastThingADaemonGets)
{
    ASSERT_TRUE(setUp());
    kill(daemon(), SIGSTOP);
    const std::string text(32U << 20, 'x');
    EXPECT_EQ(m_link.showBox("title", text, 4, {}), DaemonLink::sendingFailed);
    EXPECT_LT(timeOf([&] { EXPECT_EQ(ask(), DaemonLink::sendingFailed); }), 5s);
}

TEST_F(DaemonLinkFaults, ANoticeIsSkippedWhileAnotherThreadWaitsForItsAnswer)
{
    m_answers.set("silent");
    ASSERT_TRUE(setUp());
    std::thread waiting([&] { EXPECT_EQ(ask(), DaemonLink::noAnswer); });
    EXPECT_TRUE(receives(question));
    m_link.sendProgress("messageStart");
    m_link.finish();
    waiting.join();
    EXPECT_TRUE(receives(question + "<exit/>"));
}

TEST_F(DaemonLinkFaults, BytesTooManyAreNoAnswerToTheNextRequest)
{
    m_answers.set("twice:262144 16384");
    ASSERT_TRUE(setUp());
    EXPECT_EQ(ask(), 262144);
    EXPECT_EQ(ask(), 16384);
}

TEST_F(DaemonLinkFaults, ADaemonMayListenLaterThanItWritesItsPort)
{
    m_habits.set("latecomer");
    startDaemon();
    ASSERT_TRUE(setUp());
    EXPECT_EQ(ask(), 16384);
}

TEST_F(DaemonLinkFaults, ADaemonThatIgnoresTheExitIsLeftAfterOneSecond)
{
    m_habits.set("clinging");
    ASSERT_TRUE(setUp());
    const auto time = timeOf([&] { m_link.finish(); });
    EXPECT_GE(time, 1s);
    EXPECT_LT(time, 5s);
    EXPECT_TRUE(receives("<exit/>"));
}

TEST_F(DaemonLinkFaults, WhoWaitsForAnAnswerLeavesAtTheEndEvenIfTheDaemonStays)
{
    m_answers.set("silent");
    m_habits.set("clinging");
    ASSERT_TRUE(setUp());
    std::thread waiting([&] { EXPECT_EQ(ask(), DaemonLink::noAnswer); });
    EXPECT_TRUE(receives(question));
    m_link.finish();
    waiting.join();
}

TEST_F(DaemonLinkFaults, AnEndDuringTheSetUpLeavesNoConnection)
{
    m_link.finish(); // one before the set-up changes nothing
    std::thread settingUp([&] { EXPECT_TRUE(setUp()); });
    EXPECT_TRUE(eventually([&] { return logHas("++++ starting debug daemon process..."); }));
    m_link.finish();
    settingUp.join();
    EXPECT_EQ(ask(), DaemonLink::sendingFailed);
    EXPECT_TRUE(eventually([&] { return !platform::isProcessRunning(m_program.c_str()); }))
        << "it ends with its last connection";
}

} // namespace
