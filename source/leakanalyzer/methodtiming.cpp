#include "leakanalyzer/methodtiming.h"

#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/calibration.h"
#include "leakanalyzer/insideanalyzer.h"
#include "leakanalyzer/threadrecords.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "platform/clock.h"

namespace Zorvan {

// Bit 0 is the switch, the rest counts the reports and clears that suspend it.
std::atomic<unsigned> detail::timeTracking{0};

} // namespace Zorvan

namespace Zorvan::analysis {

namespace {

constexpr unsigned switchedOn = 1;
constexpr unsigned oneSuspension = 2;

// Names of a place that readers of these messages know; not the lines of this file.
const char *const pairingSource = "source/leakanalyzer";
constexpr int tooManyStartsLine = 928;
constexpr int tooManyEndsLine = 980;
constexpr int unknownMethodLine = 1007;

/// The calibration takes place once. One that comes while measuring is suspended, where it would measure
/// nothing, waits for the end of that.
enum class Calibration { pending, deferred, done };
std::atomic<Calibration> s_calibration{Calibration::pending};
ZORVAN_THREAD_WORD unsigned s_ownSuspensions = 0;

ZORVAN_THREAD_WORD bool s_isReporting = false;

/// Faults of a handler that is just being told of one are its own.
void report(const PairingFaults &faults)
{
    if (s_isReporting)
        return;
    s_isReporting = true;
    if (faults.tooManyStarts)
        emitText(pairingSource, tooManyStartsLine,
                 "++++++++++++++++++++++++ wrong startMethod / endMethod pairing, resetting! "
                 "++++++++++++++++++++++++\n");
    if (faults.tooManyEnds)
        emitText(pairingSource, tooManyEndsLine,
                 "++++++++++++++++++++++++ wrong startMethod / endMethod pairing, resetting "
                 "++++++++++++++++++++++++\n");
    if (faults.unknownMethod)
        emitText(pairingSource, unknownMethodLine,
                 "++++++++++++++++++++++++ unknown endMethod ID given, no measurement "
                 "++++++++++++++++++++++++\n");
    s_isReporting = false;
}

bool isSuspended()
{
    return Zorvan::detail::timeTracking.load() >= oneSuspension;
}

/// True for one caller only.
bool moveCalibration(Calibration from, Calibration to)
{
    return s_calibration.compare_exchange_strong(from, to);
}

/// For the end of a suspension, and for a calibration that was just deferred: whichever comes last sees the
/// other one.
void catchUpOnCalibration()
{
    if (isSuspended() || !moveCalibration(Calibration::deferred, Calibration::done))
        return;
    calibrate();
    clearTimes();
}

/// Without memory for it a method is not measured, nor told.
template <typename Work>
void doIfThereIsMemory(Work work)
{
    try {
        work();
    } catch (const std::bad_alloc &) {}
}

} // namespace

void startMethod(unsigned id, const char *file, int line, const char *methodName)
{
    if (!isTimeTracked() || InsideAnalyzer::isActive())
        return;
    const std::uint64_t stamp = platform::cycleCounter();
    PairingFaults faults;
    doIfThereIsMemory([&] {
        ThreadRecord &record = ThreadRecord::ofThisThread();
        const platform::Locked guard(record.lock());
        faults = record.start({id, file, line, methodName}, stamp);
    });
    if (faults.any())
        report(faults);
}

void endMethod(unsigned id)
{
    if (!isTimeTracked() || InsideAnalyzer::isActive())
        return;
    const std::uint64_t stamp = platform::cycleCounter();
    PairingFaults faults;
    if (ThreadRecord *const record = ThreadRecord::current()) {
        const platform::Locked guard(record->lock());
        faults = record->end(id, stamp);
    } else {
        faults.unknownMethod = true;
    }
    if (faults.any())
        report(faults);
}

void setTimeTracking(int state)
{
    if (!isRunning())
        return;
    if (state == 0) {
        moveCalibration(Calibration::deferred, Calibration::pending);
        Zorvan::detail::timeTracking.fetch_and(~switchedOn);
        return;
    }
    Zorvan::detail::timeTracking.fetch_or(switchedOn);
    if (state == 1 && moveCalibration(Calibration::pending, Calibration::deferred))
        catchUpOnCalibration();
}

int timeTracking()
{
    return static_cast<int>(Zorvan::detail::timeTracking.load(std::memory_order_relaxed) & switchedOn);
}

int timeTrackingEnabled(int state)
{
    if (state >= 0) {
        setTimeTracking(state);
        setLowlevelIntegerProperty(static_cast<int>(LowlevelProperty::timeTrackingEnabled), state);
    }
    return timeTracking();
}

SuspendedTiming::SuspendedTiming()
{
    ++s_ownSuspensions;
    Zorvan::detail::timeTracking.fetch_add(oneSuspension);
}

SuspendedTiming::~SuspendedTiming()
{
    Zorvan::detail::timeTracking.fetch_sub(oneSuspension);
    --s_ownSuspensions;
    catchUpOnCalibration();
}

void clearTimes()
{
    if (!isRunning())
        return;
    const SuspendedTiming suspended;
    doIfThereIsMemory(clearThreadRecords);
}

void prepareTiming()
{
    static_cast<void>(analyzerLock());
}

// The reports and clears of other threads do not end in the child.
void forgetOtherThreadsLocks()
{
    Zorvan::detail::timeTracking.store((Zorvan::detail::timeTracking.load() & switchedOn)
                                       + s_ownSuspensions * oneSuspension);
    if (!isSuspended()) // later on a calibration would only lose measurements
        moveCalibration(Calibration::deferred, Calibration::done);
    adoptRecordsInChild();
}

} // namespace Zorvan::analysis
