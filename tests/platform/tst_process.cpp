#include "peer.h"
#include "platform/process.h"
#include "support.h"

#include <gtest/gtest.h>

namespace Zorvan::platform::tests {
namespace {

const char *const helper = "zorvan_platform_helper";

TEST(Process, startedProgramGetsItsArgumentsUnchanged)
{
    const std::vector<std::string> tricky{"two words",  "",          "\"quoted\"", "back\\slash\\", "\\\\\"",
                                          "$HOME `id`", "*; %TEMP%", "'",          "tab\t&|<>^"};
    Peer peer;
    std::vector<std::string> arguments{std::to_string(peer.port())};
    arguments.insert(arguments.end(), tricky.begin(), tricky.end());
    ASSERT_TRUE(startDetached(helper, arguments));
    std::string expected;
    for (const std::string &argument : tricky)
        expected.append(argument).push_back('\0');
    peer.accept();
    EXPECT_EQ(peer.read(expected.size()), expected);
}

TEST(Process, isRunningUntilItHasEnded)
{
    const auto running = [] { return isProcessRunning("platform_helper"); };
    EXPECT_TRUE(eventually([&] { return !running(); })) << "left over by another test";
    Peer peer;
    ASSERT_TRUE(startDetached(helper, {std::to_string(peer.port())}));
    peer.accept();
    EXPECT_TRUE(running());
    EXPECT_TRUE(isProcessRunning(helper));
    EXPECT_FALSE(isProcessRunning("Platform_helper")) << "case counts";
    EXPECT_FALSE(isProcessRunning(nullptr));
    EXPECT_FALSE(isProcessRunning(""));
    peer.close();
    EXPECT_TRUE(eventually([&] { return !running(); }));
}

TEST(Process, missingProgramIsReported)
{
    EXPECT_FALSE(startDetached("zorvan-no-such-program", {}));
    EXPECT_FALSE(startDetached("./zorvan-no-such-program", {}));
    EXPECT_FALSE(startDetached("", {}));
}

TEST(Process, currentFolderIsNeverSearched)
{
    const TemporaryFolder folder;
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::path program = std::filesystem::u8path(executableFolder());
    for (const auto &entry : std::filesystem::directory_iterator(program)) {
        if (entry.path().stem() == helper)
            program = entry.path();
    }
    const std::string name = "zorvan-lure" + program.extension().string();
    std::filesystem::copy_file(program, folder / name);
    std::filesystem::current_path(folder.path());
    const std::string separator(1, pathSeparator == '/' ? ':' : ';');
    const Variable path("PATH", "." + separator + separator + std::getenv("PATH"));
    EXPECT_FALSE(startDetached(name, {"0"}));
    EXPECT_TRUE(startDetached("./" + name, {"0"})) << "a path is taken as it is";
    std::filesystem::current_path(here);
}

TEST(ProcessDeathTest, endRunsNoExitHandlers)
{
    const auto end = [] {
        std::atexit([] { std::_Exit(7); });
        endThisProcess();
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace Zorvan::platform::tests
