// The link to the debug daemon when the daemon is slow, deaf or comes and goes: nobody waits longer than
// promised.

#include "lowlevelfunctions/daemonlink.h"
#include "lowlevelfunctions/loglines.h"
#include "platform/process.h"
#include "platform/support.h"
#include "support/programdata.h"

#include <algorithm>
#include <arpa/inet.h>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

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

class DaemonLinkFaults : public testing::Test
{
protected:
    DaemonLinkFaults() { std::filesystem::create_symlink(DAEMON, m_folder / m_program); }
    ~DaemonLinkFaults() override
    {
        if (daemon() > 0)
            kill(daemon(), SIGKILL);
    }
    [[nodiscard]] pid_t daemon() const { return std::atoi(test::readFile(m_folder / "pid").c_str()); }
    [[nodiscard]] std::string lockFile() const { return m_folder / "DebugDaemonRunning_assertion.lock"; }
    void startDaemon()
    {
        ASSERT_TRUE(platform::startDetached(m_folder / m_program, {"assertion"}));
        ASSERT_TRUE(eventually([&] { return std::filesystem::exists(lockFile()); }));
    }
    bool setUp()
    {
        int secondPort = 0;
        return m_link.setUp(m_port, secondPort, nullptr);
    }
    int ask()
    {
        const platform::Locked guard(m_link);
        EXPECT_TRUE(m_link.isUp());
        return m_link.ask(question);
    }
    bool receives(const std::string &bytes)
    {
        return eventually([&] { return test::readFile(m_folder / "received-1") == bytes; });
    }
    bool logHas(const std::string &line)
    {
        const Lines lines = test::messagesIn("GYX-syslog-0.log");
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    const TemporaryFolder m_folder;
    const std::string m_program = "DebugDaemon" + std::to_string(getpid()) + "y";
    const Variable m_temp{"TEMP", m_folder.path()};
    const Variable m_path{"PATH", m_folder.path() + ':' + std::getenv("PATH")};
    Variable m_content{"DAEMON_LOCKFILE", "%\n5001\n"};
    Variable m_answers{"DAEMON_ANSWERS", "16384"};
    Variable m_habits{"DAEMON_HABITS", std::nullopt};
    DaemonLink m_link{m_program};
    int m_port = 0;
};

TEST_F(DaemonLinkFaults, ADaemonThatReadsNothingHoldsNobodyUp)
{
    ASSERT_TRUE(setUp());
    kill(daemon(), SIGSTOP);
    constexpr int moreThanBuffersHold = 400'000;
    for (int i = 0; i < moreThanBuffersHold; ++i)
        m_link.sendProgress("messageStart");
    EXPECT_EQ(ask(), DaemonLink::sendingFailed);
    EXPECT_LT(timeOf([&] { m_link.finish(); }), 800ms) << "nobody waits for an answer to what was not sent";
}

TEST_F(DaemonLinkFaults, APartOfARequestIsTheLastThingADaemonGets)
{
    ASSERT_TRUE(setUp());
    kill(daemon(), SIGSTOP);
    const std::string text(32U << 20, 'x');
    EXPECT_EQ(m_link.showBox("title", text, 4, {}), DaemonLink::sendingFailed);
    EXPECT_LT(timeOf([&] { EXPECT_EQ(ask(), DaemonLink::sendingFailed); }), 2s);
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
    EXPECT_LT(time, 2500ms);
    EXPECT_TRUE(receives("<exit/>"));
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

/// Standard error of this process, which a test can read while it is written.
class StandardError
{
public:
    StandardError()
    {
        EXPECT_EQ(pipe(m_ends), 0);
        dup2(m_ends[1], STDERR_FILENO);
        close(m_ends[1]);
    }
    ~StandardError()
    {
        dup2(m_before, STDERR_FILENO);
        close(m_before);
        close(m_ends[0]);
    }
    StandardError(const StandardError &) = delete;
    StandardError &operator=(const StandardError &) = delete;

    /// Waits for the next line.
    std::string line()
    {
        std::string text;
        for (char c = 0; read(m_ends[0], &c, 1) == 1 && c != '\n';)
            text += c;
        return text;
    }

private:
    const int m_before = dup(STDERR_FILENO);
    int m_ends[2] = {-1, -1};
};

TEST_F(DaemonLinkFaults, NothingIsStartedOnceADaemonWasSeen)
{
    m_content.set("5000");
    startDaemon();
    StandardError errors;
    std::thread settingUp([&] { EXPECT_FALSE(setUp()); });
    EXPECT_EQ(errors.line(), "opened port count: 1");
    std::filesystem::remove(lockFile());
    kill(daemon(), SIGKILL);
    settingUp.join();
    EXPECT_FALSE(logHas("++++ starting debug daemon process..."));
}

/// A listener at the port to which a started daemon without a port is connected: that of -1.
int listenAtLastPort()
{
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(65535);
    EXPECT_TRUE(eventually([&] {
        return bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    })) << "the same test of another build may be at it";
    listen(listener, 1);
    return listener;
}

TEST_F(DaemonLinkFaults, AStartedDaemonThatTellsNoPortIsTriedAtTheOneKnownSoFar)
{
    m_content.set(std::nullopt);
    test::writeFile(lockFile(), "5000");
    const int listener = listenAtLastPort();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(setUp());
    EXPECT_EQ(test::linesOf(testing::internal::GetCapturedStderr()), Lines(9, "opened port count: 1"));
    EXPECT_EQ(m_port, -1);
    const platform::Locked guard(m_link);
    EXPECT_TRUE(m_link.isUp());
    close(listener);
}

} // namespace
