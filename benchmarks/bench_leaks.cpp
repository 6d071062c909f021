// What leak tracking costs an allocation and its release, switched off and on. The analyzer reads its
// switches when the library is loaded: the program starts itself once for each state. "compare": only the
// rows of the comparison with heaptrack.

#include "table.h"
#include "wholeprocess.h"

#include <zorvan/analysis.h>
#include <zorvan/debug.h>
#include <zorvan/exports.h>

#include <array>
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

using namespace bench;

namespace {

constexpr std::size_t blockBytes = 64;
constexpr double timesWanted = 6;
constexpr double timesWantedOnTwo = 12;

struct Plain
{
    static void *allocate(std::size_t size) { return std::malloc(size); }
    static void release(void *block) { std::free(block); }
};

struct Tracked
{
    static void *allocate(std::size_t size) { return xmalloc(size, "bench_leaks.cpp", 1); }
    static void release(void *block) { xfree(block, "bench_leaks.cpp", 2); }
};

class SpinLock
{
public:
    void lock()
    {
        while (m_held.exchange(true, std::memory_order_acquire))
            while (m_held.load(std::memory_order_relaxed))
                __builtin_ia32_pause();
    }
    void unlock() { m_held.store(false, std::memory_order_release); }

private:
    std::atomic<bool> m_held{false};
};

struct Record
{
    const char *file;
    int line;
    std::size_t size;
};

/// The way that comes to mind first.
class MapTracker
{
public:
    static void *allocate(std::size_t size)
    {
        void *const block = std::malloc(size);
        const std::lock_guard<SpinLock> guard(s_lock);
        s_blocks[block] = {"bench_leaks.cpp", 3, size};
        s_bytes += size;
        return block;
    }
    static void release(void *block)
    {
        {
            const std::lock_guard<SpinLock> guard(s_lock);
            const auto found = s_blocks.find(block);
            if (found != s_blocks.end()) {
                s_bytes -= found->second.size;
                s_blocks.erase(found);
            }
        }
        std::free(block);
    }

private:
    static inline SpinLock s_lock;
    static inline std::map<void *, Record> s_blocks;
    static inline std::size_t s_bytes = 0;
};

constexpr std::size_t shardPlaces = 65'536;

struct ShardEntry
{
    void *block;
    Record record;
};

struct alignas(64) Shard
{
    SpinLock lock;
    std::size_t bytes = 0;
    std::unique_ptr<ShardEntry[]> table = std::make_unique<ShardEntry[]>(shardPlaces);
};

std::array<Shard, 64> s_shards;

/// The quick way, without counters for all shards: no peaks, no averages.
class ShardTracker
{
public:
    static void *allocate(std::size_t size)
    {
        void *const block = std::malloc(size);
        Shard &shard = shardOf(block);
        const std::lock_guard<SpinLock> guard(shard.lock);
        std::size_t place = hash(block) & (shardPlaces - 1);
        while (shard.table[place].block != nullptr && shard.table[place].block != removed())
            place = (place + 1) & (shardPlaces - 1);
        shard.table[place] = {block, {"bench_leaks.cpp", 4, size}};
        shard.bytes += size;
        return block;
    }
    static void release(void *block)
    {
        Shard &shard = shardOf(block);
        {
            const std::lock_guard<SpinLock> guard(shard.lock);
            std::size_t place = hash(block) & (shardPlaces - 1);
            while (shard.table[place].block != block)
                place = (place + 1) & (shardPlaces - 1);
            shard.table[place].block = removed();
            shard.bytes -= shard.table[place].record.size;
        }
        std::free(block);
    }

private:
    static void *removed() { return &s_shards; }
    static std::size_t hash(const void *block)
    {
        return (reinterpret_cast<std::uintptr_t>(block) >> 4) * 0x9E3779B97F4A7C15 >> 32;
    }
    static Shard &shardOf(const void *block) { return s_shards[hash(block) >> 26]; }
};

/// Live blocks of one thread.
template <typename Allocator>
class Blocks
{
public:
    explicit Blocks(std::size_t count)
        : m_blocks(count)
    {
        for (void *&block : m_blocks)
            block = Allocator::allocate(blockBytes);
    }

    /// Allocates a block and gives it back.
    void pair()
    {
        void *block = Allocator::allocate(blockBytes);
        benchmark::DoNotOptimize(block);
        Allocator::release(block);
    }
    /// Gives any of the blocks back and allocates another in its place.
    void replace()
    {
        m_random = m_random * 6364136223846793005 + 1442695040888963407;
        void *&block = m_blocks[(m_random >> 33) % m_blocks.size()];
        Allocator::release(block);
        block = Allocator::allocate(blockBytes);
    }

private:
    std::vector<void *> m_blocks; // until the end of the process
    std::uint64_t m_random = 1;
};

/// The blocks of two threads; each call borrows those of one.
template <typename Allocator>
class Pools
{
public:
    explicit Pools(std::size_t live)
        : m_pools{new Blocks<Allocator>(live / 2), new Blocks<Allocator>(live / 2)}
    {}

    void run(int calls, void (Blocks<Allocator>::*step)())
    {
        Blocks<Allocator> *blocks = nullptr;
        std::size_t place = 0;
        while ((blocks = m_pools[place].exchange(nullptr)) == nullptr)
            place = 1 - place;
        if (step == &Blocks<Allocator>::pair) {
            for (int i = 0; i < calls; ++i)
                blocks->pair();
        } else {
            for (int i = 0; i < calls; ++i)
                blocks->replace();
        }
        m_pools[place].store(blocks);
    }

private:
    std::array<std::atomic<Blocks<Allocator> *>, 2> m_pools;
};

enum class Step {
    Pair,
    Replace,
};

template <typename Allocator>
Subject subject(const char *name, Step step, std::size_t live)
{
    return {name, [step, pools = std::make_shared<Pools<Allocator>>(live)](int calls) {
                pools->run(calls,
                           step == Step::Pair ? &Blocks<Allocator>::pair : &Blocks<Allocator>::replace);
            }};
}

constexpr Setup setup{5000, 200, false, false};

void measureUntracked(const char *title)
{
    const std::vector<Result> results =
        measure(setup,
                onThreads({1, 2},
                          {subject<Plain>("malloc/free", Step::Pair, 1000),
                           subject<Tracked>("xmalloc/xfree", Step::Pair, 1000)}));
    Table table(title, Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < results.size(); i += 2) {
        table.row(results[i]);
        table.row(results[i + 1], results[i], 1.1 + 2 / results[i].figures.call);
    }
}

std::vector<Result> measureTracked(const char *title, Step step, std::size_t live)
{
    const std::vector<Result> results =
        measure(setup,
                onThreads({1, 2},
                          {subject<Plain>("malloc/free", step, live),
                           subject<MapTracker>("std::map, spin lock", step, live),
                           subject<ShardTracker>("64 shards", step, live),
                           subject<Tracked>("xmalloc/xfree, tracked", step, live)}));
    Table table(title, Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < results.size(); i += 4) {
        table.row(results[i]);
        table.row(results[i + 1], results[i]);
        table.row(results[i + 2], results[i]);
        table.row(results[i + 3], results[i], i == 0 ? timesWanted : timesWantedOnTwo);
        table.row(results[i + 3], results[i + 1], 1);
        table.row(results[i + 3], results[i + 2]);
    }
    table.note("Wanted: 100 ns on one thread, 200 ns on two, where malloc/free takes 16 ns; that is "
               + number(timesWanted, 0) + " and " + number(timesWantedOnTwo, 0) + " times malloc/free.");
    return results;
}

/// How each of them gets slower with more blocks: the processor's caches alone do that to malloc/free.
void compareSizes(const char *title, const std::vector<Result> &few, const std::vector<Result> &many)
{
    Table table(title, Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < few.size(); i += 4) {
        table.row(many[i], few[i]);
        table.row(many[i + 1], few[i + 1]);
        table.row(many[i + 2], few[i + 2]);
        table.row(many[i + 3], few[i + 3], 3);
    }
}

void measureSizes()
{
    const std::vector<Result> pairFew = measureTracked("A tracked pair, 1,000 live blocks", Step::Pair, 1000);
    const std::vector<Result> pairMany =
        measureTracked("A tracked pair, 1,000,000 live blocks", Step::Pair, 1'000'000);
    const std::vector<Result> replaceFew =
        measureTracked("A random one of 1,000 live blocks replaced", Step::Replace, 1000);
    const std::vector<Result> replaceMany =
        measureTracked("A random one of 1,000,000 live blocks replaced", Step::Replace, 1'000'000);
    compareSizes("A pair with 1,000,000 live blocks against 1,000", pairFew, pairMany);
    compareSizes("A random one of 1,000,000 live blocks replaced against 1,000", replaceFew, replaceMany);
}

template <typename Allocator>
void runPairs()
{
    Blocks<Allocator> blocks(1000);
    for (int i = 0; i < wholeProcessPairs; ++i)
        blocks.replace();
}

/// Whether the analyzer does what the figures are said to be about.
bool isInState(const std::string &mode)
{
    const bool tracks = getMemTrackState() == 1;
    if (mode == "plain")
        return true;
    if (mode == "tracked" || mode == "pairs")
        return tracks && getTimeTrackState() == 0;
    setMemTrackState(1); // of no effect unless the analyzer runs
    const bool runs = getMemTrackState() == 1;
    setMemTrackState(0);
    return !tracks && runs == (mode == "idle") && getTimeTrackState() == 0;
}

int run(const std::string &mode)
{
    if (!isInState(mode)) {
        std::fprintf(stderr, "The analyzer is not in the state that \"%s\" needs.\n", mode.c_str());
        return 1;
    }
    if (mode == "off")
        measureUntracked("Analyzer not running");
    else if (mode == "idle")
        measureUntracked("Analyzer running, tracking off");
    else if (mode == "tracked")
        measureSizes();
    else if (mode == "pairs")
        runPairs<Tracked>();
    else
        runPairs<Plain>();
    return 0;
}

void setAnalyzer(int running, int tracking)
{
    Zorvan::setLowlevelIntegerProperty(0, running);
    Zorvan::setLowlevelIntegerProperty(1, tracking);
    Zorvan::setLowlevelIntegerProperty(5, 0); // methods are not timed
}

} // namespace

int main(int count, char *arguments[])
{
    const std::string mode = count > 1 ? arguments[1] : "";
    if (count > 1 && mode != "compare")
        return run(mode);
    if (std::getenv("ZORVAN_PROGRAMDATA") == nullptr) {
        std::fputs("Set ZORVAN_PROGRAMDATA to a folder for the properties, or use benchmarks/run.\n", stderr);
        return 2;
    }
    const std::string self = arguments[0];
    if (mode == "compare") {
        setAnalyzer(1, 1);
        const bool succeeded = compareWithHeaptrack(self);
        setAnalyzer(0, 0);
        return succeeded ? 0 : 1;
    }
    const auto start = [&self](const char *state) {
        return std::system(("'" + self + "' " + state).c_str());
    };
    setAnalyzer(0, 0);
    int failed = start("off");
    setAnalyzer(1, 0);
    failed += start("idle");
    setAnalyzer(1, 1);
    failed += start("tracked");
    failed += compareProcesses(self) ? 0 : 1;
    setAnalyzer(0, 0);
    return failed == 0 ? 0 : 1;
}
