#include "platform/files.h"
#include "support.h"

#include <gtest/gtest.h>

namespace Zorvan::platform::tests {
namespace {

using Start = AppendFile::Start;

class Files : public testing::Test
{
protected:
    const TemporaryFolder m_folder;
    const std::string m_path = m_folder / "Gr\u00f6\u00dfe.log";
};

TEST_F(Files, appendedTextContinuesOrReplacesWhatIsThere)
{
    EXPECT_TRUE(AppendFile(m_path.c_str()).write("one\n"));
    EXPECT_TRUE(AppendFile(m_path.c_str(), Start::Continue).write("two\n"));
    EXPECT_EQ(contentOf(m_path), "one\ntwo\n");
    AppendFile emptied(m_path.c_str(), Start::Empty);
    EXPECT_EQ(emptied.size(), 0);
    EXPECT_TRUE(emptied.write(std::string_view("x\0\n", 3)));
    EXPECT_EQ(emptied.size(), 3);
    EXPECT_EQ(contentOf(m_path), std::string("x\0\n", 3));
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::u8path(m_path)));
}

TEST_F(Files, twoWritersNeverOverwriteEachOther)
{
    AppendFile first(m_path.c_str());
    AppendFile second(m_path.c_str());
    for (const char *text : {"a", "b"}) {
        EXPECT_TRUE(first.write(text));
        EXPECT_TRUE(second.write(text));
    }
    EXPECT_EQ(contentOf(m_path), "aabb");
    EXPECT_TRUE(second.truncate());
    EXPECT_TRUE(first.write("c"));
    EXPECT_EQ(contentOf(m_path), "c");
}

TEST_F(Files, openFileMayBeMovedAndDeletedByOthers)
{
    AppendFile file(m_path.c_str());
    const std::string moved = m_folder / "moved.log";
    std::filesystem::rename(std::filesystem::u8path(m_path), std::filesystem::u8path(moved));
    EXPECT_TRUE(file.write("still here"));
    EXPECT_EQ(contentOf(moved), "still here");
    EXPECT_TRUE(removeRegularFile(moved.c_str()));
    EXPECT_TRUE(file.write("into nothing"));
}

TEST_F(Files, namesThatAreNoFileAreRefused)
{
    const std::string missingFolder = m_folder / "missing/file";
    const std::string folder = m_folder.path();
    std::string content = "old";
    for (const char *path : {static_cast<const char *>(nullptr), "", folder.c_str(), missingFolder.c_str()}) {
        AppendFile file(path);
        EXPECT_FALSE(file.isOpen());
        EXPECT_FALSE(file.write("x"));
        EXPECT_FALSE(file.truncate());
        EXPECT_EQ(file.size(), 0);
        EXPECT_FALSE(removeRegularFile(path));
        EXPECT_FALSE(replaceFile(path, "x"));
        EXPECT_EQ(countLineFeeds(path), -1);
        EXPECT_FALSE(readFileStart(path, 10, content));
        EXPECT_EQ(content, "");
    }
    EXPECT_TRUE(fileExists(folder.c_str()));
    EXPECT_FALSE(fileExists(missingFolder.c_str()));
}

TEST_F(Files, lineFeedsAreCountedAcrossBlocks)
{
    std::string text(3 * 65536, 'x');
    for (const std::size_t position : {0U, 65535U, 65536U, 131071U, 196607U})
        text[position] = '\n';
    EXPECT_TRUE(replaceFile(m_path.c_str(), text));
    EXPECT_EQ(countLineFeeds(m_path.c_str()), 5);
    EXPECT_TRUE(replaceFile(m_path.c_str(), ""));
    EXPECT_EQ(countLineFeeds(m_path.c_str()), 0);
}

TEST_F(Files, readingStopsAtTheLimit)
{
    const std::string text = std::string(70000, 'x') + std::string("\0end", 4);
    ASSERT_TRUE(replaceFile(m_path.c_str(), text));
    std::string content;
    for (const std::size_t limit : {0U, 1U, 65536U, 65537U, 70004U, 70005U, 1U << 20}) {
        EXPECT_TRUE(readFileStart(m_path.c_str(), limit, content));
        EXPECT_EQ(content, text.substr(0, limit));
    }
    EXPECT_TRUE(replaceFile(m_path.c_str(), "short"));
    EXPECT_EQ(contentOf(m_path), "short");
}

TEST_F(Files, trustedFileIsReadWholeOrNotAtAll)
{
    std::string content;
    ASSERT_TRUE(replaceFile(m_path.c_str(), "12345"));
    EXPECT_TRUE(readTrustedFile(m_path.c_str(), 5, content));
    EXPECT_EQ(content, "12345");
    EXPECT_FALSE(readTrustedFile(m_path.c_str(), 4, content));
    EXPECT_EQ(content, "");
    EXPECT_FALSE(readTrustedFile(m_folder.path().c_str(), 5, content));
    EXPECT_FALSE(readTrustedFile((m_path + "x").c_str(), 5, content));
}

TEST_F(Files, foldersAreMadeWithTheirParents)
{
    const std::string deep = m_folder / "a/\u00e4/c";
    EXPECT_TRUE(makeFolders((deep + '/').c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::u8path(deep)));
    EXPECT_TRUE(makeFolders(deep.c_str()));
    ASSERT_TRUE(replaceFile(m_path.c_str(), ""));
    EXPECT_FALSE(makeFolders(m_path.c_str()));
    EXPECT_FALSE(makeFolders((m_path + "/below").c_str()));
    EXPECT_FALSE(makeFolders(""));
    EXPECT_FALSE(makeFolders(nullptr));
}

} // namespace
} // namespace Zorvan::platform::tests
