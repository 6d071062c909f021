#include "lowlevelfunctions/daemonlockfile.h"

#include <gtest/gtest.h>

namespace Zorvan {
namespace {

TEST(DaemonLockFile, NeedsTwoPartsForItsPorts)
{
    struct Row
    {
        std::string_view content;
        std::size_t parts;
        int daemonPort;
        int secondPort;
    };
    const Row rows[] = {
        {"5000\n5001\nmore\n", 4, 5000, 5001},
        {"5000\r\n 5001\r\n", 3, 5000, 5001},
        {"5000\n", 2, 5000, 0},
        {"5000", 1, -1, -1},
        {"", 1, -1, -1},
        {"\n", 2, 0, 0},
        {"50 00\n5001x", 2, 0, 0},
        {"-1\n99999999999", 2, -1, 0},
        {std::string_view("5000\0\n1", 7), 2, 0, 1},
    };
    for (const Row &row : rows) {
        const DaemonLockFile file = parseDaemonLockFile(row.content);
        EXPECT_EQ(file.parts, row.parts) << row.content;
        EXPECT_EQ(file.daemonPort, row.daemonPort) << row.content;
        EXPECT_EQ(file.secondPort, row.secondPort) << row.content;
    }
}

TEST(DaemonLockFile, InstanceNameCannotLeaveTheFolder)
{
    EXPECT_EQ(daemonInstanceName("assertion"), "assertion");
    EXPECT_EQ(daemonInstanceName("../../etc\\x"), ".._.._etc_x");
    EXPECT_EQ(daemonInstanceName(std::string_view("a\0b", 3)), "a_b");
    EXPECT_EQ(daemonInstanceName(std::string(5000, 'x')), std::string(1023, 'x'));
    EXPECT_EQ(readDaemonLockFile(daemonLockFilePath(std::string(1023, 'x'))).parts, 0U);
}

} // namespace
} // namespace Zorvan
