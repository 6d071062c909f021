#include "platform/process.h"
#include "support.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvan::platform::tests {
namespace {

std::string makeScript(const std::string &path, const std::string &commands)
{
    replaceFile(path.c_str(), "#!/bin/sh\n" + commands);
    chmod(path.c_str(), 0755);
    return path;
}

/// A pipe in the file system: reading waits until somebody has opened it, written and closed it.
class NamedPipe
{
public:
    explicit NamedPipe(std::string path)
        : m_path(std::move(path))
    {
        mkfifo(m_path.c_str(), 0600);
    }
    [[nodiscard]] std::string read() const
    {
        std::string text(4096, '\0');
        std::size_t length = 0;
        const int file = open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
        for (ssize_t count = 1; count > 0;) {
            count = ::read(file, text.data() + length, text.size() - length);
            length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
        close(file);
        return text.substr(0, length);
    }

private:
    std::string m_path;
};

TEST(PosixProcess, detachedProgramSharesNothingWithItsStarter)
{
    const TemporaryFolder folder;
    const NamedPipe pipe(folder / "pipe");
    const std::string script =
        makeScript(folder / "script",
                   "(cut -d ' ' -f 6 /proc/$$/stat; readlink /proc/$$/fd/[0-9]; "
                   "grep SigBlk /proc/$$/status; sed -n 's/^SigIgn:.*\\(....\\)$/\\1/p' "
                   "/proc/$$/status) > \"$1\"");
    const int inherited = dup(STDERR_FILENO);
    const auto handler = std::signal(SIGPIPE, SIG_IGN);
    ASSERT_TRUE(startDetached(script, {folder / "pipe"}));
    std::signal(SIGPIPE, handler);
    close(inherited);
    const std::string report = pipe.read();
    const std::size_t lineEnd = report.find('\n');
    EXPECT_NE(report.substr(0, lineEnd), std::to_string(getsid(0)));
    EXPECT_EQ(report.substr(lineEnd + 1),
              "/dev/null\n/dev/null\n/dev/null\nSigBlk:\t0000000000000000\n0000\n")
        << "standard files, blocked signals, ignored ones up to SIGTERM";
}

TEST(PosixProcess, startingNeitherLeavesNorStealsChildren)
{
    const pid_t hostsChild = fork();
    if (hostsChild == 0)
        _exit(3);
    EXPECT_TRUE(startDetached("true", {}));
    int status = 0;
    EXPECT_EQ(waitpid(hostsChild, &status, 0), hostsChild);
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_EQ(waitpid(-1, &status, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(PosixProcess, startingWorksWhereTheHostIgnoresItsChildren)
{
    const auto handler = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_TRUE(startDetached("true", {}));
    std::signal(SIGCHLD, handler);
    const TemporaryFolder folder;
    ASSERT_TRUE(replaceFile((folder / "plain").c_str(), "not a program"));
    EXPECT_FALSE(startDetached(folder / "plain", {})) << "not executable";
}

TEST(PosixProcess, endedButUncollectedProcessDoesNotCount)
{
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_NAME, "zorvan) zombie");
        pause();
    }
    EXPECT_TRUE(eventually([] { return isProcessRunning("zorvan) zombie"); }));
    kill(child, SIGKILL);
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
    EXPECT_FALSE(isProcessRunning("zorvan) zombie"));
    waitpid(child, nullptr, 0);
}

TEST(PosixProcess, scriptIsKnownByItsOwnNameButNotByOneItReads)
{
    const TemporaryFolder folder;
    const NamedPipe pipe(folder / "zorvan-document.exe");
    const std::string script = makeScript(folder / "zorvan-script-with-long-name", "read line < \"$1\"");
    ASSERT_TRUE(startDetached(script, {folder / "zorvan-document.exe"}));
    EXPECT_TRUE(eventually([] { return isProcessRunning("script-with-long-name"); }));
    EXPECT_FALSE(isProcessRunning("zorvan-document.exe"));
    const std::string document = folder / "zorvan-document.exe";
    EXPECT_TRUE(eventually([&] { return replaceFile(document.c_str(), "end\n"); })) << "the script reads it";
}

} // namespace
} // namespace Zorvan::platform::tests
