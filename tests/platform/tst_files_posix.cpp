#include "platform/files.h"
#include "support.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zorvan::platform::tests {
namespace {

class PosixFiles : public testing::Test
{
protected:
    const TemporaryFolder m_folder;
    const std::string m_path = m_folder / "file";
};

TEST_F(PosixFiles, pipeNeverStopsTheWriter)
{
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_FALSE(AppendFile(m_path.c_str()).isOpen());
    EXPECT_EQ(countLineFeeds(m_path.c_str()), -1);
    EXPECT_FALSE(removeRegularFile(m_path.c_str()));

    const int reader = open(m_path.c_str(), O_RDONLY | O_NONBLOCK);
    AppendFile writer(m_path.c_str());
    EXPECT_TRUE(writer.write("text"));
    EXPECT_EQ(writer.size(), 0);
    EXPECT_FALSE(writer.write(std::string(1U << 20, 'x'))) << "more than a pipe holds";
    close(reader);
}

TEST_F(PosixFiles, devicesAndLinksAreNoFiles)
{
    AppendFile full("/dev/full");
    EXPECT_TRUE(full.isOpen());
    EXPECT_FALSE(full.write("x"));
    AppendFile null("/dev/null", AppendFile::Start::Empty);
    EXPECT_TRUE(null.write("x"));
    EXPECT_EQ(null.size(), 0);
    EXPECT_FALSE(null.truncate());
    EXPECT_EQ(countLineFeeds("/dev/zero"), -1);

    ASSERT_EQ(symlink("nowhere", m_path.c_str()), 0);
    EXPECT_FALSE(removeRegularFile(m_path.c_str()));
    EXPECT_TRUE(fileExists(m_path.c_str())) << "a link that leads nowhere";
}

TEST_F(PosixFiles, plantedFileIsNotTrusted)
{
    std::string content;
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(readTrustedFile((m_folder / "pipe").c_str(), 9, content)) << "and no wait for a writer";
    ASSERT_TRUE(replaceFile(m_path.c_str(), "text"));
    ASSERT_EQ(symlink(m_path.c_str(), (m_folder / "link").c_str()), 0);
    EXPECT_FALSE(readTrustedFile((m_folder / "link").c_str(), 9, content));
    EXPECT_TRUE(readTrustedFile(m_path.c_str(), 9, content));
    ASSERT_EQ(link(m_path.c_str(), (m_folder / "second").c_str()), 0);
    EXPECT_FALSE(readTrustedFile((m_folder / "second").c_str(), 9, content)) << "anybody can make one";
    ASSERT_EQ(unlink((m_folder / "second").c_str()), 0);
    ASSERT_EQ(chmod(m_path.c_str(), 0666), 0);
    EXPECT_FALSE(readTrustedFile(m_path.c_str(), 9, content)) << "anybody can write";
    ASSERT_EQ(chmod(m_path.c_str(), 0644), 0);
    EXPECT_TRUE(readTrustedFile(m_path.c_str(), 9, content));
    if (chown(m_path.c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "only the administrator can give files away";
    EXPECT_FALSE(readTrustedFile(m_path.c_str(), 9, content));
    EXPECT_TRUE(readFileStart(m_path.c_str(), 9, content));
}

TEST_F(PosixFiles, partialWriteIsReportedAsFailure)
{
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 10;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_FALSE(AppendFile(m_path.c_str()).write("0123456789more"));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(contentOf(m_path), "0123456789");
}

TEST_F(PosixFiles, openFileIsNotInheritedAndObeysTheMask)
{
    const mode_t mask = umask(027);
    const AppendFile file(m_path.c_str());
    const std::string made = m_folder / "made";
    EXPECT_TRUE(makeFolders(made.c_str()));
    umask(mask);
    struct stat status;
    ASSERT_EQ(stat(made.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0750);
    ASSERT_EQ(stat(m_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640);

    int found = 0;
    for (int descriptor = 0; descriptor < 100; ++descriptor) {
        struct stat open;
        if (fstat(descriptor, &open) != 0 || open.st_ino != status.st_ino || open.st_dev != status.st_dev)
            continue;
        ++found;
        EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
    }
    EXPECT_EQ(found, 1);
}

} // namespace
} // namespace Zorvan::platform::tests
