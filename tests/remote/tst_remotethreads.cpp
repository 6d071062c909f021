// Threads print while remote clients come, command and go: small, for the race checkers.

#include "public/hookrecorder.h"
#include "support/crew.h"
#include "support/guiapplication.h"
#include "support/remoteclient.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <map>

using Zorvan::Debug;
using namespace Zorvan::test;

namespace {

using Numbers = std::map<int, int>; ///< by printer

/// Runs four printers while \a turn is called so many times; returns how many lines each of them has printed.
Numbers printBeside(int turns, const std::function<void(int)> &turn)
{
    std::atomic<bool> enough{false};
    Numbers printed{{0, 0}, {1, 0}, {2, 0}, {3, 0}};
    Crew crew(4, [&](int printer) {
        for (int &count = printed.at(printer); !enough; ++count) {
            Debug::println(2, 0, QStringLiteral("#%1:%2").arg(printer).arg(count), 0);
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // many turns, not many lines
        }
    });
    for (int number = 0; number < turns; ++number)
        turn(number);
    enough = true;
    crew.join();
    return printed;
}

/// Fails unless each line of a printer is followed by its next one. Returns the numbers that would come next.
Numbers expectNoGaps(const QByteArray &text)
{
    Numbers next;
    for (const QByteArray &line : text.split('\n')) {
        int printer = 0;
        int number = 0;
        if (std::sscanf(line.mid(line.indexOf('#')).constData(), "#%d:%d", &printer, &number) != 2)
            continue;
        EXPECT_EQ(next.emplace(printer, number).first->second++, number) << line.toStdString();
    }
    return next;
}

class RemoteThreads : public ::testing::Test
{
protected:
    RemoteThreads()
    {
        Debug::initDebug();
        port = openRemoteAccess(host);
    }
    ~RemoteThreads() override { Debug::exitDebug(); }

    MapHost host;
    TestApplication<QCoreApplication> application;
    quint16 port = 0;
};

TEST_F(RemoteThreads, ReachASteadyClientWhileOthersComeCommandAndGo)
{
    const QByteArray commands[] = {"<filter module='kernel' level='full' classes='all'/>\n",
                                   "<u><hook key='direct'/><hook key='thread'/></u>\n",
                                   "<config enabledsettings='displayModuleName' outputfilter='#'/>\n<half "};
    HookRecorder hook;
    hook.onCall = [](char *, char *) { Debug::println(2, 0, QStringLiteral("of a hook"), 0); };
    Debug::installHook("direct", &hook, true);
    Debug::installHook("thread", &hook, false);
    RemoteClient steady(port);
    ASSERT_TRUE(steady.waitForGreeting());
    const Numbers printed = printBeside(20, [&](int turn) {
        RemoteClient visitors[] = {RemoteClient(port), RemoteClient(port), RemoteClient(port)};
        for (int i = 0; i < 3; ++i)
            visitors[i].send(commands[(turn + i) % 3]);
        EXPECT_TRUE(visitors[0].takeUntil("</DebugServer>\r\n").startsWith("<DebugServer>\r\n"));
        const QByteArray lines = visitors[0].takeUntil("\r\n");
        EXPECT_EQ(lines.left(1), "<") << "a line begins";
        expectNoGaps(lines);
        visitors[1].reset();
        visitors[2].close();
    });
    Debug::println(2, 0, QStringLiteral("the end #"), 0);
    const QByteArray beforeAll = "#0:-1\n#1:-1\n#2:-1\n#3:-1\n";
    EXPECT_EQ(expectNoGaps(beforeAll + steady.takeUntil("the end #")), printed);
    EXPECT_FALSE(hook.takeCalls().empty());
    Debug::setOutputFilter({});
    Debug::exitDebug(); // no hook runs any more
}

TEST_F(RemoteThreads, PrintWhileTheLibraryOrThePortIsClosedBelowAClient)
{
    host.store("serverPort", port);
    host.store("serverPortOpen", 1);
    printBeside(10, [this](int turn) {
        RemoteClient client(port);
        client.send("<filter module='kernel' level='full' classes='all'/>\n");
        EXPECT_TRUE(client.waitFor("</clientMessage>\r\n"));
        turn % 2 ? Debug::setClientsAllowed(false) : Debug::exitDebug();
        EXPECT_TRUE(client.waitForDisconnect());
        expectNoGaps(client.take());
        turn % 2 ? Debug::setClientsAllowed(true) : Debug::initDebug();
        EXPECT_TRUE(runUntil(&Debug::clientsAllowed));
    });
}

} // namespace
