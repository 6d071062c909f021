#pragma once

/// Samples and medians.
///
/// A sample is a number of calls on one or more threads at once. It is undisturbed if no timed thread left
/// its core meanwhile and all of them started together; otherwise it is repeated a few times. The subjects of
/// one measurement take turns, so that a drift of the machine hits all of them alike.

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Subject
{
    std::string name;
    std::function<void(int calls)> body;
    int threads = 1;
    std::function<void()> company = {}; ///< another thread calls it without end while the sample runs
    std::function<void()> settle = {}; ///< each thread calls it between warming up and the sample
    bool consumed = false; ///< another thread of the program takes what is handed over: it wants a core, too
};

/// The body of a subject: \a call again and again, inlined.
template <typename Call>
std::function<void(int)> repeated(Call call)
{
    return [call](int calls) mutable {
        for (int i = 0; i < calls; ++i)
            call();
    };
}

/// The subject once for each number of threads.
std::vector<Subject> onThreads(const std::vector<int> &threads, const std::vector<Subject> &subjects);

struct Setup
{
    int calls; ///< in a sample, by each thread, or by all together if they share
    int rounds; ///< samples of each subject
    bool shared; ///< the threads take turns at one thing, and what counts is how fast it gets done
    bool eachCall; ///< also time single calls, which adds two readings of the clock to each
    bool ownTime = false; ///< what counts is how long its own calls held up each thread, on the average
};

/// Figures over a set of samples, in nanoseconds.
struct Figures
{
    double call = 0; ///< median
    double percentile999 = 0; ///< of single calls; 0 if they were not timed
};

struct Result
{
    std::string name;
    int threads = 1;
    Figures figures;
    Figures withSleep; ///< also over the samples in which a thread slept, but none was preempted
    int kept = 0; ///< samples behind figures
    int slept = 0; ///< further samples behind withSleep
    int tries = 0;
};

/// One result for each subject, in their order.
///
/// Where fewer than half of the rounds have an undisturbed sample, because the subject's lock puts its
/// waiters to sleep, those with sleep are kept as well. Samples with more threads than cores are all kept:
/// there the scheduler has to take cores away.
std::vector<Result> measure(const Setup &setup, const std::vector<Subject> &subjects);

/// Nanoseconds of a core that the calling thread has had.
double processorTime();

/// Memory of the process that is resident.
double residentBytes();

double median(std::vector<double> values);
/// The value that \a share of all values do not exceed; 0 if there is none.
double percentile(std::vector<double> values, double share);

} // namespace bench
