#include "leakanalyzer/methodtiming.h"

namespace Zorvan::analysis {

namespace detail {
std::atomic<unsigned> s_timeTracking{0};
} // namespace detail

int makeMethodId(const char *, int)
{
    return -1;
}
void startMethod(unsigned, const char *, int, const char *) {}
void endMethod(unsigned) {}
void setTimeTracking(int) {}
int timeTracking()
{
    return 0;
}
int timeTrackingEnabled(int)
{
    return 0;
}
void clearTimes() {}
void dumpTimes(const char *, const char *) {}
void reportMethods(IAnalysisSummaryInterface *) {}
void prepareTiming() {}
void forgetOtherThreadsLocks() {}

} // namespace Zorvan::analysis
