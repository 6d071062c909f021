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

Result resultAt(const WaitTimes &times, double share, const std::string &nameSuffix)
{
    Result result;
    result.name = times.name + nameSuffix;
    result.figures.call = percentile(times.times, share);
    result.kept = result.tries = static_cast<int>(times.times.size());
    return result;
}

} // namespace bench
