#pragma once

#include "lowlevelfunctions/daemonlink.h"
#include "lowlevelfunctions/loglines.h"
#include "platform/process.h"
#include "platform/support.h"
#include "support/programdata.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace Zorvan::test {

using platform::tests::TemporaryFolder;
using platform::tests::Variable;

/// A folder for a daemon in a process of its own, and its answers.
class DaemonTest : public testing::Test
{
protected:
    ~DaemonTest() override
    {
        if (daemon() > 0)
            kill(daemon(), SIGKILL);
    }

    void installDaemon(const std::string &name) { std::filesystem::create_symlink(DAEMON, m_folder / name); }
    [[nodiscard]] pid_t daemon() const { return std::atoi(readFile(m_folder / "pid").c_str()); }
    /// What the daemon got so far on its first, second ... connection.
    [[nodiscard]] std::string received(int connection = 1) const
    {
        return readFile(m_folder / ("received-" + std::to_string(connection)));
    }
    static std::vector<std::string> log() { return messagesIn("GYX-syslog-0.log"); }

    const TemporaryFolder m_folder;
    const Variable m_temp{"TEMP", m_folder.path()};
    const Variable m_path{"PATH", m_folder.path() + ':' + std::getenv("PATH")};
    Variable m_content{"DAEMON_LOCKFILE", "%\n5001\n"};
    Variable m_answers{"DAEMON_ANSWERS", "16384"};
};

/// A link to a daemon whose program has a name that no other process of the machine has.
class DaemonLinkTest : public DaemonTest
{
protected:
    DaemonLinkTest() { installDaemon(m_program); }

    void startDaemon()
    {
        ASSERT_TRUE(platform::startDetached(m_folder / m_program, {"assertion"}));
        ASSERT_TRUE(platform::tests::eventually([&] { return std::filesystem::exists(lockFile()); }));
    }
    bool setUp(const char *name = nullptr) { return m_link.setUp(m_port, m_secondPort, name); }
    int ask()
    {
        const platform::Locked guard(m_link);
        EXPECT_TRUE(m_link.isUp());
        return m_link.ask("<assert>why</assert>");
    }
    [[nodiscard]] std::string lockFile(const std::string &name = "assertion") const
    {
        return m_folder / ("DebugDaemonRunning_" + name + ".lock");
    }
    bool receives(const std::string &bytes, int connection = 1)
    {
        return platform::tests::eventually([&] { return received(connection) == bytes; });
    }

    const std::string m_program = "DebugDaemon" + std::to_string(getpid()) + "x";
    DaemonLink m_link{m_program};
    int m_port = 1;
    int m_secondPort = 2;
};

} // namespace Zorvan::test
