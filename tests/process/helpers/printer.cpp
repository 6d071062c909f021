// A host that prints as its first argument says. Output lines go to the file and to standard output.

#include "support/crew.h"
#include "support/forks.h"

#include <zorvan/debug.h>

#include <QByteArray>

#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using Zorvan::Debug;

namespace {

void print(const QString &text)
{
    Debug::println(2, 0, text, 0);
}

void printNumbered(const QString &name, int count)
{
    for (int number = 0; number < count; ++number)
        print(QStringLiteral("%1 %2").arg(name).arg(number));
}

/// Prints one line, waits for a line on standard input, prints the rest.
void printWhenTold(const char *name, int count)
{
    print(QStringLiteral("ready"));
    std::string go;
    std::getline(std::cin, go);
    printNumbered(QString::fromLatin1(name), count);
}

/// Forks again and again while other threads print and log; each child prints and logs one line.
void printFromForks(int count)
{
    print(QStringLiteral("parent")); // begins the run: a child would begin it once more
    std::atomic<bool> done{false};
    Zorvan::test::ForksAmidWork forks;
    const Zorvan::test::Crew printers(3, [&](int) {
        while (!done) {
            forks.turn([] {
                print(QStringLiteral("parent"));
                Zorvan::gyxLog(nullptr, 0, "parent %d\n", 1);
            });
        }
    });
    for (int i = 0; i < count; ++i) {
        const pid_t child = forks.fork();
        if (child == 0) {
            print(QStringLiteral("child %1").arg(i));
            Zorvan::gyxLog(nullptr, 0, "child %d\n", i);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
    }
    done = true;
}

/// Prints while static objects are built and destroyed, before anything else of the library was called.
class PrintingStatic
{
public:
    PrintingStatic() { Debug::println(2, 0, QStringLiteral("static constructor"), 0); }
    ~PrintingStatic()
    {
        Debug::println(2, 0, QStringLiteral("static destructor"), 0);
        qWarning("Qt after main");
    }
};

const PrintingStatic s_static;

/// Still up when the process ends: nobody called exitDebug().
void leaveRunning()
{
    Debug::initDebug();
    print(QStringLiteral("last words"));
}

} // namespace

int main(int argc, char **argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "statics") {
        leaveRunning();
        return 0;
    }
    Debug::initDebug();
    Debug::setDisplayFlags(-1);
    if (mode == "endless") {
        for (int number = 0;; ++number)
            print(QString::number(number));
    }
    if (mode == "told")
        printWhenTold(argv[2], std::atoi(argv[3]));
    if (mode == "forks")
        printFromForks(std::atoi(argv[2]));
    if (mode == "closedpipe") {
        close(STDOUT_FILENO);
        printNumbered(QStringLiteral("closed"), 3);
    }
    Debug::exitDebug();
    return 0;
}
