// Assertions, asked by a daemon in a process of its own or by a helper that stands in for the native box.

#include "process/daemontest.h"

#include <zorvan/debug.h>

#include <QString>

#include <sys/wait.h>
#include <thread>

using namespace Zorvan;
using namespace Zorvan::platform::tests;
using Lines = std::vector<std::string>;

namespace {

constexpr int releaseAssertEnabled = 2;
constexpr int hasGraphicalGui = 3;

const std::string sending = "source/lowlevelfunctions(790): ++++ ASSERTing message to server";
const std::string goingOn = "source/lowlevelfunctions(802): ++++ ASSERTing continue";
const std::string question = "\nDo you want to continue ?\n\n(Press Retry to debug the application)";

void fail(const char *condition, const char *message = "", const char *file = nullptr, int line = 0)
{
    gyxAssert(QString::fromUtf8(condition), QString::fromUtf8(message), file, line);
}

class Assertions : public test::DaemonTest
{
protected:
    Assertions()
    {
        setLowlevelIntegerProperty(releaseAssertEnabled, 1);
        setLowlevelIntegerProperty(hasGraphicalGui, 1);
        makeScript(m_folder / "zorvan-messagebox",
                   "printf '%s|' \"$1\" \"$2\" >> \"${0%/*}/seen\"; cat \"${0%/*}/word\"");
    }

    /// From now on questions go to a daemon that answers with these words.
    void installDaemonThatSays(const std::string &answers)
    {
        installDaemon("DebugDaemon");
        m_answers.set(answers);
    }
    void setBoxAnswer(const std::string &word) { test::writeFile(m_folder / "word", word); }
    [[nodiscard]] std::string shownInBox() const { return test::readFile(m_folder / "seen"); }
    static std::string request(const std::string &text)
    {
        return "<assert>Debug Assertion Failed!" + text + question
            + "\n(Press Yes to All to skip this message in the future)"
              "\n(Press Save to continue with this message in clipboard)</assert>";
    }

    const Variable m_helpers{"ZORVAN_HELPERS", m_folder.path()};
    Variable m_display{"DISPLAY", ":7"};
    const Variable m_wayland{"WAYLAND_DISPLAY", std::nullopt};
};

TEST_F(Assertions, AreOnlyLoggedUnlessBothPropertiesWantAQuestion)
{
    for (const int suppressing : {-1, 0, 2}) {
        setLowlevelIntegerProperty(releaseAssertEnabled, suppressing);
        fail("x", "why", "a.cpp", 5);
    }
    setLowlevelIntegerProperty(releaseAssertEnabled, 1);
    setLowlevelIntegerProperty(hasGraphicalGui, 0);
    fail("100%% %d%s%n", "%", nullptr, 5);
    const std::string logged = "a.cpp(5): ++++ Debug Assertion Failed: x;why";
    gyxAssert(QStringLiteral("a\0b"), QStringLiteral("\0c"), nullptr, 0);
    EXPECT_EQ(log(),
              (Lines{logged, logged, logged, "++++ Debug Assertion Failed: 100% 0(null);%",
                     "++++ Debug Assertion Failed: a b; c"}));
    EXPECT_EQ(shownInBox(), "");
    setBoxAnswer("ignore");
    for (const int present : {-1, 2}) {
        setLowlevelIntegerProperty(hasGraphicalGui, present);
        fail("x");
    }
    EXPECT_NE(shownInBox(), "") << "both count as a user interface";
}

TEST_F(Assertions, AreShownInANativeBoxWithoutADaemon)
{
    std::string shown;
    for (const char *word : {"retry", "ignore", "closed"}) {
        setBoxAnswer(word);
        fail("x \xc3\xa4\xe2\x82\xac", "why", "a.cpp", 5);
        shown +=
            "Zorvan Assertion|Debug Assertion Failed!\n\nFile: a.cpp\nLine: 5\n\nExpression: x \xe4?\nwhy\n"
            + question + "\n(Press Abort to skip this message in the future)|";
        EXPECT_EQ(shownInBox(), shown) << "each time anew: the box never skips";
    }
    m_display.set(std::nullopt);
    testing::internal::CaptureStderr();
    fail("x");
    EXPECT_EQ(
        testing::internal::GetCapturedStderr().find("Zorvan Assertion: Debug Assertion Failed!\n\nExpr"), 0U);
    EXPECT_EQ(shownInBox(), shown);
}

void endLoudly()
{
    std::fputs("exit handler", stderr);
}

void failWithExitHandler()
{
    std::atexit(endLoudly);
    fail("x");
}

TEST_F(Assertions, AbortInTheBoxEndsTheProcessAtOnceWithSuccess)
{
    setBoxAnswer("abort");
    EXPECT_EXIT(failWithExitHandler(), testing::ExitedWithCode(0), "^$");
}

TEST_F(Assertions, AbortFromTheDaemonEndsTheProcessAtOnceWithSuccess)
{
    installDaemonThatSays("262144");
    EXPECT_EXIT(failWithExitHandler(), testing::ExitedWithCode(0), "^$");
    EXPECT_EQ(log().back(), goingOn);
}

TEST_F(Assertions, TheDaemonGetsTheTextAsItIs)
{
    installDaemonThatSays("524288 1048576 2048 1 7");
    fail("</assert> & \xc3\xa4\xe2\x82\xac", "why", "a.cpp", 5);
    const std::string first = request("\n\nFile: a.cpp\nLine: 5\n\nExpression: </assert> & \xe4?\nwhy\n");
    EXPECT_EQ(received(), first);
    fail("y");
    fail("y");
    fail("y");
    const std::string further = request("\n\nExpression: y\n\n");
    EXPECT_EQ(received(), first + further + further + further) << "only \"Yes to All\" skips";
    const Lines lines = log();
    ASSERT_EQ(lines.size(), 16U);
    EXPECT_EQ(lines[1], "++++ testing server installation...") << "by the first question";
    const std::string failed = "++++ Debug Assertion Failed: y;";
    EXPECT_EQ(Lines(lines.begin() + 5, lines.end()),
              (Lines{sending, goingOn, failed, sending, goingOn, failed, sending, goingOn, failed, sending,
                     goingOn}));
    EXPECT_EQ(shownInBox(), "");
}

TEST_F(Assertions, YesToAllSkipsTheSameConditionAtTheSamePlace)
{
    installDaemonThatSays("32768 524288 32768 524288");
    fail("x", "why", "a.cpp", 5);
    const std::size_t once = received().size();
    fail("x", "another message", "a.cpp", 5);
    EXPECT_EQ(received().size(), once);
    EXPECT_EQ(log().back(), "a.cpp(5): ++++ Debug Assertion Failed: x;another message") << "still logged";
    fail("x", "why", "a.cpp", 6);
    EXPECT_EQ(received().size(), 2 * once);

    fail("x", "", nullptr, 1);
    const std::size_t withoutFile = received().size();
    fail("x", "", nullptr, 2);
    EXPECT_EQ(received().size(), withoutFile) << "one entry for all lines";
    fail("y", "", nullptr, 1);
    EXPECT_GT(received().size(), withoutFile);

    const pid_t child = fork();
    if (child == 0) {
        fail("x", "", "a.cpp", 5); // skipped there, too
        fail("z"); // asked by a connection of its own
        _exit(received(2) == request("\n\nExpression: z\n\n") ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(Assertions, ALostDaemonLetsTheProcessGoOn)
{
    installDaemonThatSays("hangup");
    fail("x");
    fail("x");
    EXPECT_EQ(log().back(), goingOn);
    exitDebugDaemon();
    fail("x");
    EXPECT_EQ(log().back(), goingOn) << "asked in vain";
    EXPECT_EQ(shownInBox(), "") << "the link still counts as up";
}

TEST_F(Assertions, ThreadsAreAskedOneAfterAnother)
{
    installDaemonThatSays("late:524288");
    const auto failThrice = [] {
        for (int i = 0; i < 3; ++i)
            fail("x", "why", "a.cpp", 5);
    };
    std::thread other(failThrice);
    failThrice();
    other.join();
    std::string expected;
    for (int i = 0; i < 6; ++i)
        expected += request("\n\nFile: a.cpp\nLine: 5\n\nExpression: x\nwhy\n");
    EXPECT_EQ(received(), expected);
    Lines exchanges;
    for (const std::string &line : log()) {
        if (line == sending || line == goingOn)
            exchanges.push_back(line);
    }
    EXPECT_EQ(exchanges,
              (Lines{sending, goingOn, sending, goingOn, sending, goingOn, sending, goingOn, sending, goingOn,
                     sending, goingOn}));
}

} // namespace
