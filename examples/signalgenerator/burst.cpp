#include "burst.h"

#include "print.h"
#include "threadnames.h"

#include <chrono>
#include <thread>
#include <vector>

namespace SignalGenerator {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int threadCount = 4;
constexpr int linesBetweenLooks = 50; // at the clock
constexpr Zorvan::moduleId modules[threadCount] = {Module::Kernel, Module::Scpi, Module::Sweep,
                                                   Module::BaseBoard};
constexpr int levels[] = {Level::Error, Level::Warning, Level::Info};

void printPart(int thread, int lines, int linesPerSecond)
{
    setThreadName("burst");
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < lines; ++i) {
        print(modules[thread], levels[i % 3], "burst line %d of thread %d", i, thread);
        if (linesPerSecond > 0 && i % linesBetweenLooks == 0)
            std::this_thread::sleep_until(
                start
                + std::chrono::duration_cast<Clock::duration>(
                    std::chrono::duration<double>(static_cast<double>(i) * threadCount / linesPerSecond)));
    }
}

} // namespace

void printBurst(int lines, int linesPerSecond)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        const int part = (lines + thread) / threadCount; // their sum is lines
        threads.emplace_back(printPart, thread, part, linesPerSecond);
    }
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace SignalGenerator
