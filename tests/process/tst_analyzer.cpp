// The analysis tools as the properties say at the start of a process.

#include "support/childprocess.h"
#include "support/programdata.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace Zorvan::test;

namespace {

class Analyzer : public testing::Test
{
protected:
    void SetUp() override { std::filesystem::remove_all(m_root); }

    /// One value per property, in their order.
    void setProperties(const std::string &tools, const std::string &startup, const std::string &memory,
                       const std::string &time)
    {
        writeFile(m_root + "/Velmora/DebugServerLowlevelSettings.cfg",
                  tools + "=\n" + startup + "=\n-1=\n1=\n" + memory + "=\n" + time + "=\n");
    }

    std::string run(const std::string &commands, const std::string &environment = "",
                    const std::string &host = HOST)
    {
        const auto child = runChild(environment + " ZORVAN_PROGRAMDATA='" + m_root + "' timeout 100 " + host
                                    + ' ' + commands);
        EXPECT_EQ(child.exitCode, 0) << "signal " << child.signal;
        return child.output;
    }

    std::string m_root = libraryFile("machine");
};

TEST_F(Analyzer, StartsAsThePropertiesSay)
{
    struct Row
    {
        const char *tools, *startup, *memory, *time, *state;
    };
    const Row rows[] = {
        {"-1", "-1", "-1", "-1", "tools 0 startup 0 mem 0 time 0 id none\n"},
        {"0", "1", "1", "1", "tools 0 startup 1 mem 0 time 0 id none\n"},
        {"2", "1", "1", "1", "tools 2 startup 1 mem 0 time 0 id none\n"},
        {"1", "-1", "1", "1", "tools 1 startup 0 mem 0 time 0 id none\n"},
        {"1", "2", "1", "1", "tools 1 startup 2 mem 0 time 0 id none\n"},
        {"1", "1", "-1", "-1", "tools 1 startup 1 mem 1 time 1 id given\n"},
        {"1", "1", "0", "1", "tools 1 startup 1 mem 0 time 1 id given\n"},
        {"1", "1", "1", "0", "tools 1 startup 1 mem 1 time 0 id none\n"},
        {"1", "1", "2", "2", "tools 1 startup 1 mem 1 time 1 id given\n"},
    };
    for (const Row &row : rows) {
        setProperties(row.tools, row.startup, row.memory, row.time);
        EXPECT_EQ(run("state"), row.state) << row.tools << row.startup << row.memory << row.time;
    }
}

TEST_F(Analyzer, DoesNothingUntilTheNextStartAfterItWasEnabled)
{
    EXPECT_EQ(run("tools 1 startup 1 mem 0 time 0 state listen work leaks times"),
              "tools 1\nstartup 1\nmem 0\ntime 0\ntools 1 startup 1 mem 0 time 0 id none\n");
    EXPECT_EQ(run("mem 1 time 1 mem -1 time -1 state"),
              "mem 1\ntime 1\nmem 1\ntime 1\ntools 1 startup 1 mem 1 time 1 id given\n");
    EXPECT_EQ(run("tools 0 mem -1 state"), "tools 0\nmem 1\ntools 0 startup 1 mem 1 time 1 id given\n");
    EXPECT_EQ(run("mem 1 time 1 state"), "mem 0\ntime 0\ntools 0 startup 1 mem 0 time 0 id none\n");
}

TEST_F(Analyzer, ReportsWhatItMeasuredToWhomeverListens)
{
    setProperties("1", "1", "1", "1");
    EXPECT_EQ(run("work leaks times"), "");
    const std::string output = run("work listen leaks times");
    EXPECT_NE(
        output.find("[work.cpp] ++++++++++++++++++++++++++++++ memory leak with 16 bytes occurred 1 times\n"
                    "[Leak Analyzer] ******************************  avg memory usage was 62 bytes\n"),
        std::string::npos)
        << output;
    EXPECT_NE(output.find("summary 1 1\nrow 0 work 1\n[work.cpp] ****************************** 1 calls, "
                          "method work, avg "),
              std::string::npos)
        << output;
    EXPECT_NE(output.find(" cycles\ncomplete\n"), std::string::npos) << output;
}

TEST_F(Analyzer, ServesStaticObjectsAndLeavesNoMemoryOfItsOwnBehind)
{
    setProperties("1", "1", "1", "1");
    EXPECT_EQ(run("", "ANALYZER_STATICS=1"), "static 1\nstatic 1\n");
}

TEST_F(Analyzer, WorksInChildrenThatAreForkedWhileOtherThreadsUseIt)
{
    setProperties("1", "1", "1", "1");
    EXPECT_EQ(run("forks"), "failures 0\n");
}

TEST_F(Analyzer, ServesAHostThatSendsItsOperatorNewThroughIt)
{
    setProperties("1", "1", "1", "1");
    EXPECT_EQ(run("forks", "", ROUTED_HOST), "failures 0\n");
    EXPECT_EQ(run("nomemory", "", ROUTED_HOST),
              "failures 0, 1 texts, ++++++++++++++++++++++++ unknown endMethod ID given, no measurement "
              "++++++++++++++++++++++++\n");
}

} // namespace
