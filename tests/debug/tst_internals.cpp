// What hosts cannot see yet: handlers and GUI state that are kept for the road into the GUI thread.

#include "debug/qtmessages.h"
#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"
#include "host/silentmessagebox.h"
#include "support/maphost.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

using namespace Zorvan;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

TEST(Internals, BoxesAreSilencedOnlyWhileTheHostForbidsThem)
{
    MapHost host;
    host.boxesAllowed = false;
    Debug::initDebug();
    EXPECT_EQ(host::messageBoxHandler(), silentMessageBox::instance());
    Debug::exitDebug();
    host.boxesAllowed = true;
    Debug::initDebug();
    EXPECT_EQ(host::messageBoxHandler(), nullptr);
    Debug::exitDebug();
    IMessageBoxInterface own;
    Debug::installMessageBoxHandler(&own);
    Debug::initDebug();
    EXPECT_EQ(host::messageBoxHandler(), &own);
    Debug::exitDebug();
}

TEST(Internals, TheGuiThreadIsForgottenWithItsApplication)
{
    int place = 0;
    const auto start = [&place] {
        Debug::setGuiThreadId(&place);
        Debug::eventLoopStarted();
        Debug::initDebug();
    };
    {
        int argc = 0;
        const QCoreApplication application(argc, nullptr);
        start();
        EXPECT_TRUE(guibridge::qtApplicationRuns());
    }
    EXPECT_FALSE(guibridge::eventLoopRunning());
    EXPECT_EQ(guibridge::guiThreadId(), nullptr);
    start(); // no application: the end of the library is the end of that state
    EXPECT_TRUE(guibridge::eventLoopRunning());
    Debug::exitDebug();
    EXPECT_EQ(guibridge::guiThreadId(), nullptr);
    EXPECT_FALSE(guibridge::qtApplicationRuns());
}

TEST(Internals, ARemoteClientsTableMarksTheProcessAsClient)
{
    Debug::initDebug();
    Debug::createModule("debugserverclient", "Client");
    EXPECT_FALSE(guibridge::isClientMode());
    Debug::createModule("DebugServerClient", "Client");
    EXPECT_TRUE(guibridge::isClientMode());
    Debug::exitDebug();
}

TEST(Internals, QtMessagesHaveAPrefixAndALevelOfTheirType)
{
    MapHost host;
    host.store("DebugServerDebugLevel", "error");
    Debug::initDebug();
    host.takeLines();
    for (const QtMsgType type : {QtDebugMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg, QtInfoMsg})
        printQtMessage(type, QStringLiteral("text"));
    const std::string head = "<debug message>, ";
    EXPECT_EQ(host.takeLines(),
              (Lines{
                  head + "<       Error>: ++++ QDebug: text",
                  head + "<       Error>: ++++ QWarning: text",
                  head + "<+ CRITICAL +>: ++++ QCritical: text",
                  head + "<+ CRITICAL +>: ++++ QFatal: text",
              }));
    Debug::enableLevel(0, QStringLiteral("info"));
    host.takeLines();
    printQtMessage(QtInfoMsg, QStringLiteral("text"));
    printQtMessage(static_cast<QtMsgType>(7), QStringLiteral("text")); // a kind of a later Qt
    EXPECT_EQ(host.takeLines(),
              (Lines{
                  head + "<        Info>: ++++ QInfo: text",
                  head + "<        Info>: ++++ <unknown Qt Message Category>: text",
              }));
    Debug::exitDebug();
}

} // namespace
