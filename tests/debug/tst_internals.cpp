// Messages of Qt, of kinds that a test cannot raise.

#include "debug/qtmessages.h"
#include "support/maphost.h"

#include <gtest/gtest.h>

using namespace Zorvan;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

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
