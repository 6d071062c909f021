// A host that uses the analysis tools as they are at its start. Its arguments are commands, carried out in
// turn:
//   state                      prints the switches, and whether a method gets an id
//   tools|startup|mem|time N   sets a switch, prints the answer
//   listen                     prints the texts of the tools from now on
//   work                       leaves a block of 16 bytes behind and measures a method
//   leaks | times              reports
//   forks                      uses the tools in children, while other threads use them in the parent
// With ANALYZER_STATICS in the environment a static object does so in its constructor and destructor, too.

#include "support/forks.h"

#include <zorvan/debug.h>
#include <zorvan/exports.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

class Printer : public Zorvan::IAnalysisOutputInterface
{
public:
    void textOutput(const char *source, int, const char *text) override
    {
        std::printf("[%s] %s", source != nullptr ? source : "-", text);
    }
    void summary(int records, qint64, qint64, qint64 calls, quint64, quint64) override
    {
        std::printf("summary %d %lld\n", records, static_cast<long long>(calls));
    }
    void tableRow(int row, const char *name, quint64, int calls, quint64, qint64, qint64) override
    {
        std::printf("row %d %s %d\n", row, name, calls);
    }
    void tableComplete() override { std::puts("complete"); }
};

/// Leaked for the analyzer only: leak checkers find the blocks here.
void *volatile s_leaked[4] = {};
std::atomic<unsigned> s_leaks{0};

void work()
{
    const methodTracker tracker("work.cpp", 10, "work");
    s_leaked[s_leaks++ % 4] = xmalloc(16, "work.cpp", 12);
    xfree(xmalloc(100, "work.cpp", 13), "work.cpp", 14);
}

int forkOftenFromAThreadWithoutMeasurements(Zorvan::test::ForksAmidWork &forks)
{
    int failures = 0;
    for (int i = 0; i < 30; ++i) {
        const pid_t child = forks.fork();
        if (child == 0) {
            work();
            dumpTimes("", "");
            dumpLeaks("");
            Zorvan::logHistory("child.cpp", 3, "in %s", "child");
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        failures += status != 0 ? 1 : 0;
    }
    return failures;
}

/// A clear of these takes a while.
void measureManyMethods()
{
    for (unsigned id = 1; id < 2000; ++id) {
        startMethod(id, "many.cpp", 1, "many");
        endMethod(id);
    }
}

void forkWhileOthersWork()
{
    std::atomic<bool> done{false};
    Zorvan::test::ForksAmidWork forks;
    std::vector<std::thread> workers;
    workers.reserve(3);
    for (int i = 0; i < 2; ++i) {
        workers.emplace_back([&] {
            while (!done) {
                forks.turn([] {
                    const methodTracker tracker("thread.cpp", 1, "thread");
                    release(alloc(32, "thread.cpp", 2, false, false));
                    Zorvan::logHistory("thread.cpp", 3, "in %s", "thread");
                });
            }
        });
    }
    workers.emplace_back([&] { // threads that end, and leave their records to others
        while (!done) {
            forks.turn([] {
                std::thread(measureManyMethods).join();
                clearTimesInfo();
            });
        }
    });
    int failures = 0;
    std::thread([&] { failures = forkOftenFromAThreadWithoutMeasurements(forks); }).join();
    done = true;
    for (std::thread &worker : workers)
        worker.join();
    std::printf("failures %d\n", failures);
}

struct Witness
{
    Witness() { use(); }
    ~Witness() { use(); }
    static void use()
    {
        if (std::getenv("ANALYZER_STATICS") == nullptr)
            return;
        work();
        dumpTimes(nullptr, nullptr);
        dumpLeaks(nullptr);
        std::printf("static %d\n", getTrackedMemUsage() > 0);
    }
};

const Witness s_witness;

int set(const char *name, int state)
{
    if (std::strcmp(name, "tools") == 0)
        return analyzingToolsEnabled(state);
    if (std::strcmp(name, "startup") == 0)
        return analyzingToolsOnStartup(state);
    if (std::strcmp(name, "mem") == 0)
        return memTrackingEnabled(state);
    return timeTrackingEnabled(state);
}

void run(const char *command, Printer &printer)
{
    if (std::strcmp(command, "state") == 0)
        std::printf("tools %d startup %d mem %d time %d id %s\n", analyzingToolsEnabled(-1),
                    analyzingToolsOnStartup(-1), getMemTrackState(), getTimeTrackState(),
                    make_id("state.cpp", 7) < 0 ? "none" : "given");
    else if (std::strcmp(command, "listen") == 0)
        installanalysisMessageHandler(&printer);
    else if (std::strcmp(command, "work") == 0)
        work();
    else if (std::strcmp(command, "leaks") == 0)
        dumpLeaks("");
    else if (std::strcmp(command, "times") == 0)
        dumpTimes("", "");
    else if (std::strcmp(command, "forks") == 0)
        forkWhileOthersWork();
}

} // namespace

int main(int argc, char **argv)
{
    Printer printer;
    for (int i = 1; i < argc; ++i) {
        if (i + 1 < argc && std::strchr("-0123456789", argv[i + 1][0]) != nullptr) {
            std::printf("%s %d\n", argv[i], set(argv[i], std::atoi(argv[i + 1])));
            ++i;
        } else {
            run(argv[i], printer);
        }
    }
    installanalysisMessageHandler(nullptr);
    return 0;
}
