#include "platform/folders.h"
#include "support.h"

#include <gtest/gtest.h>

namespace Zorvan::platform::tests {
namespace {

std::string velmoraIn(const std::string &folder)
{
    return folder + pathSeparator + "Velmora";
}

TEST(Folders, environmentChoosesTheProgramDataFolder)
{
    const TemporaryFolder folder;
    Variable chosen("ZORVAN_PROGRAMDATA", folder / "\u00e4");
    EXPECT_EQ(findProgramDataFolder(), velmoraIn(folder / "\u00e4"));
    EXPECT_FALSE(fileExists((folder / "\u00e4").c_str())) << "searching makes nothing";
    chosen.set(folder.path() + "//");
    EXPECT_EQ(findProgramDataFolder(), velmoraIn(folder.path()));
    chosen.set("/");
    EXPECT_EQ(findProgramDataFolder(), "/Velmora");
    chosen.set("relative");
    EXPECT_NE(findProgramDataFolder().find("relative"), 0U) << "the host may change its working directory";
}

TEST(Folders, programDataFolderIsFoundOnceAndMadeOnDemand)
{
    const TemporaryFolder folder;
    Variable chosen("ZORVAN_PROGRAMDATA", folder / "first");
    const std::string first = programDataFolder();
    EXPECT_EQ(first, velmoraIn(folder / "first"));
    chosen.set(folder / "second");
    EXPECT_EQ(programDataFolder(), first);
    EXPECT_FALSE(fileExists(first.c_str()));
    makeProgramDataFolder();
    EXPECT_TRUE(fileExists(first.c_str()));
    makeProgramDataFolder();
}

TEST(Folders, temporaryFolderFollowsTheEnvironment)
{
    Variable temp("TEMP", "/one/");
    Variable tmpdir("TMPDIR", "/two");
    EXPECT_EQ(temporaryFolder(), "/one");
    temp.set("");
    EXPECT_EQ(temporaryFolder(), "/two");
    tmpdir.set("/");
    EXPECT_EQ(temporaryFolder(), "/");
    tmpdir.set(std::nullopt);
    const std::string system = temporaryFolder();
    EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::u8path(system)));
    EXPECT_NE(system.back(), pathSeparator);
}

} // namespace
} // namespace Zorvan::platform::tests
