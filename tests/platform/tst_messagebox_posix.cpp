#include "platform/messagebox.h"
#include "support.h"

#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

namespace Zorvan::platform::tests {
namespace {

/// Stands in for the helper and for xmessage by scripts in a folder of its own.
class MessageBoxOnPosix : public testing::Test
{
protected:
    void makeHelper(const std::string &commands) { makeScript(m_folder / boxHelperName, commands); }

    /// Shows the box; keeps what went to standard error.
    BoxAnswer show(const std::string &text = "text")
    {
        testing::internal::CaptureStderr();
        const BoxAnswer answer = nativeMessageBox("title", text);
        m_standardError = testing::internal::GetCapturedStderr();
        return answer;
    }

    const TemporaryFolder m_folder;
    Variable m_helpers{"ZORVAN_HELPERS", m_folder.path()};
    Variable m_path{"PATH", m_folder.path()};
    Variable m_display{"DISPLAY", ":7"};
    Variable m_wayland{"WAYLAND_DISPLAY", std::nullopt};
    std::string m_standardError;
};

TEST_F(MessageBoxOnPosix, helperGetsTheTextsAndGivesTheAnswer)
{
    makeHelper("printf '%s|' \"$#\" \"$1\" \"$2\" > \"${0%/*}/seen\"; printf 'retry'");
    EXPECT_EQ(show("-two\n\xe4 lines `$x`"), BoxAnswer::Retry);
    EXPECT_EQ(contentOf(m_folder / "seen"), "2|title|-two\n\xe4 lines `$x`|");
    EXPECT_EQ(m_standardError, "");
    const auto handler = std::signal(SIGCHLD, SIG_IGN);
    makeHelper("echo abort");
    EXPECT_EQ(show(), BoxAnswer::Abort) << "though the host ignores its children";
    makeHelper("echo closed");
    EXPECT_EQ(show(), BoxAnswer::None) << "closed without an answer";
    EXPECT_EQ(m_standardError, "");
    std::signal(SIGCHLD, handler);
    makeHelper("echo ignore; exit 1");
    EXPECT_EQ(show(), BoxAnswer::Ignore);
    makeHelper("echo else");
    EXPECT_EQ(show(), BoxAnswer::None);
    EXPECT_EQ(m_standardError, "title: text\n") << "who says that has not shown it";
}

TEST_F(MessageBoxOnPosix, textTooLongForTheSystemLosesItsMiddle)
{
    makeHelper("printf '%s' \"$2\" > \"${0%/*}/seen\"; echo abort");
    const std::string half(51'200, 'x');
    EXPECT_EQ(show(half + std::string(30'000, '-') + std::string(half.size() - 10, 'y') + '\0' + "question?"),
              BoxAnswer::Abort);
    EXPECT_EQ(contentOf(m_folder / "seen"),
              half + "\n... (cut) ...\n" + std::string(half.size() - 10, 'y') + " question?");
}

TEST_F(MessageBoxOnPosix, closedStandardErrorDoesNotEndTheHost)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    const int before = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    const auto handler = std::signal(SIGPIPE, SIG_DFL);
    m_display.set(std::nullopt);
    EXPECT_EQ(nativeMessageBox("title", "text"), BoxAnswer::None);
    std::signal(SIGPIPE, handler);
    dup2(before, STDERR_FILENO);
    close(before);
    close(ends[1]);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST_F(MessageBoxOnPosix, withoutDisplayTheTextGoesToStandardError)
{
    makeHelper("echo abort");
    m_display.set(std::nullopt);
    EXPECT_EQ(show(), BoxAnswer::None);
    EXPECT_EQ(m_standardError, "title: text\n");
    m_wayland.set("wayland-0");
    EXPECT_EQ(show(), BoxAnswer::Abort);
}

TEST_F(MessageBoxOnPosix, xmessageIsTheLastResort)
{
    makeHelper("exit 2");
    makeScript(m_folder / "xmessage", "printf '%s|' \"$@\" > \"${0%/*}/seen\"; echo Retry");
    const auto handler = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(show("-text"), BoxAnswer::Retry);
    std::signal(SIGCHLD, handler);
    EXPECT_EQ(contentOf(m_folder / "seen"),
              "-center|-print|-title|title|-buttons|Abort,Retry,Ignore| -text|");
    makeScript(m_folder / "xmessage", "exit 1");
    EXPECT_EQ(show(), BoxAnswer::None);
    EXPECT_EQ(m_standardError, "title: text\n");
    m_path.set("");
    m_helpers.set("");
    EXPECT_EQ(show(), BoxAnswer::None) << "neither program exists";
    EXPECT_EQ(m_standardError, "title: text\n");
}

} // namespace
} // namespace Zorvan::platform::tests
