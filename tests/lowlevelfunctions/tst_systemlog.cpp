#include "lowlevelfunctions/loglines.h"
#include "support/childprocess.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace Zorvan::test {
namespace {

namespace fs = std::filesystem;

constexpr const char *file0 = "GYX-syslog-0.log";
constexpr const char *file1 = "GYX-syslog-1.log";
constexpr std::size_t stampLength = 25;

void log(const char *tag, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    gyxLog(tag, nullptr, 0, format, &arguments);
    va_end(arguments);
}

void logNumbers(int first, int last, const char *tag = nullptr)
{
    for (int number = first; number <= last; ++number)
        log(tag, "%d\n", number);
}

/// "4 old 1 2": four lines "old", then the messages "1" and "2"; "-": no file.
std::string contentOf(const std::string &name)
{
    if (!fs::exists(libraryFile(name)))
        return "-";
    int old = 0;
    std::string content;
    for (const std::string &message : messagesIn(name))
        message == "?old" ? void(++old) : void(content += ' ' + message);
    return old > 0 ? std::to_string(old) + " old" + content : content.substr(content.empty() ? 0 : 1);
}

/// Below 0: no file.
void writeOldLines(const std::string &name, int count)
{
    fs::remove(libraryFile(name));
    std::string content;
    for (int line = 0; line < count; ++line)
        content += "old\n";
    if (count >= 0)
        writeFile(libraryFile(name), content);
}

class SystemLog : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::remove_all(libraryFolder());
        startAnew();
    }

    /// The next message of each tag finds these properties and the files as they are.
    static void startAnew(int count = -1, int clear = -1, int fileOutput = 1, int consoleOutput = -1)
    {
        setLowlevelIntegerProperty(6, count);
        setLowlevelIntegerProperty(7, clear);
        setLowlevelIntegerProperty(8, fileOutput);
        setLowlevelIntegerProperty(9, consoleOutput);
        exitDebugDaemon();
    }
};

TEST_F(SystemLog, lineHasTimeAndPositionAndNoNewlineOfItsOwn)
{
    gyxLog("Main.cpp", 12, "%s %d\n", "text", 5);
    gyxLog("x", -1, "one");
    gyxLog(nullptr, 99, "two\n");
    gyxLog("", 0, "%s", "");
    log("T", "%d %s %.1f %d %d %d %d %lld", 1, std::string(3000, 'x').c_str(), 2.5, 3, 4, 5, 6, 7LL);
    EXPECT_EQ(messagesIn(file0)[0], "Main.cpp(12): text 5");
    std::string content = readFile(libraryFile(file0));
    for (char &character : content)
        character = character >= '0' && character <= '9' ? '0' : character;
    const std::string stamp = "0000/00/00-00:00:00.000: ";
    const std::string second = stamp + "x(-0): one" + stamp + "two\n";
    EXPECT_EQ(content, stamp + "Main.cpp(00): text 0\n" + second + stamp + "(0): ");
    EXPECT_EQ(contentOf("T-0.log"), "1 " + std::string(3000, 'x') + " 2.5 3 4 5 6 7");
}

std::string localTime(int plusSeconds)
{
    const std::time_t time = std::time(nullptr) + plusSeconds;
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y/%m/%d-%H:%M:%S", std::localtime(&time))};
}

TEST_F(SystemLog, stampsAreLocalTimeAndNeverRunBackwards)
{
    setenv("TZ", "XYZ-05:30", 1);
    tzset();
    const std::string begin = localTime(-1); // a coarse clock is good enough
    for (const std::string end = localTime(2); localTime(0) < end;) { // passes the end of a second
        log(nullptr, "x\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const std::vector<std::string> lines = linesOf(readFile(libraryFile(file0)));
    EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end()));
    EXPECT_GE(lines.front(), begin);
    EXPECT_LE(lines.back(), localTime(1));
}

TEST_F(SystemLog, filesTakeTurnsAndTheShorterOneIsResumed)
{
    const struct
    {
        int old0, old1, limit, messages;
        const char *content0, *content1;
    } rows[] = {{-1, -1, 2, 5, "1 2", "3 4 5"},
                {-1, -1, 2, 9, "6 7 8", "9"},
                {-1, -1, 0, 3, "2", "3"},
                {-1, -1, INT_MIN, 2, "2", "1"},
                {-1, -1, INT_MAX, 3, "1 2 3", "-"},
                {10, 4, 12, 9, "9", "4 old 1 2 3 4 5 6 7 8"},
                {4, 10, 12, 9, "4 old 1 2 3 4 5 6 7 8", "9"},
                {10, -1, 12, 3, "10 old 1 2", "3"},
                {-1, 10, 2, 3, "1 2", "3"},
                {5, 5, 6, 2, "5 old 1", "2"},
                {3, 0, 2, 3, "3", "1 2"},
                {20, 15, 12, 1, "1", "15 old"},
                {49999, -1, -1, 2, "49999 old 1", "2"}}; // not set: 50000
    for (const auto &row : rows) {
        writeOldLines(file0, row.old0);
        writeOldLines(file1, row.old1);
        startAnew(row.limit);
        logNumbers(1, row.messages);
        EXPECT_EQ(contentOf(file0), row.content0) << row.old0 << ", " << row.old1 << ", " << row.limit;
        EXPECT_EQ(contentOf(file1), row.content1) << row.old0 << ", " << row.old1 << ", " << row.limit;
    }
}

TEST_F(SystemLog, channelCountsMessagesButTheNextOneCountsLineFeeds)
{
    startAnew(2);
    log(nullptr, "1\n2\n3\n");
    setLowlevelIntegerProperty(6, 100); // too late for this channel
    log(nullptr, "4");
    logNumbers(5, 5);
    EXPECT_EQ(contentOf(file0), "1 ?2 ?3 4");
    EXPECT_EQ(contentOf(file1), "5");
    startAnew(2); // three line feeds against one: file 1 is resumed
    logNumbers(6, 7);
    EXPECT_EQ(contentOf(file0), "7");
    EXPECT_EQ(contentOf(file1), "5 6");
}

TEST_F(SystemLog, clearingDeletesBothFilesOfAChannelAtItsFirstMessage)
{
    for (const char *name : {file0, file1, "T-0.log", "T-1.log"})
        writeOldLines(name, 5);
    startAnew(2, 1);
    logNumbers(1, 3);
    EXPECT_EQ(contentOf(file0), "1 2");
    EXPECT_EQ(contentOf(file1), "3");
    EXPECT_EQ(contentOf("T-0.log"), "5 old");
    logNumbers(1, 1, "T");
    EXPECT_EQ(contentOf("T-0.log"), "1");
    EXPECT_EQ(contentOf("T-1.log"), "-");
    exitDebugDaemon(); // a channel made anew clears anew
    logNumbers(4, 4);
    EXPECT_EQ(contentOf(file0), "4");
    EXPECT_EQ(contentOf(file1), "-");
    for (const int value : {0, 2, -7}) { // on is 1 alone: no clearing, no output
        startAnew(2, value, value);
        logNumbers(5, 9);
        EXPECT_EQ(contentOf(file0), "4") << value;
        EXPECT_EQ(contentOf(file1), "-") << value;
    }
}

TEST_F(SystemLog, tagsNameTheFiles)
{
    for (const char *tag :
         {"A", "B", "Aa", "BB", "\xffz", "\x01<"}) // "Aa" and "BB" have one hash, the last two too
        log(tag, "%s\n", tag);
    gyxLog(nullptr, 0, "untagged\n");
    log("", "empty\n"); // hash 0, as without a tag
    EXPECT_EQ(contentOf("A-0.log"), "A");
    EXPECT_EQ(contentOf("B-0.log"), "B");
    EXPECT_EQ(contentOf("Aa-0.log"), "Aa BB");
    EXPECT_EQ(contentOf("BB-0.log"), "-");
    EXPECT_EQ(contentOf("\xffz-0.log"), "\xffz \x01<");
    EXPECT_EQ(contentOf(file0), "untagged empty");
    startAnew(2);
    log("", "empty\n");
    gyxLog(nullptr, 0, "untagged\n");
    EXPECT_EQ(contentOf("-0.log"), "empty untagged");
    logNumbers(3, 3, "GYX-syslog"); // a channel of its own; it finds two lines
    EXPECT_EQ(contentOf(file1), "3");
}

TEST_F(SystemLog, formatWithoutArgumentsReadsNone)
{
    for (const char *format : {"%s%n100%%\n", "50%done %5$d\n", "a%cb\n", "100%"})
        gyxLog(nullptr, nullptr, 0, format, nullptr);
    gyxLog(nullptr, nullptr, 0, nullptr, nullptr);
    log(nullptr, nullptr);
    const std::vector<std::string> messages = messagesIn(file0);
    EXPECT_EQ(messages[0] + messages[1] + messages[3].substr(0, 4), "(null)100%500one 0100%");
    EXPECT_EQ(messages[2], "a b") << "no null character in a text file";
    EXPECT_EQ(messages[3].size(), 4 + 2 * stampLength);
}

TEST_F(SystemLog, callersErrorNumberIsPrintedAndKept)
{
    for (int message = 0; message < 2; ++message) { // the first one makes the channel and looks for its files
        errno = EBUSY;
        log(nullptr, "%m");
        EXPECT_EQ(errno, EBUSY);
    }
    const std::string content = readFile(libraryFile(file0));
    EXPECT_EQ(content.find(std::strerror(ENOENT)), std::string::npos) << content;
}

TEST_F(SystemLog, longAndUnprintableMessagesStayExact)
{
    std::string expected;
    for (std::size_t length = 1; length < 100000; length += length < 2100 ? 1 : 50000) {
        const std::string text(length, static_cast<char>('a' + length % 26));
        log(nullptr, "%ls", L"\u4e2d"); // no character of the "C" locale: cannot be formatted
        log(nullptr, "%s", text.c_str());
        expected += std::string(2 * stampLength, '#') + text;
    }
    std::string content = readFile(libraryFile(file0));
    for (char &character : content)
        character = character < 'a' ? '#' : character; // the stamps
    EXPECT_TRUE(content == expected);
}

TEST_F(SystemLog, messageIsOnlyLostWhileItsFileCannotBeOpened)
{
    logNumbers(1, 1);
    fs::remove_all(libraryFolder());
    logNumbers(2, 2);
    EXPECT_EQ(contentOf(file0), "2");
    fs::remove_all(libraryFolder());
    writeFile(libraryFolder(), "in the way");
    logNumbers(3, 3);
    fs::remove(libraryFolder());
    logNumbers(4, 4);
    EXPECT_EQ(contentOf(file0), "4");

    fs::remove(libraryFile(file0));
    fs::create_directories(libraryFile(file1)); // takes its turn all the same
    startAnew(2);
    logNumbers(1, 6);
    EXPECT_EQ(contentOf(file0), "6");
    logNumbers(1, 1, std::string(5000, 't').c_str());
    fs::create_symlink("/dev/full", libraryFile("T-0.log")); // can be read without end
    EXPECT_EQ(runChild("timeout 20 " HELPER " log T w 3 log U w 1").exitCode, 0);
    EXPECT_EQ(contentOf("U-0.log"), sequenceLine("w", 0));
}

TEST_F(SystemLog, consoleOutputRepeatsEachLineOnStandardError)
{
    EXPECT_EQ(runChild(HELPER " log T quiet 3 2>&1").output, "");
    startAnew(-1, 1, -1, 1); // what is not set is on
    const std::string output = runChild(HELPER " log T loud 20 2>&1 >/dev/null").output;
    EXPECT_EQ(linesOf(output).size(), 20U);
    EXPECT_EQ(output, readFile(libraryFile("T-0.log")));
    EXPECT_EQ(runChild(HELPER " log T closed 3 2>&-").exitCode, 0); // the log file may get that descriptor
    EXPECT_EQ(countsIn(messagesIn("T-0.log")), (Counts{{"closed", 3}}));
}

TEST_F(SystemLog, staticObjectsLogUntilTheEndOfTheProcess)
{
    const std::string number = std::string(4999, '0') + '7';
    ASSERT_EQ(runChild("HELPER_STATICS=1 " HELPER).exitCode, 0);
    EXPECT_EQ(contentOf(file0), "helper.cpp(1): constructor helper.cpp(2): destructor 42 " + number);
    EXPECT_EQ(contentOf("Tag-0.log"), "100(null)%");

    startAnew(-1, 1);
    ASSERT_EQ(runChild("HELPER_STATICS=1 " OUTLIVING_HELPER).exitCode, 0);
    EXPECT_EQ(messagesIn(file0)[0], "helper.cpp(1): constructor");
    const std::string content = readFile(libraryFile(file0));
    const std::string mark = "++++ message during shutdown: ";
    EXPECT_EQ(content.substr(content.find('\n') + 1),
              mark + "destructor 42\n\n" + mark + "100(null)%\n" + mark + number + '\n');
}

} // namespace
} // namespace Zorvan::test
