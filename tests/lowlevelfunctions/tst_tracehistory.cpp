#include "lowlevelfunctions/loglines.h"
#include "lowlevelfunctions/tracefile.h"

#include <zorvan/debug.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <malloc.h>
#include <memory>
#include <random>
#include <unistd.h>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

const std::string noThread(8, '0');
const std::string blanks(38, ' ');

std::string thisThread()
{
    char id[32];
    snprintf(id, sizeof id, "%08lx", static_cast<unsigned long>(gettid()));
    return id;
}

/// The layout in front of each message, with zeros for the thread and the time.
std::string layout(const std::string &message)
{
    return noThread + " - 0000/00/00-00:00:00.000 - " + message;
}

/// Puts zeros for this thread and for every digit.
std::string withoutNumbers(std::string text)
{
    const std::string thread = thisThread() + " - ";
    for (std::size_t at = 0; (at = text.find(thread, at)) != std::string::npos;)
        text.replace(at, noThread.size(), noThread);
    for (char &character : text)
        character = character >= '0' && character <= '9' ? '0' : character;
    return text;
}

class TraceHistories : public testing::Test
{
protected:
    /// The one line that a history holds after it got this one; without its numbers.
    template <typename... Values>
    static std::string noted(const char *file, int line, const char *format, Values... values)
    {
        TraceHistory history;
        note(history, file, line, format, values...);
        return withoutNumbers(textOf(history));
    }
    void add(const std::string &message) { note(*m_history, nullptr, 0, "%s", message.c_str()); }
    [[nodiscard]] std::string text() { return textOf(*m_history); }

    const std::unique_ptr<TraceHistory> m_history = std::make_unique<TraceHistory>();
};

std::string wallClockNow()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    char text[32];
    const std::size_t length =
        std::strftime(text, sizeof text, "%Y/%m/%d-%H:%M:%S", std::localtime(&now.tv_sec));
    snprintf(text + length, sizeof text - length, ".%03d", static_cast<int>(now.tv_nsec / 1'000'000));
    return text;
}

TEST_F(TraceHistories, ALineHasTheLocalTimeToTheMillisecond)
{
    for (std::size_t lines = 1; lines <= 2; ++lines) {
        const std::string before = wallClockNow();
        add("x");
        const std::string after = wallClockNow();
        const std::string stamp = text().substr((lines - 1) * layout("x\n").size() + 11, before.size());
        EXPECT_GE(stamp, before);
        EXPECT_LE(stamp, after);
        const std::string second = before.substr(0, 19);
        EXPECT_TRUE(platform::tests::eventually([&] { return wallClockNow().substr(0, 19) > second; }));
    }
}

TEST_F(TraceHistories, ALineHasTheThreadTheMessageAndThePosition)
{
    add("x");
    EXPECT_EQ(text().substr(0, 11), thisThread() + " - ");
    EXPECT_EQ(withoutNumbers(text()), layout("x\n"));
    EXPECT_EQ(noted("dir/100%d.cpp", -7, "%s=%c", "a", 'b'),
              layout("a=b" + blanks + "(file dir/000%d.cpp,line -0)\n"));
    EXPECT_EQ(noted("a.cpp", 2147483647, "abc\n"),
              layout("abc\n" + blanks + "(file a.cpp,line 0000000000)\n"));
    EXPECT_EQ(noted(nullptr, 5, "abc\n"), layout("abc\n"));
    EXPECT_EQ(noted(nullptr, 5, "a%sc", "\n"), layout("a\nc")) << "continued by the next line";
    EXPECT_EQ(noted(nullptr, 5, ""), layout("\n"));
    EXPECT_EQ(noted(nullptr, 5, "50%"), layout("00%\n")) << "no format at all";
}

TEST_F(TraceHistories, WithoutArgumentsNothingIsReadThatWasNotPassed)
{
    m_history->note(nullptr, 0, "%s%d%n 100%%", nullptr);
    m_history->note("a.cpp", 1, "%4095d%4095d", nullptr);
    EXPECT_EQ(withoutNumbers(text()),
              layout("(null)0 000%\n") + layout(std::string(4094 - layout("").size(), ' ') + '\n'));
}

TEST_F(TraceHistories, FormatsAreTakenUpTo1024CharactersAndLinesCutAt4094)
{
    const std::string longest(1024, 'x');
    EXPECT_EQ(noted(nullptr, 0, longest.c_str()), layout(longest + '\n'));
    EXPECT_EQ(noted(nullptr, 0, (longest + 'x').c_str()), "");
    EXPECT_EQ(noted("a.cpp", 1, nullptr), "");

    const std::string full = layout(std::string(4094 - layout("").size(), 'y'));
    const std::string message = full.substr(layout("").size());
    const std::string path = message.substr(blanks.size() + 6); // behind "(file "
    EXPECT_EQ(noted(nullptr, 0, "%s", message.c_str()), full + '\n');
    EXPECT_EQ(noted(nullptr, 0, "%sz", message.c_str()), full + '\n');
    EXPECT_EQ(noted("a.cpp", 0, "%sz", message.c_str()), full + '\n');
    EXPECT_EQ(noted((path + path).c_str(), 9, "%s", ""), layout(blanks + "(file " + path + '\n'));
    EXPECT_EQ(noted(path.c_str(), 9, "\n").size(), 4094U) << "has an end further in";
}

TEST_F(TraceHistories, ErrnoIsTheCallersBeforeAndAfter)
{
    errno = ENOENT;
    EXPECT_EQ(noted(nullptr, 0, "%m"), layout("No such file or directory\n"));
    errno = EINTR;
    note(*m_history, nullptr, 0, "%s %ls", "x", L"\x7fffffff"); // fails inside
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(withoutNumbers(text()), layout("%s %ls\n"));
}

/// The history as a plain string.
class Model
{
public:
    void add(const std::string &message)
    {
        std::string line = layout(message).substr(0, 4094);
        if (line.find('\n') == std::string::npos)
            line += '\n';
        while (m_text.size() + line.size() + 1 >= 10240)
            m_text.erase(0, m_text.find('\n', 1));
        m_text += line;
    }
    [[nodiscard]] const std::string &text() const { return m_text; }

private:
    std::string m_text;
};

TEST_F(TraceHistories, AnyMixOfLinesIsKeptToTheByte)
{
    std::mt19937 random(1); // NOLINT: the same lines in every run
    const auto below = [&random](unsigned limit) { return static_cast<std::size_t>(random() % limit); };
    Model model;
    for (int round = 0; round < 60; ++round) {
        const unsigned longest = round % 3 == 0 ? 5000 : 120;
        for (std::size_t count = below(60) + 1; count > 0; --count) {
            std::string message(below(longest), static_cast<char>('g' + count % 20));
            for (std::size_t ends = below(3); ends > 0 && !message.empty(); --ends)
                message[below(static_cast<unsigned>(message.size()))] = '\n';
            add(message);
            model.add(message);
        }
        ASSERT_EQ(withoutNumbers(text()), model.text()) << round;
    }
}

TEST_F(TraceHistories, NotingAllocatesNothing)
{
    const auto noteAll = [this] {
        for (int i = 0; i < 200; ++i) {
            note(*m_history, "a.cpp", i, "%d %s %200d", i, "x", i);
            m_history->note("a.cpp", i, "%d %s %200d", nullptr);
        }
    };
    const auto before = mallinfo2().uordblks;
    const auto allocatedBefore = mallinfo2().hblks;
    noteAll();
    EXPECT_EQ(mallinfo2().uordblks, before);
    EXPECT_EQ(mallinfo2().hblks, allocatedBefore);
}

TEST_F(TraceHistories, ADumpAppendsTheWholeAndClearsNothing)
{
    const platform::tests::TemporaryFolder folder;
    const std::string log = folder / "log";
    m_history->dump(log.c_str());
    EXPECT_EQ(platform::tests::contentOf(log), dumpHeading) << "nothing noted yet";
    add("x");
    m_history->dump(log.c_str());
    m_history->dump(log.c_str());
    const std::string once = dumpHeading + layout("x\n");
    EXPECT_EQ(withoutNumbers(platform::tests::contentOf(log)), dumpHeading + once + once);
    m_history->dump((folder / "missing/log").c_str());
    const std::string notice = dumpHeading.substr(1, dumpHeading.size() - 2);
    EXPECT_EQ(messagesIn("GYX-syslog-0.log"),
              (std::vector<std::string>{"", notice, "", notice, "", notice, "", notice}));
}

TEST_F(TraceHistories, AThreadThatDiedWithTheLockCostsADumpNoMoreThanASecond)
{
    add("x");
    m_history->hold();
    EXPECT_EQ(withoutNumbers(text()), layout("x\n"));
    m_history->release();
}

// Before the static objects of the library: the history is made for this line.
int s_errorAfterEarlyLine = 0;
[[gnu::constructor(101)]] void noteEarly()
{
    setenv("TZ", ":/nowhere/at/all", 1);
    errno = EINTR;
    logHistory(nullptr, 0, "%s", "early");
    s_errorAfterEarlyLine = errno;
}

TEST_F(TraceHistories, TheProcessHasOneThatEndsInTheSystemLog)
{
    if (std::filesystem::exists("/var/appdata"))
        GTEST_SKIP() << "an instrument's crash log is left alone";
    EXPECT_EQ(s_errorAfterEarlyLine, EINTR);
    logHistory("a.cpp", 3, "value %d", 4);
    logHistory("a.cpp", 3, "%d", 0); // a null list, as the compiler sees it
    errno = EINTR;
    dumpLogHistory();
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(messagesIn("GYX-syslog-0.log").size(), 2U);
    EXPECT_EQ(withoutNumbers(textOf(traceHistory())),
              layout("early\n") + layout("value 0" + blanks + "(file a.cpp,line 0)\n")
                  + layout("0" + blanks + "(file a.cpp,line 0)\n"));
}

} // namespace
