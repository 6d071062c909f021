/// A host that gets the library by dlopen() while eight threads print, again and again, and gives it back:
///   soak_loaded LIBRARY SECONDS
/// Each line is on the standard output, or in the system log while the library is stopped.

#include "line.h"
#include "supervisor.h"
#include "support/programdata.h"

#include <QString>

#include <dlfcn.h>
#include <filesystem>
#include <thread>
#include <unistd.h>

namespace {

using namespace Zorvan;
using namespace Zorvan::soak;
using namespace std::chrono_literals;

constexpr std::size_t producers = 8;
constexpr std::size_t linesPerThread = 200;

using Call = void (*)();
using Println = void (*)(qint32, int, const QString &, int, int, const char *, int);

/// All lines of each thread are at one of two places, in their order.
void check()
{
    const std::string log = test::libraryFile("GYX-syslog-0.log");
    int times[producers][linesPerThread] = {};
    for (const std::string &path : {ownFolder() + "/stdout", log}) {
        Stream stream;
        stream.takeText(test::readFile(path));
        count("!torn", stream.torn + stream.glued);
        std::size_t next[producers] = {};
        for (const LineId id : stream.lines) {
            ++times[id.thread][id.number];
            count("!reordered", id.number < next[id.thread] ? 1 : 0);
            next[id.thread] = id.number + 1;
        }
    }
    for (const auto &ofThread : times) {
        for (const int ofLine : ofThread)
            count(ofLine == 1       ? "once on the standard output or in the log"
                      : ofLine == 0 ? "!lost"
                                    : "!doubled");
    }
    std::filesystem::remove(log);
    if (ftruncate(STDOUT_FILENO, 0) != 0)
        count("!no standard output");
}

void printAll(Println println, std::size_t thread)
{
    for (std::size_t number = 0; number < linesPerThread; ++number) {
        println(2, 0, QString::fromStdString(textOf({thread, number, Tail::Kept})), 0, 0, nullptr, 0);
        beat(thread);
        if (number % 8 == 0)
            std::this_thread::sleep_for(1ms);
    }
    rest(thread);
}

void playRound(const char *path)
{
    void *const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        count("!not loaded");
        return;
    }
    const auto function = [library](const char *name) { return dlsym(library, name); };
    const auto println = reinterpret_cast<Println>(function("_ZN6Zorvan5Debug7printlnEiiRK7QStringiiPKci"));
    const auto init = reinterpret_cast<Call>(function("_ZN6Zorvan5Debug9initDebugEv"));
    const auto exit = reinterpret_cast<Call>(function("_ZN6Zorvan5Debug9exitDebugEv"));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < producers; ++i)
        threads.emplace_back(printAll, println, i);
    for (int i = 0; i < 6; ++i) {
        init();
        std::this_thread::sleep_for(4ms);
        exit();
    }
    for (std::thread &thread : threads)
        thread.join();
    dlclose(library);
    check();
    count("rounds");
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount != 3)
        return 2;
    return supervise(arguments, 20s, [&] {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::stoi(arguments[2]));
        while (std::chrono::steady_clock::now() < end)
            playRound(arguments[1]);
    });
}
