// What a trace point costs, beside what one would write by hand.

#include "lowlevelfunctions/tracehistory.h"
#include "platform/clock.h"
#include "platform/lock.h"
#include "platform/processor.h"
#include "table.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>

using namespace bench;
using Zorvan::platform::kernelThreadId;

namespace {

constexpr std::size_t historySize = 10'240;
constexpr const char *format = "synthesizer set: frequency %d Hz, level %s dBm";

/// A ring of bytes behind a lock that spins.
class Ring
{
public:
    void append(const char *text, std::size_t length)
    {
        lock();
        store(text, length);
        unlock();
    }
    void lock()
    {
        while (m_taken.load(std::memory_order_relaxed) || m_taken.exchange(true, std::memory_order_acquire))
            Zorvan::platform::spinPause();
    }
    void unlock() { m_taken.store(false, std::memory_order_release); }
    void store(const char *text, std::size_t length)
    {
        const std::size_t first = std::min(length, historySize - m_end);
        std::memcpy(m_bytes + m_end, text, first);
        std::memcpy(m_bytes, text + first, length - first);
        m_end = (m_end + length) % historySize;
    }

private:
    std::atomic<bool> m_taken{false};
    std::size_t m_end = 0;
    char m_bytes[historySize]{};
};

Ring s_ring;

void formatDate(char *text, std::size_t size, std::time_t second)
{
    std::tm local{};
    localtime_r(&second, &local);
    std::strftime(text, size, "%Y/%m/%d-%H:%M:%S", &local);
}

int formatLine(char *line, std::size_t size, const char *date, long nanoseconds)
{
    return std::snprintf(line, size, "%08lx - %s.%03d - synthesizer set: frequency %d Hz, level %s dBm\n",
                         static_cast<unsigned long>(kernelThreadId()), date,
                         static_cast<int>(nanoseconds / 1'000'000), 1000000000, "-10.50");
}

/// The date once a second for each thread, and everything but the copy outside the lock.
void noteFast()
{
    thread_local std::time_t second = 0;
    thread_local char date[32];
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_sec != second) {
        formatDate(date, sizeof date, now.tv_sec);
        second = now.tv_sec;
    }
    char line[256];
    s_ring.append(line, static_cast<std::size_t>(formatLine(line, sizeof line, date, now.tv_nsec)));
}

/// Everything inside the lock.
void notePlainly()
{
    s_ring.lock();
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    char date[32];
    formatDate(date, sizeof date, now.tv_sec);
    char line[256];
    s_ring.store(line, static_cast<std::size_t>(formatLine(line, sizeof line, date, now.tv_nsec)));
    s_ring.unlock();
}

void noteInHistory()
{
    Zorvan::logHistory(nullptr, 0, format, 1000000000, "-10.50");
}

std::unique_ptr<Zorvan::TraceHistory> s_fresh = std::make_unique<Zorvan::TraceHistory>();

void noteInFresh(const char *text, ...)
{
    va_list arguments;
    va_start(arguments, text);
    s_fresh->note(nullptr, 0, text, &arguments);
    va_end(arguments);
}

constexpr double longestCall = 1e6; // ns: nobody sleeps, who would do so for a millisecond

/// Over all samples that were not preempted: a call that sleeps is just what is looked for.
Result sleepIncluded(Result result)
{
    result.name += ", sleep included";
    result.figures = result.withSleep;
    return result;
}

void compare(const char *title, const Setup &setup, const std::vector<Subject> &subjects)
{
    const std::vector<Result> results = measure(setup, subjects);
    Table table(title, Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i + 2 < results.size(); i += 3) {
        table.row(results[i]);
        table.row(results[i + 1], results[i]);
        table.row(results[i + 2], results[i], 1.1);
        if (setup.eachCall)
            table.percentileRow(sleepIncluded(results[i + 2]), longestCall);
    }
}

} // namespace

int main()
{
    const Subject fast{"clock cached per second, formatting outside the lock", repeated(noteFast)};
    const Subject plain{"strftime, snprintf inside the lock", repeated(notePlainly)};
    const Subject history{"logHistory()", repeated(noteInHistory)};
    const Subject fresh{"logHistory(), area empty at first",
                        repeated([] { noteInFresh(format, 1000000000, "-10.50"); })};

    Subject emptied = fresh;
    emptied.settle = [] { s_fresh = std::make_unique<Zorvan::TraceHistory>(); };
    constexpr int linesThatFit = 100;
    compare("Trace points, empty area", {linesThatFit, 400, true, false}, {fast, plain, emptied});
    compare("Trace points, full area", {4000, 100, true, false}, onThreads({1, 2}, {fast, plain, history}));
    compare("Trace points, single calls", {1000, 200, true, true}, onThreads({1, 2}, {fast, plain, history}));
}
