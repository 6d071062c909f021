// Where lines go besides the file: receivers, line tap, standard output; without a table the system log.

#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <QLoggingCategory>

#include <gtest/gtest.h>

using Zorvan::Debug;
using Zorvan::hookData;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

constexpr int kernel = 2;
constexpr int gui = 3;

Lines s_received;
hookData s_last;

void receive(hookData *data)
{
    s_last = *data;
    s_received.emplace_back(data->text);
}

void receiveAndPrint(hookData *data)
{
    s_received.emplace_back(data->text);
    Debug::println(data->module, 0, QStringLiteral("again"), 0);
}

void receiveAndExit(hookData *)
{
    Debug::exitDebug();
}

class Sinks : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host.store("KernelDebugLevel", "full");
        Debug::initDebug();
        s_received.clear();
    }
    void TearDown() override
    {
        Debug::setOutputReceiver(-1, nullptr);
        Debug::exitDebug();
    }
    static void print(const std::string &text, int module = kernel)
    {
        Debug::println(module, 0, QString::fromStdString(text), 0);
    }
    template <typename Action>
    static std::string standardOutputOf(Action action)
    {
        ::testing::internal::CaptureStdout();
        action();
        return ::testing::internal::GetCapturedStdout();
    }

    MapHost host;
};

TEST_F(Sinks, LinesGoThroughTheTapToStandardOutput)
{
    EXPECT_EQ(standardOutputOf([] { print("text"); }), "<debug message>, <+ CRITICAL +>: text\n");
    EXPECT_EQ(host.takeLines(), Lines{"<debug message>, <+ CRITICAL +>: text"});
    Debug::setUtilityCallbackHandler(nullptr);
    EXPECT_EQ(standardOutputOf([] { print("text"); }), "<debug message>, <+ CRITICAL +>: text\n");
}

TEST_F(Sinks, AReceiverReplacesTapAndStandardOutputButNotTheFile)
{
    Debug::setDisplayFlags(-1);
    Debug::setOutputReceiver(kernel, receive);
    const std::string output = standardOutputOf([] {
        print("received");
        print("not received", gui);
    });
    EXPECT_EQ(s_received, Lines{"<debug message>, <+ CRITICAL +>: received"});
    EXPECT_EQ(s_last.module, kernel);
    EXPECT_EQ(s_last.level, 0);
    EXPECT_EQ(s_last.messageClass, 0);
    EXPECT_EQ(output, "<debug message>, <+ CRITICAL +>: not received\n");
    EXPECT_EQ(host.takeLines().size(), 1U);
    EXPECT_EQ(linesOf(readFile(libraryFile("GYX_Debug_Output.log"))).size(), 2U);
}

TEST_F(Sinks, OnlyTheReceiversTextIsCut)
{
    Debug::setDisplayFlags(-1);
    Debug::setOutputReceiver(kernel, receive);
    print(std::string(5000, 'x'));
    EXPECT_EQ(s_received.at(0).size(), 2047U);
    EXPECT_GT(readFile(libraryFile("GYX_Debug_Output.log")).size(), 5000U);
}

TEST_F(Sinks, AReceiverForAllCoversPresentModulesAndSilencesNotices)
{
    Debug::enableLevel(0, QStringLiteral("info"));
    Debug::setOutputReceiver(kernel, receive);
    Debug::setOutputReceiver(-1, receive);
    const Zorvan::moduleId later = Debug::createModule("Later", "Later");
    Debug::setDisplayFlags(0);
    EXPECT_EQ(s_received, Lines{}) << "the flag notice was printed";
    print("one");
    print("two", 21);
    EXPECT_EQ(s_received.size(), 2U);
    EXPECT_NE(standardOutputOf([&] { print("later", later); }), "");
    Debug::setOutputReceiver(kernel, nullptr); // one module only: the flag stays
    Debug::setDisplayFlags(0);
    EXPECT_EQ(s_received.size(), 2U);
    Debug::setOutputReceiver(-1, nullptr);
    Debug::setOutputReceiver(99, receive);
    Debug::setOutputReceiver(-3, receive);
    EXPECT_NE(standardOutputOf([] { print("three"); }), "");
}

TEST_F(Sinks, AReceiverThatPrintsOnItsOwnModuleComesToAnEnd)
{
    Debug::setDisplayFlags(-1);
    Debug::setOutputReceiver(kernel, receiveAndPrint);
    print("first");
    EXPECT_EQ(s_received.size(), 8U);
    EXPECT_EQ(s_received.front(), "<debug message>, <+ CRITICAL +>: first");
    EXPECT_EQ(linesOf(readFile(libraryFile("GYX_Debug_Output.log"))).size(), 9U);
}

/// A host whose clock and thread names print.
class TalkativeHost : public MapHost, public Zorvan::IThraedInterface
{
public:
    quint64 readCounter() override
    {
        Debug::println(kernel, 0, QStringLiteral("clock"), 0);
        return 0;
    }
    const char *threadName() override
    {
        Debug::println(kernel, 0, QStringLiteral("name"), 0);
        return "talker";
    }
};

TEST_F(Sinks, HeadersWhoseCallbacksPrintComeToAnEnd)
{
    TalkativeHost talker;
    Debug::setThreadCallbackHandler(&talker);
    Debug::setDisplayFlags(-5);
    Debug::setDisplayFlags(-7);
    print("text");
    const Lines lines = talker.takeLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines.back().find("(         talker thread) <debug message>, <+ CRITICAL +>: text"),
              std::string::npos);
    Debug::setThreadCallbackHandler(nullptr);
}

TEST_F(Sinks, AReceiverMayStopTheLibraryInTheMiddleOfAMessage)
{
    Debug::setOutputReceiver(kernel, receiveAndExit);
    print("one\ntwo %d");
    EXPECT_NE(readFile(libraryFile("GYX-syslog-0.log")).find(": two 0\n"), std::string::npos);
}

TEST_F(Sinks, QtMessagesGoToTheSystemLogWithTheirPosition)
{
    host.takeLines();
    qWarning("a warning %d", 7);
    qCritical("%s", "100% %n");
    EXPECT_EQ(host.takeLines(), Lines{});
    const Lines log = linesOf(readFile(libraryFile("GYX-syslog-0.log")));
    ASSERT_EQ(log.size(), 2U);
    EXPECT_EQ(log[0].substr(log[0].find(": ") + 2), "source/debug(436): a warning 7");
    EXPECT_EQ(log[1].substr(log[1].find(": ") + 2), "source/debug(436): 100% %n");
}

TEST(SinksWithoutTable, FinishedLinesStillGoTheirWay)
{
    MapHost host;
    Debug::printFormattedString(kernel, 0, 0, QStringLiteral("finished"));
    EXPECT_EQ(host.takeLines(), Lines{"finished"});
}

TEST(SinksWithoutTable, TextsAreFormatsOfTheSystemLog)
{
    const auto print = [](const char *text) {
        Debug::println(kernel, 0, QString::fromUtf8(text), 99, 0, "host.cpp", 12);
    };
    print("50%done, 100%");
    print("two\nlines\n");
    Debug::initDebug();
    Debug::exitDebug();
    print("after %s%n \xc3\xa4");
    std::string log = readFile(libraryFile("GYX-syslog-0.log"));
    Lines lines = linesOf(log);
    ASSERT_EQ(lines.size(), 5U) << log;
    const auto text = [](const std::string &line) { return line.substr(line.find(": ") + 2); };
    EXPECT_EQ(text(lines[0]), "host.cpp(12): 500one, 100%");
    EXPECT_EQ(text(lines[1]), "host.cpp(12): two");
    EXPECT_EQ(lines[2], "lines");
    EXPECT_EQ(lines[3], "");
    EXPECT_EQ(text(lines[4]), "host.cpp(12): after (null) \xe4");
}

} // namespace
