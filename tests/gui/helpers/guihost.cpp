// A host whose standard output the tests read. First argument: what it does; second: the kind of application.

#include "support/crew.h"
#include "support/guiapplication.h"
#include "support/maphost.h"

#include <zorvan/debug.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <sys/wait.h>
#include <unistd.h>

using Zorvan::Debug;
using namespace Zorvan::test;

namespace {

constexpr int kernel = 2;
constexpr int producers = 8;

void print(const char *text)
{
    Debug::println(kernel, 0, QString::fromLatin1(text), 0);
}

void printNumber(int producer, int number)
{
    Debug::println(kernel, 0, QStringLiteral("#%1:%2").arg(producer).arg(number), 0);
}

/// Goes around the library.
void say(const char *text)
{
    std::printf("%s\n", text);
    std::fflush(stdout);
}

/// The application comes, runs its loop, ends it and goes while others print.
template <typename Application>
void printThroughout(MapHost &)
{
    Debug::initDebug();
    std::atomic<bool> enough{false};
    std::atomic<int> printed{0};
    const Crew crew(producers, [&](int producer) {
        for (int number = 0; !enough; ++number, ++printed)
            printNumber(producer, number);
    });
    const auto await = [&](int more) { waitIdle([&, goal = printed + more] { return printed > goal; }); };
    await(50);
    {
        const TestApplication<Application> application;
        await(50);
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&, goal = printed + 4000] {
            if (printed > goal)
                QCoreApplication::quit();
        });
        poll.start(1);
        QCoreApplication::exec();
        await(20);
    }
    await(100);
    enough = true;
}

/// Two threads print in turn at each stage in the life of two applications.
template <typename Application>
void printInEveryStage(MapHost &)
{
    int number = 0;
    const auto printBoth = [&number] {
        printNumber(0, number++);
        std::thread([&number] { printNumber(0, number++); }).join();
    };
    for (int round = 0; round < 2; ++round) {
        Debug::initDebug();
        printBoth();
        {
            const TestApplication<Application> application;
            printBoth();
            QTimer::singleShot(0, printBoth);
            QTimer::singleShot(5, [&] {
                Debug::exitDebug(); // and begins anew, with lines on the way
                Debug::initDebug();
                printBoth();
                QCoreApplication::quit();
            });
            QCoreApplication::exec();
            printBoth();
            if (round == 1)
                Debug::exitDebug();
        }
    }
}

template <typename Application, bool beforeAnyBatch>
void printWithoutWindowOutput(MapHost &host)
{
    host.store("noWindowOutput", 1);
    const TestApplication<Application> application;
    Debug::initDebug();
    print("discarded");
    if (!beforeAnyBatch && !runUntil([&] { return host.reads("noWindowOutput") > 0; }))
        giveUp("no batch");
    Debug::exitDebug();
}

/// The process ends with lines on the way, and with its application.
template <typename Application>
void leaveWithoutEnd(MapHost &)
{
    static const auto *const leaked = new TestApplication<Application>;
    static_cast<void>(leaked);
    Debug::initDebug();
    QCoreApplication::processEvents();
    print("one");
    print("other");
}

template <typename Application>
void forkWithWaitingLines(MapHost &)
{
    Debug::initDebug();
    const TestApplication<Application> application;
    const auto forkAndPrint = [](const char *text) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(20);
            print(text);
            _exit(0);
        }
        int status = -1;
        waitpid(child, &status, 0);
        say(status == 0 ? "child ended" : "child failed");
    };
    std::thread([&] { forkAndPrint("child before the first line"); }).join();
    Debug::initDebug();
    QCoreApplication::processEvents();
    print("waits in the parent");
    forkAndPrint("child of the main thread");
    std::thread([&] { forkAndPrint("child of a worker"); }).join();
    Debug::exitDebug();
}

template <typename Application>
void run(const char *mode, MapHost &host)
{
    const std::map<std::string, void (*)(MapHost &)> modes{
        {"throughout", printThroughout<Application>},
        {"stages", printInEveryStage<Application>},
        {"nowindow", printWithoutWindowOutput<Application, false>},
        {"fork", forkWithWaitingLines<Application>},
        {"nowindowatend", printWithoutWindowOutput<Application, true>},
        {"leak", leaveWithoutEnd<Application>}};
    modes.at(mode)(host);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    alarm(100); // ends by itself, whatever happens
    MapHost host;
    if (std::strcmp(argv[2], "core") == 0)
        run<QCoreApplication>(argv[1], host);
    else if (std::strcmp(argv[2], "gui") == 0)
        run<QGuiApplication>(argv[1], host);
    else
        run<QApplication>(argv[1], host);
    return 0;
}
