// The output file: when it is begun anew, what it holds to the byte, and when it cannot be written.

#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>

namespace fs = std::filesystem;
using Zorvan::Debug;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

constexpr int kernel = 2;

class OutputFile : public ::testing::Test
{
protected:
    void start()
    {
        host.store("KernelDebugLevel", "full");
        host.store("DebugServerFileOutput", "on");
        Debug::initDebug();
    }
    void TearDown() override { Debug::exitDebug(); }

    static void print(const std::string &text) { Debug::println(kernel, 0, QString::fromStdString(text), 2); }
    std::string content() const { return readFile(path); }
    Lines texts() const
    {
        Lines result = linesOf(content());
        for (std::string &line : result)
            line = line.substr(line.rfind(": ") + 2);
        return result;
    }

    MapHost host;
    std::string path = libraryFile("GYX_Debug_Output.log");
};

TEST_F(OutputFile, LinesEndWithCrLfInLatin1)
{
    start();
    Debug::println(kernel, 0, QString::fromUtf8("\xc3\xa4\n\xe2\x82\xac"), 2);
    EXPECT_EQ(content(), "<debug message>, <     Warning>: \xe4\r\n<debug message>, <     Warning>: ?\r\n");
    Debug::setDisplayFlags(-2);
    print("not written");
    EXPECT_EQ(linesOf(content()).size(), 2U);
}

TEST_F(OutputFile, TheFirstLineOfARunBeginsTheFileAnew)
{
    writeFile(path, "an old run\r\n");
    start();
    EXPECT_EQ(content(), "an old run\r\n") << "deleted before there was a line";
    print("one");
    print("two");
    EXPECT_EQ(texts(), (Lines{"one", "two"}));
    Debug::exitDebug();
    Debug::println(kernel, 0, QStringLiteral("between the runs"), 2);
    Debug::initDebug();
    print("three");
    EXPECT_EQ(texts(), Lines{"three"});
}

TEST_F(OutputFile, AFirstLineWithoutFileOutputKeepsTheOldFile)
{
    writeFile(path, "an old run\r\n");
    host.store("KernelDebugLevel", "full");
    Debug::initDebug();
    print("not for the file");
    EXPECT_NE(readFile(libraryFile("GYX-syslog-0.log")).find("found maximum"), std::string::npos);
    Debug::setDisplayFlags(-1);
    print("one");
    EXPECT_EQ(linesOf(content()), (Lines{"an old run", "<debug message>, <     Warning>: one"}));
}

TEST_F(OutputFile, GrowsBeyondItsMaximumByOneLineThenStartsAnew)
{
    host.store("DebugServerFileSize", 100);
    start();
    EXPECT_EQ(Debug::getMaxOutputFileSize(), 100);
    const std::string text(100 - 35, 'x'); // with header and line end exactly 100 bytes
    print(text);
    ASSERT_EQ(content().size(), 100U);
    print("at the maximum");
    EXPECT_EQ(linesOf(content()).size(), 2U);
    print("beyond");
    EXPECT_EQ(texts(), Lines{"beyond"});
    Debug::setMaxOutputFileSize(30);
    print("1");
    print("2");
    EXPECT_EQ(texts(), Lines{"2"});
}

TEST_F(OutputFile, TheMaximumIsDerivedFromTheFreeSpaceOnce)
{
    start();
    print("one");
    print("two");
    const std::string log = readFile(libraryFile("GYX-syslog-0.log"));
    std::smatch found;
    ASSERT_TRUE(std::regex_search(
        log, found,
        std::regex(R"(: Debug::println\(\) found maximum allowed output file size of (\d+) MBytes\n)")));
    EXPECT_EQ(linesOf(log).size(), 1U);
    const double halfOfFree = static_cast<double>(fs::space(libraryFolder()).available) / 2 / 1048576;
    EXPECT_NEAR(std::stod(found[1].str()), halfOfFree, halfOfFree / 10);
    EXPECT_EQ(Debug::getMaxOutputFileSize(), -1);
    Debug::setMaxOutputFileSize(0); // derived again
    print("three");
    EXPECT_EQ(linesOf(readFile(libraryFile("GYX-syslog-0.log"))).size(), 2U);
}

TEST_F(OutputFile, WithoutADiskOfItsOwnASmallMaximumHolds)
{
    start();
    Debug::setOutputFileName("/proc/zorvan/none.log"); // a file system without space
    print("one");
    const Lines log = linesOf(readFile(libraryFile("GYX-syslog-0.log")));
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log[0].find("Debug::println() fixed maximum allowed output file size to 9 MBytes"),
              std::string::npos);
}

TEST_F(OutputFile, NamesAreKeptAsGiven)
{
    start();
    EXPECT_EQ(Debug::getOutputFileName(), path);
    print("derives the maximum");
    const std::string elsewhere = libraryFile("elsewhere.log");
    writeFile(elsewhere, "was there before\r\n");
    Debug::setOutputFileName(elsewhere.c_str());
    print("one");
    EXPECT_EQ(linesOf(readFile(elsewhere)).size(), 2U);
    EXPECT_EQ(linesOf(readFile(libraryFile("GYX-syslog-0.log"))).size(), 1U) << "derived again";
    fs::current_path(libraryFolder());
    Debug::setOutputFileName("relative.log");
    print("two");
    EXPECT_EQ(linesOf(readFile(libraryFile("relative.log"))).size(), 1U);
    Debug::setOutputFileName(std::string(3000, 'n').c_str());
    EXPECT_EQ(std::string(Debug::getOutputFileName()).size(), 2047U);
    Debug::setOutputFileName(nullptr);
    EXPECT_STREQ(Debug::getOutputFileName(), "");
    print("to no file");
    EXPECT_EQ(linesOf(readFile(elsewhere)).size(), 2U);
}

TEST_F(OutputFile, LinesThatCannotBeWrittenReachTheOtherSinks)
{
    start();
    host.takeLines();
    for (const char *name : {"/dev/full", "/nonexistent/folder/file.log", "/", "/proc/version"}) {
        Debug::setOutputFileName(name);
        print("still told");
        EXPECT_EQ(host.takeLines().size(), 1U) << name;
    }
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST_F(OutputFile, OthersMayTakeTheFileAway)
{
    start();
    print("one");
    fs::rename(path, path + ".moved");
    print("two");
    EXPECT_EQ(texts(), Lines{"two"});
    fs::remove(path);
    print("three");
    EXPECT_EQ(texts(), Lines{"three"});
    EXPECT_EQ(linesOf(readFile(path + ".moved")).size(), 1U);
}

TEST_F(OutputFile, OnlyRegularFilesAreEverDeleted)
{
    const std::string target = libraryFile("target.log");
    writeFile(target, "old");
    fs::create_symlink(target, path);
    start();
    print("one");
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(texts(), Lines{"one"}); // emptied in place of deleted
    EXPECT_TRUE(fs::exists(target));
}

} // namespace
