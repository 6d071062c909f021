// A million lines from four threads at once: how fast they reach a sink in the thread with the event loop,
// and how long they keep another thread from the module table; with the throttle and without.

#include "debugserverqueue/afterlines.h"
#include "guiloop.h"
#include "host.h"
#include "measure.h"
#include "platform/lock.h"
#include "table.h"

#include <QCoreApplication>

#include <chrono>
#include <thread>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int producers = 4;
constexpr long lines = 1'000'000;
constexpr int freeRounds = 3;
constexpr double waitLimit = 5; // ms
constexpr auto longestFlood = std::chrono::minutes(3);

struct Flood
{
    double linesPerSecond; ///< until the last one is in the sink
    long arrived;
    std::vector<double> tableWaits; ///< milliseconds
};

/// Asks for something that needs the module table now and then, and notes how long that took.
std::vector<double> visitTable(moduleId module, const std::atomic<bool> &ended)
{
    std::vector<double> waits;
    while (!ended.load()) {
        const auto start = Clock::now();
        Debug::getClippingLevel(module);
        waits.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return waits;
}

void printLines(moduleId module)
{
    const QString text = QStringLiteral("frequency set to 1000000000 Hz, level -10.50 dBm");
    std::vector<std::thread> threads;
    for (int producer = 0; producer < producers; ++producer) {
        threads.emplace_back([module, text] {
            for (long line = 0; line < lines / producers; ++line)
                Debug::println(module, enabledClass, text, infoLevel);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

Flood flood(moduleId module, moduleId visited)
{
    Flood result{};
    std::atomic<bool> ended{false};
    std::thread visitor([&] { result.tableWaits = visitTable(visited, ended); });
    const long before = standardOutput().lines();
    const auto start = Clock::now();
    printLines(module);
    while (standardOutput().lines() < before + lines && Clock::now() < start + longestFlood)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    result.linesPerSecond =
        static_cast<double>(lines) / std::chrono::duration<double>(Clock::now() - start).count();
    ended.store(true);
    visitor.join();
    settleLoop();
    result.arrived = standardOutput().lines() - before;
    return result;
}

/// The floods of one kind.
struct Floods
{
    std::vector<double> linesPerSecond;
    std::vector<double> tableWaits;
    long arrived = 0;

    void add(const Flood &flood)
    {
        linesPerSecond.push_back(flood.linesPerSecond);
        tableWaits.insert(tableWaits.end(), flood.tableWaits.begin(), flood.tableWaits.end());
        arrived += flood.arrived;
    }
};

void row(const std::string &what, double throttled, double free, int decimals,
         const std::string &verdict = {})
{
    say("| " + what + " | " + number(throttled, decimals) + " | " + number(free, decimals) + " | " + verdict
        + " |\n");
}

void print(const Floods &throttled, const Floods &free)
{
    say("\n### " + std::to_string(lines) + " lines from " + std::to_string(producers) + " threads\n\n");
    say("| | throttle | no throttle | |\n|---|--:|--:|---|\n");
    row("runs", static_cast<double>(throttled.linesPerSecond.size()),
        static_cast<double>(free.linesPerSecond.size()), 0);
    row("lines in the sink", static_cast<double>(throttled.arrived), static_cast<double>(free.arrived), 0);
    row("lines/s, median", median(throttled.linesPerSecond), median(free.linesPerSecond), 0);
    row("another thread takes the module table, times", static_cast<double>(throttled.tableWaits.size()),
        static_cast<double>(free.tableWaits.size()), 0);
    row("it waits, median, ms", median(throttled.tableWaits), median(free.tableWaits), 4);
    const double tail = percentile(throttled.tableWaits, 0.999);
    row("it waits, 99.9 %, ms", tail, percentile(free.tableWaits, 0.999), 3,
        "throttle < " + number(waitLimit, 0) + (tail < waitLimit ? " OK" : " ABOVE"));
    row("it waits, longest, ms", percentile(throttled.tableWaits, 1), percentile(free.tableWaits, 1), 3);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    standardOutput();
    startLibrary();
    setFlags("displayModuleName");
    const moduleId module = makeModule("Measured");
    const moduleId visited = makeModule("Visited");
    void *const loopThread = Zorvan::platform::currentThreadId();
    measureBesideLoop([&] {
        settleLoop(); // from now on the library knows the loop's thread
        Floods throttled;
        Floods free;
        Zorvan::afterlines::setLoopThread(nullptr);
        for (int round = 0; round < freeRounds; ++round)
            free.add(flood(module, visited));
        Zorvan::afterlines::setLoopThread(loopThread);
        throttled.add(flood(module, visited));
        print(throttled, free);
    });
    Debug::exitDebug();
}
