#include "support/childprocess.h"
#include "support/programdata.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>

using namespace Zorvan::test;
namespace fs = std::filesystem;

namespace {

/// Runs the program with a copy of the shipped settings, which it may change.
class ExampleHost : public ::testing::Test
{
protected:
    ExampleHost()
    {
        fs::create_directories(libraryFolder());
        fs::copy_file(EXAMPLE_FOLDER "/demo.ini", m_settings, fs::copy_options::overwrite_existing);
    }

    /// Runs it with options, keeps its standard output and returns the exit code.
    int run(const std::string &options, const std::string &input = "/dev/null")
    {
        const ChildResult result =
            runChild(m_environment + " '" SIGNALGENERATOR "' " + options + " <" + input + " 2>&1");
        m_output = result.output;
        m_signal = result.signal;
        return result.exitCode;
    }

    int runDemo() { return run("--headless --settings '" + m_settings + "' '" EXAMPLE_FOLDER "/demo.scpi'"); }

    static bool contains(const std::string &text, const std::string &part)
    {
        return text.find(part) != std::string::npos;
    }

    const std::string m_settings = libraryFile("demo.ini");
    std::string m_environment = "env"; // what runs the program
    std::string m_output;
    int m_signal = 0; // that ended it
};

TEST_F(ExampleHost, RunsTheShippedScript)
{
    ASSERT_EQ(runDemo(), 0);
    const std::string file = readFile(libraryFile("signalgenerator.log"));
    for (const char *part :
         {"        command thread) <  SG4000-Console> <   traffic   >, <        Info>: -> *IDN?\r\n",
          "          sweep thread) ", "         kernel thread) ", "       hardware thread) ",
          "<     Warning>: aborted at point ", "<       Error>: \x1b[31merror queue is full",
          "<   Time Meas>: synthesizer: "})
        EXPECT_TRUE(contains(file, part)) << part;
    EXPECT_TRUE(contains(m_output, "<- Velmora,SG4000,100001,1.0.0\n"));
    EXPECT_TRUE(contains(m_output, "<- 0,\"No error\"\n"));
    EXPECT_TRUE(contains(m_output, "-> *IDN?\n")) << "the library's lines are on the standard output too";
    EXPECT_TRUE(contains(readFile(libraryFile("GYX-syslog-0.log")), "signal generator has ended\n"));
}

TEST_F(ExampleHost, KeepsChangedSettingsForTheNextRun)
{
    EXPECT_FALSE(contains(readFile(m_settings), "OrgLayerDebugLevel=Info"));
    ASSERT_EQ(runDemo(), 0);
    EXPECT_TRUE(contains(readFile(m_settings), "OrgLayerDebugLevel=Info"));
}

TEST_F(ExampleHost, AnswersOnStandardInput)
{
    const std::string input = libraryFile("input.scpi");
    writeFile(input, "# comment\n\n*IDN?\r\nNONSENSE\nSYST:ERR?");
    for (const char *options : {"--headless", "-", "--headless -"}) {
        EXPECT_EQ(run(options, input), 0);
        EXPECT_EQ(m_output,
                  "<- Velmora,SG4000,100001,1.0.0\n<- -113,\"Undefined header;NONSENSE\"\n"
                  "signalgenerator: 3 command lines, 2 replies, 0 lines through the line tap\n");
    }
}

TEST_F(ExampleHost, ReportsLeaksAndMethodsInTheRunAfterTheSwitch)
{
    m_environment = "env ASAN_OPTIONS=detect_leaks=0"; // it would find the leaks, too
    const std::string script = "--headless '" EXAMPLE_FOLDER "/analysis.scpi'";
    const std::string leak = "memory leak with 256 bytes occurred 2 times\n";
    ASSERT_EQ(run(script), 0);
    EXPECT_FALSE(contains(m_output, "analysis:")) << m_output;
    ASSERT_EQ(run("--analysis on"), 0);
    ASSERT_EQ(run(script), 0);
    EXPECT_TRUE(
        std::regex_search(m_output, std::regex("analysis: waveformmemory.cpp\\([0-9]+\\): \\++ " + leak)))
        << m_output;
    for (const char *method : {"executeUnit", "set", "setHardware", "tune", "load", "attenuator_set"})
        EXPECT_TRUE(std::regex_search(
            m_output, std::regex(std::string("analysis: +[0-9]+ +[0-9]+ +[0-9]+ +[0-9]+ .*") + method)))
            << method;
    EXPECT_FALSE(contains(m_output, "wrong startMethod")) << m_output;
    ASSERT_EQ(run("--analysis off"), 0);
    ASSERT_EQ(run(script), 0);
    EXPECT_FALSE(contains(m_output, "analysis:")) << m_output;
}

TEST_F(ExampleHost, LogsAFailedAssertionAndGoesOn)
{
    const std::string input = libraryFile("input.scpi");
    writeFile(input, "DIAG:HOOK 'SG_assert','out of waveforms'\nFREQ?");
    ASSERT_EQ(run("--headless", input), 0);
    EXPECT_TRUE(contains(m_output, "<- 1000000000\n"));
    EXPECT_TRUE(contains(readFile(libraryFile("GYX-syslog-0.log")),
                         "++++ Debug Assertion Failed: allIsWell;out of waveforms\n"));
}

TEST_F(ExampleHost, DumpsItsTracePointsWhenItCrashes)
{
    const std::string input = libraryFile("input.scpi");
    writeFile(input, "FREQ 2 GHz;*OPC?\nDIAG:HOOK 'SG_crash',''\nFREQ?");
    run("--headless", input);
    EXPECT_EQ(m_signal, SIGSEGV) << m_output;
    EXPECT_FALSE(contains(m_output, "<- 2000000000\n"));
    EXPECT_TRUE(
        contains(readFile(libraryFile("GYX-syslog-0.log")), "now trying to dump history of last execution"));
}

TEST_F(ExampleHost, WorksWithoutADisplayAndSaysSo)
{
    m_environment = "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM";
    const std::string input = libraryFile("input.scpi");
    writeFile(input, "FREQ?");
    const std::string heading = "signalgenerator: no display, running without the panel as with --headless\n";
    const std::string summary = "signalgenerator: 1 command lines, 1 replies, 0 lines through the line tap\n";
    EXPECT_EQ(run("", input), 0);
    EXPECT_EQ(m_output, heading + "<- 1000000000\n" + summary);
    EXPECT_EQ(run("'" + input + "'"), 0);
    EXPECT_EQ(m_output, heading + "<- 1000000000\n" + summary);
}

TEST_F(ExampleHost, DrivesItsPanelByItself)
{
    m_environment = "env QT_QPA_PLATFORM=offscreen";
    const std::string picture = libraryFile("panel.png");
    ASSERT_EQ(
        run("--settings '" + m_settings + "' --autopilot '" + picture + "' '" EXAMPLE_FOLDER "/panel.scpi'"),
        0)
        << m_output;
    EXPECT_EQ(readFile(picture).substr(1, 3), "PNG");
    const std::string file = readFile(libraryFile("signalgenerator.log"));
    for (const char *part :
         {"            gui thread) <    SG4000-Panel> <debug message>, <        Info>: SG_setFrequency: "
          "433.92 MHz\r\n",
          "           hook thread) <    SG4000-Panel> <debug message>, <      Report>: AM on, ",
          "           task thread) <    SG4000-Panel> <debug message>, <        Info>: Self test: "
          "passed\r\n",
          "        command thread) <  SG4000-Console> ", "          sweep thread) "})
        EXPECT_TRUE(contains(file, part)) << part;
    EXPECT_EQ(readFile(libraryFile("debugwindow.png")).substr(1, 3), "PNG");
    const std::string shown = readFile(libraryFile("debugwindow.txt"));
    EXPECT_TRUE(contains(shown, "SG_setFrequency: 433.92 MHz\n")) << "by the road through the GUI thread";
    const auto lines = std::count(shown.begin(), shown.end(), '\n');
    EXPECT_TRUE(contains(m_output, "reads in it: " + std::to_string(lines) + " lines inside log\n"));
    EXPECT_FALSE(contains(m_output, "SG4000-Panel>")) << "no line on the standard output";
}

TEST_F(ExampleHost, ShowsItsPanelOnARealDisplay)
{
    if (runChild("which xvfb-run").exitCode != 0)
        GTEST_SKIP() << "xvfb-run is not installed";
    // What Qt's display plugin and the bus leak is not ours; offscreen the leak checker sees the same code.
    m_environment = "xvfb-run -a env ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=xcb";
    const std::string picture = libraryFile("display.png");
    EXPECT_EQ(run("--autopilot '" + picture + "'"), 0) << m_output;
    EXPECT_EQ(readFile(picture).substr(1, 3), "PNG");
}

TEST_F(ExampleHost, RefusesWrongOptions)
{
    EXPECT_EQ(run("--help"), 0);
    EXPECT_TRUE(contains(m_output, "--settings"));
    EXPECT_EQ(run("--nonsense"), 1);
    EXPECT_EQ(run("one two"), 1);
    EXPECT_EQ(run("--headless --autopilot picture.png"), 1);
    EXPECT_EQ(run("/missing/script"), 1);
    EXPECT_TRUE(contains(m_output, "cannot open /missing/script")) << m_output;
}

} // namespace
