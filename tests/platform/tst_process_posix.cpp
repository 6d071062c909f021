#include "platform/process.h"
#include "support.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvan::platform::tests {
namespace {

/// Another test may search for its processes at the same time.
std::string ownName()
{
    return std::to_string(getpid()) + 'z';
}

TEST(PosixProcess, detachedProgramSharesNothingWithItsStarter)
{
    const TemporaryFolder folder;
    const std::string report = folder / "report";
    const std::string script =
        makeScript(folder / "script",
                   "(cut -d ' ' -f 6 /proc/$$/stat; readlink /proc/$$/fd/[0-9]; "
                   "grep SigBlk /proc/$$/status; sed -n 's/^SigIgn:.*\\(....\\)$/\\1/p' "
                   "/proc/$$/status) > \"$1.new\"; mv \"$1.new\" \"$1\"");
    const int inherited = dup(STDERR_FILENO);
    const auto handler = std::signal(SIGPIPE, SIG_IGN);
    ASSERT_TRUE(startDetached(script, {report}));
    std::signal(SIGPIPE, handler);
    close(inherited);
    ASSERT_TRUE(eventually([&] { return fileExists(report.c_str()); }));
    const std::string lines = contentOf(report);
    const std::size_t lineEnd = lines.find('\n');
    EXPECT_NE(lines.substr(0, lineEnd), std::to_string(getsid(0)));
    EXPECT_EQ(lines.substr(lineEnd + 1), "/dev/null\n/dev/null\n/dev/null\nSigBlk:\t0000000000000000\n0000\n")
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
    const auto handler = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_TRUE(startDetached("true", {})) << "though the host ignores its children";
    EXPECT_FALSE(startDetached("./nothing", {}));
    std::signal(SIGCHLD, handler);
}

TEST(PosixProcess, endedButUncollectedProcessDoesNotCount)
{
    const std::string name = "z) " + ownName();
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_NAME, name.c_str());
        pause();
    }
    EXPECT_TRUE(eventually([&] { return isProcessRunning(name.c_str()); }));
    kill(child, SIGKILL);
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
    EXPECT_FALSE(isProcessRunning(name.c_str()));
    waitpid(child, nullptr, 0);
}

TEST(PosixProcess, programOfAnotherUserDoesNotCount)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only the administrator can become somebody else";
    const std::string name = "u" + ownName();
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_NAME, name.c_str());
        if (setuid(65534) == 0 && prctl(PR_SET_DUMPABLE, 1) == 0 && write(ready[1], "x", 1) == 1)
            pause();
        _exit(1);
    }
    char byte = 0;
    EXPECT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_FALSE(isProcessRunning(name.c_str()));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
}

TEST(PosixProcess, scriptIsKnownByItsOwnNameButNotByOneItReads)
{
    const TemporaryFolder folder;
    const std::string document = folder / ("document" + ownName());
    ASSERT_EQ(mkfifo(document.c_str(), 0600), 0);
    const std::string script =
        makeScript(folder / ("zorvan-script-with-long-name" + ownName()), "read line < \"$1\"");
    ASSERT_TRUE(startDetached(script, {document}));
    EXPECT_TRUE(eventually([] { return isProcessRunning(("long-name" + ownName()).c_str()); }));
    EXPECT_FALSE(isProcessRunning(("document" + ownName()).c_str()));
    EXPECT_TRUE(eventually([&] { return replaceFile(document.c_str(), "end\n"); })) << "the script reads it";
}

} // namespace
} // namespace Zorvan::platform::tests
