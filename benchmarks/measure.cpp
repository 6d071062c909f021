#include "measure.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <fstream>
#include <sched.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int triesPerRound = 5;
constexpr double longestStartDelay = 0.1; // of the sample: threads that start apart do not meet

double nanoseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::nano>(duration).count();
}

/// How often the calling thread left its core.
struct CoreLosses
{
    long preempted; ///< the scheduler gave the core to another thread
    long slept; ///< the thread waited for a lock or a disk
};

CoreLosses coreLosses()
{
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return {usage.ru_nivcsw, usage.ru_nvcsw};
}

/// What one thread of a sample saw.
struct ThreadTimes
{
    Clock::time_point start;
    Clock::time_point end;
    int made = 0;
    bool preempted = false;
    bool slept = false;
    std::vector<double> calls;
};

struct Sample
{
    double call = 0;
    bool preempted = false; ///< or the threads did not start together
    bool slept = false;
    std::vector<double> calls;
};

int callsPerThread(const Setup &setup, const Subject &subject)
{
    return setup.shared ? setup.calls / subject.threads : setup.calls;
}

ThreadTimes timeCalls(const Setup &setup, const Subject &subject)
{
    const int calls = callsPerThread(setup, subject);
    ThreadTimes times;
    times.made = calls;
    times.calls.reserve(setup.eachCall ? static_cast<std::size_t>(calls) : 0);
    const CoreLosses before = coreLosses();
    times.start = Clock::now();
    if (setup.eachCall) {
        for (int i = 0; i < calls; ++i) {
            const Clock::time_point start = Clock::now();
            subject.body(1);
            times.calls.push_back(nanoseconds(Clock::now() - start));
        }
    } else {
        subject.body(calls);
    }
    times.end = Clock::now();
    const CoreLosses after = coreLosses();
    times.preempted = after.preempted != before.preempted;
    times.slept = after.slept != before.slept;
    return times;
}

Sample summary(const Setup &setup, const std::vector<ThreadTimes> &threads)
{
    Clock::time_point firstStart = threads.front().start;
    Clock::time_point lastStart = firstStart;
    Clock::time_point end = threads.front().end;
    double ownTimes = 0;
    Sample sample;
    for (const ThreadTimes &thread : threads) {
        ownTimes += nanoseconds(thread.end - thread.start) / thread.made;
        firstStart = std::min(firstStart, thread.start);
        lastStart = std::max(lastStart, thread.start);
        end = std::max(end, thread.end);
        sample.preempted = sample.preempted || thread.preempted;
        sample.slept = sample.slept || thread.slept;
        sample.calls.insert(sample.calls.end(), thread.calls.begin(), thread.calls.end());
    }
    const double whole = nanoseconds(end - firstStart);
    sample.call = setup.ownTime ? ownTimes / static_cast<double>(threads.size()) : whole / setup.calls;
    if (nanoseconds(lastStart - firstStart) > longestStartDelay * whole)
        sample.preempted = true;
    return sample;
}

/// Two threads are to run at the same time; left alone, the scheduler at times starts both on one core.
void stayOnCore(int core)
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(static_cast<std::size_t>(core), &cores);
    sched_setaffinity(0, sizeof cores, &cores);
}

Sample takeSample(const Setup &setup, const Subject &subject)
{
    const int company = subject.company ? 1 : 0;
    const int total = subject.threads + company;
    const bool coreForEach =
        total + (subject.consumed ? 1 : 0) <= static_cast<int>(std::thread::hardware_concurrency());
    std::atomic<int> missing{total};
    std::atomic<int> running{subject.threads};
    const auto meetOthers = [&missing] {
        missing.fetch_sub(1);
        while (missing.load() > 0)
            std::this_thread::yield();
    };
    std::vector<ThreadTimes> times(static_cast<std::size_t>(subject.threads));
    std::vector<std::thread> threads;
    for (int index = 0; index < subject.threads; ++index) {
        threads.emplace_back([&, index] {
            if (coreForEach && total > 1)
                stayOnCore(index);
            // Warms up the caches and what belongs to the thread.
            subject.body(callsPerThread(setup, subject) / 10 + 1);
            if (subject.settle)
                subject.settle();
            meetOthers();
            times[static_cast<std::size_t>(index)] = timeCalls(setup, subject);
            running.fetch_sub(1);
        });
    }
    if (subject.company) {
        threads.emplace_back([&] {
            if (coreForEach)
                stayOnCore(subject.threads);
            subject.company();
            meetOthers();
            while (running.load() > 0)
                subject.company();
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    Sample sample = summary(setup, times);
    if (!coreForEach)
        sample.preempted = sample.slept = false;
    return sample;
}

/// The samples of one subject.
class Samples
{
public:
    /// True if there is an undisturbed one.
    bool take(const Setup &setup, const Subject &subject)
    {
        ++m_tries;
        Sample sample = takeSample(setup, subject);
        const bool undisturbed = !sample.preempted && !sample.slept;
        if (!sample.preempted)
            (undisturbed ? m_undisturbed : m_withSleep).push_back(std::move(sample));
        return undisturbed;
    }

    [[nodiscard]] Result result(const Setup &setup, const Subject &subject) const
    {
        std::vector<Sample> all = m_undisturbed;
        all.insert(all.end(), m_withSleep.begin(), m_withSleep.end());
        const bool enough = 2 * m_undisturbed.size() >= static_cast<std::size_t>(setup.rounds);
        const std::vector<Sample> &kept = enough ? m_undisturbed : all;
        return {subject.name,
                subject.threads,
                figures(kept),
                figures(all),
                static_cast<int>(kept.size()),
                static_cast<int>(all.size() - m_undisturbed.size()),
                m_tries};
    }

private:
    static Figures figures(const std::vector<Sample> &samples)
    {
        std::vector<double> medians;
        std::vector<double> calls;
        for (const Sample &sample : samples) {
            medians.push_back(sample.call);
            calls.insert(calls.end(), sample.calls.begin(), sample.calls.end());
        }
        return {median(std::move(medians)), percentile(std::move(calls), 0.999)};
    }

    std::vector<Sample> m_undisturbed;
    std::vector<Sample> m_withSleep;
    int m_tries = 0;
};

} // namespace

std::vector<Subject> onThreads(const std::vector<int> &threads, const std::vector<Subject> &subjects)
{
    std::vector<Subject> all;
    for (const int count : threads) {
        for (Subject subject : subjects) {
            subject.threads = count;
            all.push_back(subject);
        }
    }
    return all;
}

double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

double residentBytes()
{
    double pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages; // the second of its numbers
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double median(std::vector<double> values)
{
    return percentile(std::move(values), 0.5);
}

double percentile(std::vector<double> values, double share)
{
    if (values.empty())
        return 0;
    const auto place = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(place), values.end());
    return values[place];
}

std::vector<Result> measure(const Setup &setup, const std::vector<Subject> &subjects)
{
    std::vector<Samples> samples(subjects.size());
    for (int round = 0; round < setup.rounds; ++round) {
        for (std::size_t i = 0; i < subjects.size(); ++i) {
            int tries = 1;
            while (!samples[i].take(setup, subjects[i]) && tries < triesPerRound)
                ++tries;
        }
    }
    std::vector<Result> results;
    for (std::size_t i = 0; i < subjects.size(); ++i)
        results.push_back(samples[i].result(setup, subjects[i]));
    return results;
}

} // namespace bench
