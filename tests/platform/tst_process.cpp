#include "peer.h"
#include "platform/process.h"
#include "support.h"

#include <gtest/gtest.h>

namespace Zorvan::platform::tests {
namespace {

const char *const helper = "zorvan_platform_helper";

std::filesystem::path helperFile()
{
    const std::filesystem::path folder = std::filesystem::u8path(executableFolder());
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().stem() == helper)
            return entry.path();
    }
    return {};
}

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
    const TemporaryFolder folder;
    // Another test may search at the same time; the folder's name is its own.
    const std::string part = "helper-" + std::filesystem::u8path(folder.path()).filename().u8string();
    const std::string program = folder / ("Platform_" + part);
    std::filesystem::copy_file(helperFile(), program);
    const auto running = [&] { return isProcessRunning(part.c_str()); };
    EXPECT_FALSE(running());
    Peer peer;
    ASSERT_TRUE(startDetached(program, {std::to_string(peer.port())}));
    peer.accept();
    EXPECT_TRUE(running());
    EXPECT_TRUE(isProcessRunning(("Platform_" + part).c_str()));
    EXPECT_FALSE(isProcessRunning(("platform_" + part).c_str())) << "case counts";
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
    const std::filesystem::path program = helperFile();
    const std::string name = "zorvan-lure" + program.extension().string();
    std::filesystem::copy_file(program, folder / name);
    std::filesystem::current_path(folder.path());
    const std::string separator(1, pathSeparator == '/' ? ':' : ';');
    const Variable path("PATH", "." + separator + separator + std::getenv("PATH"));
    EXPECT_FALSE(startDetached(name, {"0"}));
    EXPECT_TRUE(startDetached("./" + name, {"0"})) << "a path is taken as it is";
    std::filesystem::current_path(here);
}

} // namespace
} // namespace Zorvan::platform::tests
