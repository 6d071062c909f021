#include "support/childprocess.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <climits>
#include <filesystem>
#include <gtest/gtest.h>

namespace Zorvan::test {
namespace {

const std::string initialFile = "-1=analyzingToolsEnabled\n-1=analyzingOnStartup\n-1=releaseAssertEnabled\n"
                                "1=hasGraphicalGui\n-1=memTrackingEnabled\n-1=timeTrackingEnabled\n"
                                "50000=gyxLogMessageCount\n-1=gyxLogMessageClear\n"
                                "1=gyxLogMessageFileOutput\n-1=gyxLogMessageConsoleOutput\n";

/// Looks at a program that loads the library on a program-data folder prepared by the test.
class PropertyFile : public testing::Test
{
protected:
    void SetUp() override { std::filesystem::remove_all(m_root); }

    std::string run(const std::string &commands)
    {
        const auto child = runChild("ZORVAN_PROGRAMDATA='" + m_root + "' timeout 60 " HELPER " " + commands);
        EXPECT_EQ(child.exitCode, 0) << "signal " << child.signal;
        return child.output;
    }

    std::string valuesOf(const std::string &content)
    {
        writeFile(m_file, content);
        const std::string values = run("get");
        EXPECT_TRUE(readFile(m_file) == content); // reading never changes the file
        return values;
    }

    std::string m_root = libraryFile("other machine");
    std::string m_file = m_root + "/Velmora/DebugServerLowlevelSettings.cfg";
};

TEST_F(PropertyFile, isMadeWhenTheLibraryIsLoadedAndReadByPosition)
{
    run("");
    EXPECT_EQ(readFile(m_file), initialFile);
    const std::pair<std::string, const char *> rows[] = {
        {"", "- - - 1 - - 50000 - 1 -"},
        {"1=whatever\n", "1 - - 1 - - 50000 - 1 -"},
        {"7=gyxLogMessageCount\n-1=\n-1=\n-1=\n", "7 - - - - - 50000 - 1 -"},
        {"=5\nabc=analyzingOnStartup\n\n=\n x=1\n6", "0 0 0 0 0 6 50000 - 1 -"},
        {"  7=a\n\t-3=b\n+4=c\n12ab=d\n0x10=e\n5=6=7\n", "7 -3 4 12 0 5 50000 - 1 -"},
        {"2=a\r\n\r\n3=b\r\n", "2 0 3 1 - - 50000 - 1 -"},
        {"1=\n2=\n3=\n4=\n5=\n6=\n7=\n8=\n9=\n10=\n11=\n12=\n", "1 2 3 4 5 6 7 8 9 10"},
        {"99999999999=\n-99999999999=\n\n", "2147483647 -2147483648 0 1 - - 50000 - 1 -"},
        {std::string("1\0=9\n2=b\n\0\n3=\0\n", 15), "1 2 0 3 - - 50000 - 1 -"},
    };
    for (const auto &[content, values] : rows)
        EXPECT_EQ(valuesOf(content), values) << content;
}

TEST_F(PropertyFile, longLineFillsOneSlotPerPieceOf63Characters)
{
    const std::pair<std::size_t, const char *> rows[] = {
        {62, "1 2 - 1 - - 50000 - 1 -"},  {63, "1 0 2 1 - - 50000 - 1 -"},  {64, "1 0 2 1 - - 50000 - 1 -"},
        {125, "1 0 2 1 - - 50000 - 1 -"}, {126, "1 0 0 2 - - 50000 - 1 -"}, {1000, "1 0 0 0 0 0 0 0 0 0"},
    };
    for (const auto &[length, values] : rows)
        EXPECT_EQ(valuesOf("1=" + std::string(length - 2, 'x') + "\n2=y\n"), values) << length;
    // The second piece is read like a line; without a line feed at the end there is none.
    EXPECT_EQ(valuesOf("1=" + std::string(61, 'x') + "34=5\n2=y\n"), "1 34 2 1 - - 50000 - 1 -");
    EXPECT_EQ(valuesOf("1=" + std::string(61, 'x')), "1 - - 1 - - 50000 - 1 -");
}

TEST_F(PropertyFile, firstChangeReplacesJunk)
{
    valuesOf(std::string(1 << 20, '9') + std::string(1 << 20, '\0'));
    run("set 0 2147483647 set 1 -2147483648 set 2 3 set 3 0 set 4 5 set 5 6 set 6 -1 set 7 8 set 8 9 set 9 "
        "10");
    EXPECT_EQ(run("get"), "2147483647 -2147483648 3 0 5 6 - 8 9 10");
    EXPECT_EQ(linesOf(readFile(m_file)).size(), 10U);
}

TEST_F(PropertyFile, valuesLiveInMemoryWhereThereCanBeNoFile)
{
    writeFile(m_root + "/Velmora", "in the folder's place");
    EXPECT_EQ(run("set 2 5 get"), "- - 5 1 - - 50000 - 1 -");
    std::filesystem::remove(m_root + "/Velmora");
    std::filesystem::create_directories(m_file); // in the file's place
    EXPECT_EQ(run("set 2 5 get"), "- - 5 1 - - 50000 - 1 -");
    EXPECT_TRUE(std::filesystem::is_directory(m_file));
    m_root = "/dev/null";
    EXPECT_EQ(run("set 2 5 get"), "- - 5 1 - - 50000 - 1 -");
}

TEST(Properties, onlyAChangeWritesTheFile)
{
    const std::string file = libraryFile("DebugServerLowlevelSettings.cfg");
    const std::string outside(2000, 'x'); // shows whether the file was touched, and whether it is truncated
    writeFile(file, outside);
    setLowlevelIntegerProperty(6, 50000);
    setLowlevelIntegerProperty(7, -1);
    for (const int id : {-1, 10, 11, INT_MAX, INT_MIN}) {
        setLowlevelIntegerProperty(id, 3);
        EXPECT_EQ(getLowlevelIntegerProperty(id, 77), 77) << id;
    }
    EXPECT_EQ(readFile(file), outside);
    EXPECT_EQ(getLowlevelIntegerProperty(6, 123), 50000); // what others write into the file is not seen
    setLowlevelIntegerProperty(0, 0);
    EXPECT_EQ(readFile(file), "0" + initialFile.substr(2));
    EXPECT_EQ(getLowlevelIntegerProperty(0, 5), 0);
    std::filesystem::remove_all(libraryFolder());
    setLowlevelIntegerProperty(0, -1); // makes the folder again
    EXPECT_EQ(readFile(file), initialFile);
    EXPECT_EQ(getLowlevelIntegerProperty(0, 5), 5);
}

} // namespace
} // namespace Zorvan::test
