#include "platform/folders.h"
#include "support.h"

#include <gtest/gtest.h>

namespace Zorvan::platform::tests {
namespace {

TEST(WindowsFolders, commonApplicationDataIsTheDefault)
{
    const Variable chosen("ZORVAN_PROGRAMDATA", std::nullopt);
    EXPECT_EQ(findProgramDataFolder(), "C:\\ProgramData\\Velmora");
}

TEST(WindowsFolders, driveRootKeepsItsSeparator)
{
    const Variable temp("TEMP", "C:\\");
    EXPECT_EQ(temporaryFolder(), "C:\\");
    const Variable chosen("ZORVAN_PROGRAMDATA", "C:\\");
    EXPECT_EQ(findProgramDataFolder(), "C:\\Velmora");
}

} // namespace
} // namespace Zorvan::platform::tests
