#include "waits.h"

#include <chrono>

namespace bench {

std::vector<WaitTimes> timeWaits(int rounds, const std::vector<Wait> &waits)
{
    std::vector<WaitTimes> all;
    for (const Wait &wait : waits)
        all.push_back({wait.name, {}});
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < waits.size(); ++i) {
            waits[i].settle();
            const auto start = std::chrono::steady_clock::now();
            waits[i].once();
            const auto end = std::chrono::steady_clock::now();
            all[i].times.push_back(std::chrono::duration<double, std::nano>(end - start).count());
        }
    }
    return all;
}

std::vector<Result> measureProcessorTime(int rounds, const std::vector<Subject> &subjects)
{
    std::vector<WaitTimes> times;
    for (const Subject &subject : subjects)
        times.push_back({subject.name, {}});
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < subjects.size(); ++i) {
            const double start = processorTime();
            subjects[i].body(1);
            times[i].times.push_back(processorTime() - start);
        }
    }
    std::vector<Result> results;
    for (const WaitTimes &subject : times)
        results.push_back(resultAt(subject, 0.5));
    return results;
}

Result resultAt(const WaitTimes &times, double share, const std::string &nameSuffix)
{
    Result result;
    result.name = times.name + nameSuffix;
    result.figures.call = percentile(times.times, share);
    result.kept = result.tries = static_cast<int>(times.times.size());
    return result;
}

} // namespace bench
