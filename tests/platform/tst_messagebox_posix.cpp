#include "platform/messagebox.h"
#include "support.h"

#include <csignal>
#include <gtest/gtest.h>

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
    std::signal(SIGCHLD, handler);
    makeHelper("echo ignore; exit 1");
    EXPECT_EQ(show(), BoxAnswer::Ignore);
    makeHelper("echo else");
    EXPECT_EQ(show(), BoxAnswer::None) << "closed without an answer";
    EXPECT_EQ(m_standardError, "");
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
    makeScript(m_folder / "xmessage", "printf '%s|' \"$@\" > \"${0%/*}/seen\"; exit 4");
    EXPECT_EQ(show("-text"), BoxAnswer::Retry);
    EXPECT_EQ(contentOf(m_folder / "seen"), "-center|-title|title|-buttons|Abort:3,Retry:4,Ignore:5| -text|");
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
