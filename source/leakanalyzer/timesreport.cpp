#include "leakanalyzer/timesreport.h"

#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/methodtiming.h"
#include "leakanalyzer/sourcenames.h"
#include "leakanalyzer/threadrecords.h"

#include <algorithm>
#include <limits>

namespace Zorvan::analysis {

namespace {

struct Sums
{
    int records = 0;
    std::int64_t totalCycles = 0;
    std::int64_t calls = 0;
    std::uint64_t earliestStamp = 0x3FFFFFFFFFFFFFFF; // told as it is if no record takes part
    std::uint64_t latestStamp = 0;
};

/// The events of this process: none, since nothing in the library records any.
const PlainVector<TimedEvent> &timedEvents()
{
    static const auto *const events = makeLasting<PlainVector<TimedEvent>>(); // reports come until the end
    return *events;
}

double averageCycles(const MeasuredMethod &method)
{
    return static_cast<double>(method.statistics.totalCycles) / static_cast<double>(method.statistics.calls);
}

/// The rows of a report: the methods with a source that passes the filter, the longest on average first.
PlainVector<MeasuredMethod> rowsOf(const PlainVector<MeasuredMethod> &methods, const char *sourceFilter)
{
    PlainVector<MeasuredMethod> rows;
    for (const MeasuredMethod &method : methods) {
        if (method.statistics.file != nullptr && passesFilter(method.statistics.file, sourceFilter))
            rows.push_back(method);
    }
    std::sort(rows.begin(), rows.end(), [](const MeasuredMethod &left, const MeasuredMethod &right) {
        return averageCycles(left) > averageCycles(right);
    });
    return rows;
}

Sums sumsOf(const PlainVector<MeasuredMethod> &rows, const char *methodFilter)
{
    Sums sums;
    for (const auto &[thread, method] : rows) {
        ++sums.records;
        if (!passesFilter(method.name, methodFilter))
            continue;
        sums.totalCycles += method.totalCycles;
        sums.calls += method.calls;
        sums.earliestStamp = std::min(sums.earliestStamp, method.startStamp);
        sums.latestStamp = std::max(sums.latestStamp, method.startStamp);
    }
    return sums;
}

void emitSummary(const Sums &sums)
{
    deliver([&sums](IAnalysisOutputInterface &handler) {
        handler.summary(sums.records, sums.totalCycles, 0, sums.calls, sums.earliestStamp, sums.latestStamp);
    });
}

void emitComplete()
{
    deliver([](IAnalysisOutputInterface &handler) { handler.tableComplete(); });
}

/// A method that does not pass the filter has a row of zeros; its text is complete.
void emitRow(int number, const MeasuredMethod &row, const char *methodFilter)
{
    const MethodStatistics &method = row.statistics;
    MethodStatistics shown;
    shown.calls = 0;
    if (passesFilter(method.name, methodFilter))
        shown = method;
    const auto calls = static_cast<int>(std::min(shown.calls, std::int64_t{std::numeric_limits<int>::max()}));
    deliver([&](IAnalysisOutputInterface &handler) {
        handler.tableRow(number, method.name, row.thread, calls, shown.startStamp, shown.totalCycles,
                         shown.overheadCycles);
    });
    emitText(method.file, method.line,
             "****************************** %lld calls, method %s, avg %08lld cycles, meas error: %08lld "
             "cycles\n",
             static_cast<long long>(method.calls), method.name,
             static_cast<long long>(method.totalCycles / method.calls),
             static_cast<long long>(method.overheadCycles / method.calls));
}

} // namespace

void reportEvents(const PlainVector<TimedEvent> &events)
{
    const TimedEvent *previous = nullptr;
    for (const TimedEvent &event : events) {
        if (previous != nullptr)
            emitText(event.name, event.line, "---- gap: %llu\n",
                     static_cast<unsigned long long>(event.stamp - previous->stamp));
        emitText(event.name, event.line, "(%s) %u,%u\n", event.text.c_str(), event.first, event.second);
        previous = &event;
    }
}

namespace {

void reportTimes(const char *sourceFilter, const char *methodFilter)
{
    const PlainVector<MeasuredMethod> methods = measuredMethods();
    if (methods.empty()) {
        emitText(methodAnalyzerSource, __LINE__,
                 "------------------------------ no time measurements in tracked code found.\n");
        deliver([](IAnalysisOutputInterface &handler) { handler.summary(0, 0, 0, 0, 0, 0); });
        emitComplete();
        return;
    }
    const PlainVector<MeasuredMethod> rows = rowsOf(methods, sourceFilter);
    emitSummary(sumsOf(rows, methodFilter));
    int number = 0;
    for (const MeasuredMethod &row : rows)
        emitRow(number++, row, methodFilter);
    emitComplete();
}

void emitNoMemory()
{
    emitText(methodAnalyzerSource, __LINE__, "------------------------------ no memory for the report\n");
}

} // namespace

// Works on copies: the handler may measure, clear and switch as it likes.
void dumpTimes(const char *sourceFilter, const char *methodFilter)
{
    if (!isRunning())
        return;
    const SuspendedTiming suspended;
    reportEvents(timedEvents());
    try {
        reportTimes(sourceFilter, methodFilter);
    } catch (const std::bad_alloc &) {
        emitNoMemory();
    }
}

void reportMethods(IAnalysisSummaryInterface *receiver)
{
    if (receiver == nullptr || !isRunning())
        return;
    PlainVector<MeasuredMethod> methods;
    try {
        methods = measuredMethods();
    } catch (const std::bad_alloc &) {
        emitNoMemory();
    }
    for (const auto &[thread, method] : methods)
        receiver->methodInformation(method.file, method.line, method.name);
}

} // namespace Zorvan::analysis
