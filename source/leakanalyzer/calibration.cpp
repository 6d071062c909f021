#include "leakanalyzer/calibration.h"

#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/methodtiming.h"
#include "leakanalyzer/threadrecords.h"
#include "platform/clock.h"

namespace Zorvan::analysis {

namespace {

constexpr int passes = 100;
const char *const thisFile = "source/leakanalyzer/calibration.cpp"; // without the folder of the build
// What is started here, by line. The numbers only have to differ.
constexpr int disabledLine = 790;
constexpr int enabledLine = 798;
constexpr int firstCallsLine = 812;
constexpr int laterCallsLine = 823;

/// What a measurement costs, in cycles.
struct Overheads
{
    std::int64_t firstCall = 0;
    std::int64_t averageCall = 0;
    // As the measurements tell themselves: in the time of a method, and beside it.
    std::int64_t measuredInside = 0;
    std::int64_t measuredBeside = 0;
};

/// The cycles that \a call takes, divided by \a divisor.
template <typename Call>
std::int64_t cyclesOf(Call call, int divisor)
{
    const std::uint64_t start = platform::cycleCounter();
    call();
    return static_cast<std::int64_t>(platform::cycleCounter() - start) / divisor;
}

void measureScopes(const char *file, int line)
{
    for (int pass = 0; pass < passes; ++pass) {
        const int id = makeMethodId(file, line);
        if (id < 0)
            continue;
        startMethod(static_cast<unsigned>(id), file, line, "makro test");
        endMethod(static_cast<unsigned>(id));
    }
}

void measureNestedScopes(unsigned id, int line)
{
    startMethod(id, nullptr, line, thisFile);
    startMethod(id + 1, nullptr, line + 1, thisFile);
    endMethod(id + 1);
    endMethod(id);
}

void readMeasuredOverheads(unsigned id, Overheads &overheads)
{
    ThreadRecord *const record = ThreadRecord::current();
    if (record == nullptr)
        return;
    const platform::Locked guard(record->lock());
    const MethodStatistics *const method = record->find(id);
    if (method == nullptr) // cleared by another thread
        return;
    overheads.measuredInside = method->totalCycles / method->calls / 2;
    overheads.measuredBeside = method->overheadCycles / method->calls / 2;
}

Overheads measureOverheads()
{
    Overheads overheads;
    const auto firstCalls = [] {
        for (unsigned id = 0; id < passes; ++id)
            measureNestedScopes(id, firstCallsLine);
    };
    const auto laterCalls = [] {
        for (int pass = 0; pass < passes; ++pass)
            measureNestedScopes(1, laterCallsLine);
    };
    overheads.firstCall = cyclesOf(firstCalls, passes * 2);
    overheads.averageCall = cyclesOf(laterCalls, passes * 2);
    readMeasuredOverheads(1, overheads);
    return overheads;
}

} // namespace

void calibrate()
{
    const auto nothing = [] {};
    const auto calls = static_cast<long long>(cyclesOf(nothing, passes));
    const auto loop = static_cast<long long>(cyclesOf(nothing, passes));
    emitText(methodAnalyzerSource, __LINE__,
             "****************************** %lld overhead method call, %lld int loop\n", calls, loop);

    const std::int64_t skipped = cyclesOf([] { measureScopes("<disabled>", disabledLine); }, passes);
    const std::int64_t enabled = cyclesOf([] { measureScopes(thisFile, enabledLine); }, passes);
    emitText(methodAnalyzerSource, __LINE__,
             "****************************** %lld overhead meas skipped, %lld overhead meas enabled\n",
             static_cast<long long>(skipped - calls), static_cast<long long>(enabled - calls));

    const Overheads overheads = measureOverheads();
    const long long measured = overheads.measuredInside + overheads.measuredBeside;
    emitText(
        methodAnalyzerSource, __LINE__,
        "****************************** %lld overhead first call, %lld overhead avg calls, %lld overhead "
        "measured\n",
        static_cast<long long>(overheads.firstCall), static_cast<long long>(overheads.averageCall), measured);
}

} // namespace Zorvan::analysis
