// What measuring a method costs, and how well the analyzer knows that cost. The analyzer reads its switch
// when the library is loaded: the program sets it and starts itself once more.

#include "table.h"

#include <zorvan/debug.h>
#include <zorvan/exports.h>

#include <atomic>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <mutex>
#include <unistd.h>
#include <x86intrin.h>

using namespace bench;

namespace {

constexpr unsigned firstId = 1000;
constexpr int nesting = 10;
constexpr double wantedTimes = 3;
constexpr double wantedNanoseconds = 3;
constexpr double wantedDeviation = 0.2;

class SpinLock
{
public:
    void lock()
    {
        while (m_held.exchange(true, std::memory_order_acquire))
            while (m_held.load(std::memory_order_relaxed))
                _mm_pause();
    }
    void unlock() { m_held.store(false, std::memory_order_release); }

private:
    std::atomic<bool> m_held{false};
};

struct Statistics
{
    unsigned long long start = 0;
    unsigned long long total = 0;
    int calls = 0;
};

/// The way that comes to mind first: the methods of each thread in maps, one lock for all of them.
class MapTiming
{
public:
    static void start(unsigned id)
    {
        const std::lock_guard<SpinLock> guard(s_lock);
        Statistics &method = s_threads[s_thread][id];
        ++method.calls;
        method.start = __rdtsc();
    }
    static void end(unsigned id)
    {
        const std::lock_guard<SpinLock> guard(s_lock);
        Statistics &method = s_threads[s_thread][id];
        method.total += __rdtsc() - method.start;
    }

private:
    static inline SpinLock s_lock;
    static inline std::map<int, std::map<unsigned, Statistics>> s_threads;
    static inline std::atomic<int> s_lastThread{0};
    static inline thread_local const int s_thread = ++s_lastThread;
};

void measuredPair(unsigned id)
{
    startMethod(id, "bench_timing.cpp", 1, "pair");
    endMethod(id);
}

/// Pairs inside \a levels - 1 open methods.
std::function<void(int)> pairsAtLevel(unsigned levels)
{
    return [levels](int calls) {
        for (unsigned level = 1; level < levels; ++level)
            startMethod(firstId + level, "bench_timing.cpp", 2, "open");
        for (int i = 0; i < calls; ++i)
            measuredPair(firstId);
        for (unsigned level = levels - 1; level > 0; --level)
            endMethod(firstId + level);
    };
}

void trackedScope()
{
    const methodTracker tracker("bench_timing.cpp", 3, "scope");
    benchmark::ClobberMemory();
}

constexpr Setup setup{2000, 101, false, false};

void tableOfPairs()
{
    const std::vector<Result> results =
        measure(setup,
                onThreads({1, 2},
                          {{"two readings of the counter", repeated([] {
                                benchmark::DoNotOptimize(__rdtsc());
                                benchmark::DoNotOptimize(__rdtsc());
                            })},
                           {"maps under a spin lock, a start and an end", repeated([] {
                                MapTiming::start(firstId);
                                MapTiming::end(firstId);
                            })},
                           {"startMethod(), endMethod()", pairsAtLevel(1)},
                           {"startMethod(), endMethod() at nesting 10", pairsAtLevel(nesting)},
                           {"methodTracker, measured", repeated(trackedScope)}}));
    const std::size_t half = results.size() / 2;
    Table table("Method timing, switched on", Table::Unit::Nanoseconds);
    table.row(results[0]);
    table.row(results[1], results[0]);
    for (std::size_t i = 2; i < half; ++i)
        table.row(results[i], results[1], wantedTimes);
    table.row(results[half + 1], results[1]);
    for (std::size_t i = 2; i < half; ++i)
        table.row(results[half + i], results[i], 1.2);
}

void tableOfSwitchedOff()
{
    const std::vector<Result> results =
        measure(setup,
                {{"an empty scope", repeated([] { benchmark::ClobberMemory(); })},
                 {"methodTracker, not measured", repeated(trackedScope)},
                 {"startMethod(), endMethod(), not measured", repeated([] { measuredPair(firstId); })}});
    Table table("Method timing, switched off", Table::Unit::Nanoseconds);
    for (const Result &result : results)
        table.row(result);
    const double more = results[1].figures.call - results[0].figures.call;
    table.note("A tracker costs " + number(more, 2) + " ns more than an empty scope; wanted: at most "
               + number(wantedNanoseconds, 0) + (more <= wantedNanoseconds ? ", met." : ", missed."));
}

/// Keeps what the report says about one method.
class ReportedCost : public Zorvan::IAnalysisOutputInterface
{
public:
    void textOutput(const char *, int, const char *) override {}
    void summary(int, qint64, qint64, qint64, quint64, quint64) override {}
    void tableRow(int, const char *, quint64, int calls, quint64, qint64, qint64 overheadCycles) override
    {
        m_cost = static_cast<double>(overheadCycles) / calls;
    }
    void tableComplete() override {}

    [[nodiscard]] double cost() const { return m_cost; }

private:
    double m_cost = 0;
};

/// The reported cost of a pair as a share of its true one.
double reportedShare(ReportedCost &report, const std::function<void()> &pair)
{
    constexpr int pairs = 20000;
    clearTimesInfo();
    pair();
    const unsigned long long start = __rdtsc();
    for (int i = 0; i < pairs; ++i)
        pair();
    const double trueCost = static_cast<double>(__rdtsc() - start) / pairs;
    dumpTimes(nullptr, nullptr);
    return report.cost() / trueCost;
}

void sayHowWellTheCostIsKnown(const char *name, const std::function<void()> &pair)
{
    constexpr int rounds = 51;
    ReportedCost report;
    installanalysisMessageHandler(&report);
    std::vector<double> shares;
    for (int round = 0; round < rounds; ++round)
        shares.push_back(reportedShare(report, pair));
    installanalysisMessageHandler(nullptr);
    const double share = median(shares);
    const bool isMet = share >= 1 - wantedDeviation && share <= 1 + wantedDeviation;
    say(std::string("\"meas error\" is ") + number(share, 2) + " times the true cost of " + name
        + "; wanted: within 20 %, " + (isMet ? "met.\n" : "missed.\n"));
}

} // namespace

int main(int, char **argv)
{
    if (analyzingToolsEnabled(-1) != 1) {
        analyzingToolsEnabled(1);
        execv("/proc/self/exe", argv);
        std::perror("execv");
        return 1;
    }
    tableOfSwitchedOff();
    setTimeTrackState(1);
    tableOfPairs();
    sayHowWellTheCostIsKnown("startMethod(), endMethod()", [] { measuredPair(firstId); });
    sayHowWellTheCostIsKnown("a methodTracker", trackedScope);
    return 0;
}
