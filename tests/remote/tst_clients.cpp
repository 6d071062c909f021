// Opening and closing the port, several clients at once, and the boxes that their commands open.

#include "remotetest.h"

#include <QTcpServer>

#include <cstring>
#include <deque>
#include <thread>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

QByteArray unit(const QByteArray &first, const QByteArray &second)
{
    return "<u>" + note(first) + note(second) + "</u>\n";
}

/// Notes of a "box" open one, and are done when it is closed; "restart" ends the library and starts it anew.
class Clients : public RemoteTest
{
protected:
    Clients()
    {
        notes.onCall = [this](char *, char *parameters) {
            if (std::strcmp(parameters, "box") == 0)
                ask(true, ok);
            if (std::strcmp(parameters, "restart") != 0)
                return;
            print(QStringLiteral("goodbye"));
            restart();
        };
    }
    void waitForTheUser()
    {
        EXPECT_TRUE(runUntil([this] { return robot->left() == 0 && openDialogs().isEmpty(); }));
    }
    void restart()
    {
        host.store("serverPortOpen", 1);
        Debug::exitDebug();
        Debug::initDebug();
        Debug::installHook("note", &notes, true);
        EXPECT_TRUE(runUntil(&Debug::clientsAllowed));
    }
};

TEST_F(Clients, AreServedAtTheAddressThatTheHostNamesOrANoticeSaysWhyNot)
{
    QTcpServer stranger;
    ASSERT_TRUE(stranger.listen(QHostAddress(QHostAddress::LocalHost)));
    const auto reopenAt = [this](int newPort, const char *address) {
        allow(false);
        host.store("serverPort", newPort);
        host.store("serverAddress", address);
        host.takeLines();
        allow(true);
    };
    const auto expectNotice = [&](int badPort, const char *address, const char *why) {
        reopenAt(badPort, address);
        Debug::setClientsAllowed(true); // it is
        runOn();
        const QString text = QStringLiteral("++++ remote access: cannot listen on %1, port %2: %3");
        const QLatin1String shown(*address ? address : "0.0.0.0");
        EXPECT_EQ(host.linesWith(qPrintable(text.arg(shown).arg(badPort).arg(QLatin1String(why)))), 1) << why;
    };
    expectNotice(stranger.serverPort(), "127.0.0.1", "The bound address is already in use");
    expectNotice(port, "192.0.2.1", "The address is not available"); // no machine has it
    expectNotice(65536, "", "not a port number");
    expectNotice(-1, "127.0.0.1", "not a port number");
    expectNotice(port, "example.org", "not an IP address");
    reopenAt(port, "127.0.0.2");
    EXPECT_FALSE(RemoteClient(port).isConnected());
    for (const char *const address : {"localhost", ""}) {
        reopenAt(port, address);
        EXPECT_TRUE(RemoteClient(port).isConnected()) << address;
    }
    EXPECT_EQ(host.linesWith("++++ remote"), 0) << "a port that was asked for is not announced";
}

TEST_F(Clients, TakeTheLinesFromTheWindowUntilTheLastOneLeaves)
{
    Greeted leaver(port);
    Greeted last(port);
    for (int i = 0; i < 500; ++i)
        print(QStringLiteral("#%1").arg(i));
    EXPECT_TRUE(leaver.waitFor("#499\r\n") && last.waitFor("#499\r\n"));
    const QByteArray lines = last.take();
    EXPECT_EQ(leaver.take(), lines);
    EXPECT_EQ(lines.count("\n"), 500);
    last.send("<config enabledsettings='disableOutput'/>\n");
    EXPECT_TRUE(last.waitFor("</clientMessage>"));
    leaver.close();
    EXPECT_TRUE(leaver.waitForDisconnect());
    runOn();
    print(QStringLiteral("#silenced"));
    last.reset();
    EXPECT_TRUE(runUntil([this] {
        print(QStringLiteral("back")); // in vain until the library hears that the last one has left
        return host.linesWith("back") > 0;
    }));
    EXPECT_TRUE(runUntil([] { return windowText().find("back") != std::string::npos; }));
    EXPECT_EQ(windowText().find('#'), std::string::npos);
}

TEST_F(Clients, HoldUpTheCommandsOfTheirClientAloneAlsoWhenItLeaves)
{
    RemoteClient quick(port);
    quick.send(note("parting") + '\n');
    quick.close();
    expectNotes({"parting"});
    Greeted other(port);
    enum Ending { stays, closes, breaksOff };
    for (const Ending ending : {stays, closes, breaksOff}) {
        Greeted asker(port);
        robot->then([&](QDialog &box) {
            if (ending == breaksOff)
                asker.reset();
            else
                asker.send(note("waits") + '\n' + note("half a line"));
            if (ending == closes)
                asker.close();
            runOn(); // a line sent to a client that has just left may cost what it sent last
            other.send(note("goes on") + '\n');
            print(QStringLiteral("line"));
            EXPECT_TRUE(other.waitFor("line\r\n"));
            expectNotes({"box", "goes on"});
            clickButton(box, "OK");
        });
        asker.send(unit("box", "behind"));
        waitForTheUser();
        expectNotes(ending == breaksOff ? Strings{"behind"} : Strings{"behind", "waits"});
    }
}

TEST_F(Clients, EndTheirUnitIfTheServerIsGoneBelowThem)
{
    const auto expectEnd = [this](const QByteArray &command) {
        Greeted asker(port);
        asker.send(unit(command, "behind"));
        EXPECT_TRUE(asker.waitForDisconnect());
        waitForTheUser();
        runOn();
        expectNotes({command.toStdString()});
        allow(true);
        return asker.take();
    };
    EXPECT_TRUE(expectEnd("restart").endsWith("goodbye\r\n"));
    robot->then([this](QDialog &) { restart(); }); // it closes the box
    expectEnd("box");
    Greeted other(port);
    robot->then([&other](QDialog &box) {
        other.send("<hook key='DebugServer_allowRemote' parameters='0'/>\n");
        EXPECT_TRUE(other.waitForDisconnect());
        EXPECT_TRUE(other.take().endsWith("='0'/>\n</clientMessage>\r\n"));
        clickButton(box, "OK");
    });
    expectEnd("box");
}

TEST_F(Clients, FindThePortOpenAsItWasLastAskedFor)
{
    host.store("serverPortOpen", 1);
    Greeted old(port);
    std::thread([] { // what it ends is deleted by an event loop, which this host only runs now and then
        Debug::exitDebug();
        Debug::initDebug();
    })
        .join();
    for (int i = 0; i < 20 && !Debug::clientsAllowed(); ++i)
        QCoreApplication::processEvents();
    Greeted renewed(port);
    print(QStringLiteral("line"));
    EXPECT_TRUE(renewed.waitFor("line\r\n"));
    EXPECT_TRUE(old.waitForDisconnect());
    allow(false);
    host.onRead = [](const QString &key) {
        if (key == QLatin1String("serverPort")) {
            Debug::setClientsAllowed(false);
            QCoreApplication::processEvents();
        }
    };
    Debug::setClientsAllowed(true);
    runOn();
    EXPECT_FALSE(Debug::clientsAllowed());
    EXPECT_FALSE(RemoteClient(port).isConnected());
}

TEST_F(Clients, OfSeveralClientsNestUpToALimit)
{
    constexpr int most = 16;
    std::deque<Greeted> askers;
    for (int i = 0; i < most + 2; ++i)
        askers.emplace_back(port);
    for (int i = 1; i < most; ++i)
        robot->leaveOpen();
    robot->then([&](QDialog &) {
        runOn();
        EXPECT_EQ(openDialogs().size(), most) << "further ones wait";
        robot->click("OK");
        robot->click("OK");
        for (QDialog *const box : openDialogs())
            clickButton(*box, "OK");
    });
    for (Greeted &asker : askers)
        asker.send(unit("box", "behind"));
    waitForTheUser();
    EXPECT_EQ(notes.takeCalls().size(), 2U * (most + 2));
}

} // namespace
