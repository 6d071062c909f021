// What a remote client is told first, byte by byte.

#include "public/hookrecorder.h"
#include "support/guiapplication.h"
#include "support/remoteclient.h"

#include <gtest/gtest.h>

using Zorvan::Debug;
using namespace Zorvan::test;

namespace {

/// The record of a module that describes its classes and levels as all do that are there from the start.
QByteArray module(const char *name, const char *level = "+ CRITICAL +:", const char *classes = "all")
{
    return QByteArray("  <module name='") + name + "' enabledLevel='" + level + "' enabledClasses='" + classes
        + "' classes='none,all,debug message,time meas'"
          " levels='release,full,+ CRITICAL +:,Error:,Warning:,Info:,Time Meas:' />\r\n";
}

void configureModules()
{
    for (int id = 1; id <= 5; ++id)
        Debug::isActive(id, 0, 0);
    Debug::setModuleDescription(1, " <a>, b: 'Gr\366\337e' ", "Startup");
    Debug::setClippingLevel(2, -1);
    Debug::enableClasses(2, QStringLiteral("none"));
    Debug::enableLevel(3, QStringLiteral("full"));
    Debug::enableClasses(3, QStringLiteral("time"));
    Debug::setMessageLevelDescriptions(4, 0, static_cast<const char **>(nullptr));
    const char *classes[] = {"<a, b>, ", "  r:s<>t  ", ""};
    Debug::setMessageClassDescriptions(5, 3, classes);
    const char *levels[] = {"<top, most>: ", "< low <>,  "};
    Debug::setMessageLevelDescriptions(5, 2, levels);
    Debug::setClippingLevel(5, 1);
    Debug::disableMessageClassType(5, 2);
    Debug::createModule("Bare", "Bare");
}

TEST(Greeting, ShowsNamesCleanedAndFiltersAsTheyAre)
{
    MapHost host;
    const TestApplication<QCoreApplication> application;
    HookRecorder hook;
    Debug::initDebug();
    const quint16 port = openRemoteAccess(host);
    configureModules();
    for (const char *const key : {"zoom<1>", "Pr\374fen", "DebugServerWindowClosedHook"})
        Debug::installHook(key, &hook, true);
    Debug::enableSettings(QStringLiteral("displayModuleName,allowProgrammaticClear,"));
    Debug::setLevelFilter(QStringLiteral("KLV|it's;\u20ac"));
    Debug::setOutputFilter(QStringLiteral("<a & \u00e4>"));

    const QByteArray expected = "<DebugServer>\r\n<commands>\r\n"
                                "  <filter module='...' level='...' classes='...' />\r\n"
                                "    <hook key='...' parameters='...' />\r\n"
                                "    <config settings='...'/>\r\n"
                                "    <config makedefault=''/>\r\n"
                                "</commands>\r\n\r\n<global>\r\n"
                                "  <config enabledsettings='displayModuleName,allowProgrammaticClear,'"
                                " levelsfilter='KLV|it's;?' outputfilter='<a & \344>'/>\r\n"
                                "</global>\r\n\r\n<modules>\r\n"
        + module("#DebugServer#") + module("a, b: 'Gr\366\337e'") + module("KLV-Kernel", "release", "none")
        + module("KLV-Gui", "Time Meas:", "time meas")
        + "  <module name='KLV-Database' enabledLevel='' enabledClasses='all'"
          " classes='none,all,debug message,time meas' levels='release,full' />\r\n"
          "  <module name='KLV-OrgLayer' enabledLevel='low' enabledClasses='a b,rst'"
          " classes='none,all,a b,r:st,' levels='release,full,top most:,low' />\r\n"
        + module("").repeated(21)
        + "  <module name='' enabledLevel='' enabledClasses='all' classes='none,all'"
          " levels='release,full' />\r\n"
          "</modules>\r\n\r\n<hooks>\r\n"
          "  <hook key='DebugServer_allowRemote' />\r\n"
          "  <hook key='DebugServer_newUI' />\r\n"
          "  <hook key='DebugServer_testAssert' />\r\n"
          "  <hook key='DebugServer_testMessage' />\r\n"
          "  <hook key='DebugServer_testMsgBox' />\r\n"
          "  <hook key='Pr\374fen' />\r\n"
          "  <hook key='zoom<1>' />\r\n"
          "</hooks>\r\n</DebugServer>\r\n";
    EXPECT_EQ(RemoteClient(port).takeUntil("</DebugServer>\r\n"), expected);
    Debug::exitDebug();
}

} // namespace
