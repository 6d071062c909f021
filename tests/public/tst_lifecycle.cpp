// Start and end: how they are counted, what they keep, and the end of the application object.

#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <QCoreApplication>

#include <array>
#include <gtest/gtest.h>
#include <optional>

using Zorvan::Debug;
using namespace Zorvan::test;

namespace {

constexpr int kernel = 2;

void receive(Zorvan::hookData *) {}

/// Level 4 of a module at critical: only without a table the answer is yes.
bool isUp()
{
    return !Debug::isActive(kernel, 4, 0);
}

void start(int times = 1)
{
    for (int i = 0; i < times; ++i)
        Debug::initDebug();
}

void stop(int times = 1)
{
    for (int i = 0; i < times; ++i)
        Debug::exitDebug();
}

std::string printed(const char *text)
{
    ::testing::internal::CaptureStdout();
    Debug::println(kernel, 0, QString::fromLatin1(text), 0);
    return ::testing::internal::GetCapturedStdout();
}

class LifeCycle : public ::testing::Test
{
protected:
    void TearDown() override
    {
        Debug::setOutputReceiver(-1, nullptr);
        stop(9);
    }
    void startApplication() { m_application.emplace(m_count, m_arguments.data()); }
    void endApplication() { m_application.reset(); }

    MapHost host;

private:
    int m_count = 1;
    std::string m_name = "test";
    std::array<char *, 2> m_arguments = {m_name.data(), nullptr};
    std::optional<QCoreApplication> m_application;
};

TEST_F(LifeCycle, OnlyTheFirstStartReadsTheSettings)
{
    start();
    host.store("DebugServerShowThreadID", "On");
    EXPECT_EQ(Debug::createModule("Made", "Made"), 27);
    start();
    EXPECT_EQ(host.reads("DebugServerFile"), 1);
    EXPECT_EQ(host.reads("KernelDebugLevel"), 1);
    EXPECT_EQ(Debug::getDisplayFlags(), 12);
    EXPECT_EQ(Debug::createModule("Next", "Next"), 28);
    stop();
    EXPECT_TRUE(isUp());
    stop(4); // three of them are surplus
    EXPECT_FALSE(isUp());
    EXPECT_EQ(printed("late"), "");
    EXPECT_NE(readFile(libraryFile("GYX-syslog-0.log")).find("late\n"), std::string::npos);
    start();
    EXPECT_EQ(Debug::getDisplayFlags(), 12 + 512);
    EXPECT_EQ(Debug::createModule("Again", "Again"), 27);
}

TEST_F(LifeCycle, AReceiverForAllModulesKeepsTheLibraryUp)
{
    Debug::setOutputReceiver(-1, &receive); // nobody is there to receive from
    start(2);
    stop(2);
    EXPECT_FALSE(isUp());
    start(2);
    Debug::setOutputReceiver(-1, &receive);
    stop(5);
    Debug::setOutputReceiver(-1, nullptr);
    stop();
    EXPECT_TRUE(isUp()) << "the ends under the receiver do not even count";
    Debug::setOutputReceiver(kernel, &receive); // one module does not matter
    stop();
    EXPECT_FALSE(isUp());
    start();
    EXPECT_NE(printed("text"), "") << "receivers go with the table";
}

TEST_F(LifeCycle, TheLibraryEndsWithTheApplication)
{
    for (const bool libraryFirst : {true, false}) { // two applications, one behind the other
        if (libraryFirst)
            start(2);
        startApplication();
        start(3);
        EXPECT_TRUE(isUp());
        endApplication();
        EXPECT_FALSE(isUp());
        stop(); // the host's own call comes too late
        start();
        EXPECT_TRUE(isUp()) << "a library may live without an application";
        stop();
        EXPECT_FALSE(isUp());
    }
    startApplication();
    start();
    stop();
    endApplication();
    start(2);
    stop();
    EXPECT_TRUE(isUp()) << "an ended library is left alone: the count starts at zero";
}

} // namespace
