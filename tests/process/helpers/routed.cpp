// A host that sends its operator new and delete through the tracked allocations, as hosts do that want to
// know all of their leaks. Its argument says what it does:
//   forks         forks with and without trace points, while another thread stores properties
//   nomemory      uses the analysis tools when operator new has no more memory to give

#include "support/forks.h"

#include <zorvan/debug.h>
#include <zorvan/exports.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

std::atomic<bool> s_isMemoryShort{false};

} // namespace

void *operator new(std::size_t size)
{
    static_cast<void>(Zorvan::getLowlevelIntegerProperty(0, 0)); // as hosts do that track only sometimes
    void *const block = s_isMemoryShort ? nullptr : xmalloc(size, "host.cpp", 1);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void operator delete(void *block) noexcept
{
    xfree(block, "host.cpp", 2);
}

void operator delete(void *block, std::size_t) noexcept
{
    xfree(block, "host.cpp", 3);
}

namespace {

class Counter : public Zorvan::IAnalysisOutputInterface
{
public:
    void textOutput(const char *, int, const char *text) override
    {
        std::strncpy(last, text, sizeof last - 1);
        ++texts;
    }
    void summary(int, qint64, qint64, qint64, quint64, quint64) override {}
    void tableRow(int, const char *, quint64, int, quint64, qint64, qint64) override {}
    void tableComplete() override {}

    int texts = 0;
    char last[600] = {};
};

Zorvan::test::ForksAmidWork s_forks;

int forkAndWork()
{
    const pid_t child = s_forks.fork();
    if (child == 0) {
        Zorvan::logHistory("child.cpp", 1, "in a child");
        const std::string text(100, 'x');
        _exit(text.size() == 100 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

void forkWhilePropertiesAreStored()
{
    int failures = forkAndWork() != 0 ? 1 : 0;
    std::atomic<bool> done{false};
    std::thread writer([&done] {
        for (int value = 0; !done; ++value)
            s_forks.turn([value] { Zorvan::setLowlevelIntegerProperty(7, value % 2); });
    });
    for (int i = 0; i < 20; ++i) {
        Zorvan::logHistory("host.cpp", 4, "fork %d", i);
        failures += forkAndWork() != 0 ? 1 : 0;
    }
    done = true;
    writer.join();
    std::printf("failures %d\n", failures);
}

void workWithoutMemory()
{
    static Counter counter;
    static char files[100][8];
    installanalysisMessageHandler(&counter);
    s_isMemoryShort = true;
    void *last = nullptr;
    for (char(&file)[8] : files) {
        std::strcpy(file, "f.cpp");
        const methodTracker tracker(file, 1, file);
        release(last);
        last = xmalloc(10, file, 2);
    }
    dumpLeaks(nullptr);
    dumpTimes(nullptr, nullptr);
    Zorvan::setLowlevelIntegerProperty(9, -1);
    Zorvan::setLowlevelIntegerProperty(9, 0);
    Zorvan::gyxLog("tag", nullptr, 0, "lost\n", nullptr);
    endMethod(12345);
    s_isMemoryShort = false;
    const int failures = forkAndWork();
    installanalysisMessageHandler(nullptr);
    release(last);
    std::printf("failures %d, %d texts, %s", failures, counter.texts > 106 ? 1 : 0, counter.last);
}

} // namespace

int main(int, char **argv)
{
    if (std::strcmp(argv[1], "forks") == 0)
        forkWhilePropertiesAreStored();
    else
        workWithoutMemory();
    return 0;
}
