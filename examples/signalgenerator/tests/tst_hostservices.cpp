#include "hostservices.h"
#include "support/programdata.h"

#include <chrono>
#include <gtest/gtest.h>

using namespace SignalGenerator;
using namespace Zorvan::test;

namespace {

class HostServicesTest : public ::testing::Test
{
protected:
    /// What the host answers for a key of a settings file with this line.
    static std::string read(const std::string &line, const char *key)
    {
        const std::string path = libraryFile("test.ini");
        writeFile(path, "[DebugServer]\n" + line + '\n');
        HostServices services(QString::fromStdString(path));
        return services.readStringSetting("DebugServer", QString::fromLatin1(key), QStringLiteral("default"))
            .toStdString();
    }
};

TEST_F(HostServicesTest, ReadsTextsAsTheyWereWritten)
{
    EXPECT_EQ(read("Key=On", "Key"), "On");
    EXPECT_EQ(read("Key=\"debug,time\"", "Key"), "debug,time");
    EXPECT_EQ(read("Key=debug,time", "Key"), "debug,time") << "without quotes it is a list for QSettings";
    EXPECT_EQ(read("Key=", "Key"), "") << "empty is not missing";
    EXPECT_EQ(read("Key=On", "Other"), "default");
    EXPECT_EQ(read("[Other]\nKey=On", "Key"), "default") << "another group";
}

TEST_F(HostServicesTest, ReadsNumbersAndLeavesTheRestAtItsDefault)
{
    const std::string path = libraryFile("test.ini");
    writeFile(path, "[DebugServer]\nSize=-5\nText=large\nEmpty=\n");
    HostServices services(QString::fromStdString(path));
    EXPECT_EQ(services.readIntegerSetting("DebugServer", QStringLiteral("Size"), 7), -5);
    EXPECT_EQ(services.readIntegerSetting("DebugServer", QStringLiteral("Text"), 7), 7);
    EXPECT_EQ(services.readIntegerSetting("DebugServer", QStringLiteral("Empty"), 7), 7);
    EXPECT_EQ(services.readIntegerSetting("DebugServer", QStringLiteral("Missing"), 7), 7);
}

TEST_F(HostServicesTest, KeepsWhatIsWrittenForTheNextHost)
{
    const QString path = QString::fromStdString(libraryFile("written.ini"));
    const QString classes = QStringLiteral("debug message,time meas");
    HostServices(path).writeStringSetting("DebugServer", QStringLiteral("KernelDebugClasses"), classes);
    EXPECT_EQ(HostServices(path).readStringSetting("DebugServer", QStringLiteral("KernelDebugClasses"), {}),
              classes);
}

TEST_F(HostServicesTest, WorksWithoutAFile)
{
    HostServices services{QString()};
    services.writeStringSetting("DebugServer", QStringLiteral("Key"), QStringLiteral("On"));
    EXPECT_EQ(services.readStringSetting("DebugServer", QStringLiteral("Key"), QStringLiteral("Off")),
              QStringLiteral("Off"));
    EXPECT_EQ(services.readIntegerSetting("DebugServer", QStringLiteral("Key"), 3), 3);
}

TEST_F(HostServicesTest, CountsTheTimeInTheUnitThatItNames)
{
    HostServices services{QString()};
    const auto start = std::chrono::steady_clock::now();
    const quint64 first = services.readCounter();
    const quint64 second = services.readCounter();
    const std::chrono::duration<double> limit = std::chrono::steady_clock::now() - start;
    EXPECT_LE(first, second);
    EXPECT_LE(static_cast<double>(second - first) / services.counterFrequency(), limit.count());
    EXPECT_EQ(services.counterFrequency(), 1e9);
}

} // namespace
