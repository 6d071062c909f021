#include "platform/files.h"
#include "platform/folders_posix_p.h"
#include "support.h"

#include <gtest/gtest.h>

namespace Zorvan::platform::tests {
namespace {

TEST(PosixFolders, sharedFolderCountsOnlyIfItCanBeWritten)
{
    const TemporaryFolder folder;
    const std::string own = folder / "Velmora";
    EXPECT_EQ(writableFolderIn(folder.path()), own);
    EXPECT_TRUE(std::filesystem::is_directory(own));
    EXPECT_EQ(writableFolderIn(folder.path()), own) << "already there";
    EXPECT_EQ(writableFolderIn("/proc"), "");
    EXPECT_EQ(writableFolderIn(folder / "missing"), "");
    std::filesystem::remove(own);
    ASSERT_TRUE(replaceFile(own.c_str(), "a file"));
    EXPECT_EQ(writableFolderIn(folder.path()), "");
}

TEST(PosixFolders, ownFolderFollowsDataHomeThenHome)
{
    Variable dataHome("XDG_DATA_HOME", "/data");
    Variable home("HOME", "/home/ann");
    EXPECT_EQ(ownDataFolder(), "/data/Velmora");
    dataHome.set("relative");
    EXPECT_EQ(ownDataFolder(), "/home/ann/.local/share/Velmora");
    dataHome.set(std::nullopt);
    EXPECT_EQ(ownDataFolder(), "/home/ann/.local/share/Velmora");
    home.set("");
    EXPECT_EQ(ownDataFolder().front(), '/') << "the user's entry in the system's list";
}

} // namespace
} // namespace Zorvan::platform::tests
