#include "leakanalyzer/brieflock.h"

#include "platform/clock.h"
#include "platform/processor.h"

#include <algorithm>

namespace Zorvan::analysis {

namespace {

constexpr int triesBeforeSleep = 100;
constexpr int longestPause = 64; // calls of spinPause(): the other thread gets several turns meanwhile

} // namespace

void BriefLock::wait()
{
    int pauses = 1;
    for (int attempt = 0; !tryLock(); ++attempt) {
        if (attempt >= triesBeforeSleep)
            platform::sleepFor(std::chrono::milliseconds(1));
        for (int i = 0; i < pauses; ++i)
            platform::spinPause();
        pauses = std::min(2 * pauses, longestPause);
    }
}

} // namespace Zorvan::analysis
