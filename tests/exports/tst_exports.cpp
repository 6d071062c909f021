// The C interface in processes of its own: from C, by name at run time, beside a host's own functions.

#include "support/childprocess.h"
#include "support/programdata.h"

#include <gtest/gtest.h>

using namespace Zorvan::test;

namespace {

/// The analysis tools run in programs that start from now on.
void switchAnalysisOn()
{
    writeFile(libraryFile("DebugServerLowlevelSettings.cfg"),
              "1=analyzingToolsEnabled\n1=analyzingOnStartup\n-1=releaseAssertEnabled\n0=hasGraphicalGui\n"
              "1=memTrackingEnabled\n1=timeTrackingEnabled\n50000=gyxLogMessageCount\n"
              "-1=gyxLogMessageClear\n1=gyxLogMessageFileOutput\n-1=gyxLogMessageConsoleOutput\n");
}

std::string log()
{
    return readFile(libraryFile("GYX-syslog-0.log"));
}

TEST(Exports, DoInCWhatTheirMembersDo)
{
    switchAnalysisOn();
    const ChildResult result = runChild("'" FIRMWARE "'");
    EXPECT_EQ(result.exitCode, 0) << "signal " << result.signal << '\n' << result.output;
    EXPECT_NE(log().find("before the start\n"), std::string::npos);
}

TEST(Exports, AreAllFoundByTheirNames)
{
    const ChildResult result = runChild("'" LOADER "' '" LIBRARY "' '" SYMBOLS "'");
    EXPECT_EQ(result.exitCode, 0) << "signal " << result.signal;
    EXPECT_EQ(result.output, "40 names\n");
    EXPECT_NE(log().find("loader.c(3): loaded\n"), std::string::npos);
}

TEST(Exports, LeaveAHostsOwnFunctionsAlone)
{
    switchAnalysisOn();
    const std::string output = runChild("'" RIVALS "'").output;
    EXPECT_NE(output.find("printed\n"), std::string::npos);
    EXPECT_NE(output.find(" 0 calls\n"), std::string::npos) << output;
}

} // namespace
