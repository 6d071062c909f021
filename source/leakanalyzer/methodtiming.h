#pragma once

#include <zorvan/debug.h>

/// Method timing: calls and processor cycles of instrumented methods, per method and thread. Any thread.
///
/// What the analyzer itself allocates is not measured, should the host have instrumented its operator new.
namespace Zorvan::analysis {

/// Whether methods are measured at the moment. Never without a running analyzer.
[[nodiscard]] inline bool isTimeTracked()
{
    return Zorvan::detail::timeTracking.load(std::memory_order_relaxed) == 1;
}

/// The id of a method: its line + 65,536 times the number of its file, which counts files in the order of
/// their first use. -1 while methods are not measured.
int makeMethodId(const char *file, int line);
void startMethod(unsigned id, const char *file, int line, const char *methodName);
void endMethod(unsigned id);

/// Switches measuring on (any value but 0) or off. The value 1 calibrates when it comes first, and
/// forgets what was measured before; not before the end of the reports and clears in progress. Nothing
/// happens without a running analyzer.
void setTimeTracking(int state);
/// Whether measuring is switched on.
[[nodiscard]] int timeTracking();
/// Sets a state of 0 or more, stored as a property as well; returns the switch.
int timeTrackingEnabled(int state);

/// While one lives, methods are not measured; the switch stays as it is.
class SuspendedTiming
{
public:
    SuspendedTiming();
    ~SuspendedTiming();
    SuspendedTiming(const SuspendedTiming &) = delete;
    SuspendedTiming &operator=(const SuspendedTiming &) = delete;
};

/// Forgets all measurements. Methods that are open at that time end as unknown ones.
void clearTimes();
/// Hands the measurements to the output handler; null or empty filters let everything pass.
void dumpTimes(const char *sourceFilter, const char *methodFilter);
/// Tells the receiver every method of every thread, by the thread's number and the id. Nothing is locked
/// then.
void reportMethods(IAnalysisSummaryInterface *receiver);

/// For the start of the analyzer.
void prepareTiming();
/// For the child of a fork(): the locks of threads that are not there any more.
void forgetOtherThreadsLocks();

} // namespace Zorvan::analysis
