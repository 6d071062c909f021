#include "debug/measurements.h"

#include "host/hosthandlers.h"
#include "host/tablestate.h"
#include "leakanalyzer/leaktracker.h"

#include <climits>
#include <new>

namespace Zorvan {

namespace {

constexpr int timerLevel = 4; // time measurements
constexpr int timerClass = 1;
constexpr int timerCount = 8;

/// In the order of enumTimeMeas. The blanks belong to the names.
constexpr const char *timerNames[timerCount] = {
    "Total    time ", "Parse    time ",  "Scpi->Db time ", "Database time ",
    "HW_total time ", "HW_total2 time ", "HW_freq  time ", "HW_level time ",
};
constexpr int startsOfRun[timerCount] = {1, 1, 1, 1, 2, 1, 1, 1};
constexpr int stopsOfRun[timerCount] = {2, 1, 1, 2, 2, 1, 1, 1};

/// A timer of a stage. The countdowns let an armed run take only the first start and stop of the stage, or
/// the first two.
struct Timer
{
    qint64 running; ///< counter at the start, then the ticks since
    qint64 lastResult; ///< of the last armed run
    int startsLeft;
    int stopsLeft;
};

/// The thread that sets the hardware owns them: no lock.
Timer s_timers[timerCount];
bool s_areTimersArmed = false;

quint64 counterNow()
{
    return host::readCount();
}

/// Ticks between two readings, right also if the counter went past its end.
qint64 ticksBetween(quint64 start, quint64 stop)
{
    return static_cast<qint64>(stop - start);
}

/// The sum as the processor forms it: too large a one wraps around.
qint64 wrappedSum(qint64 a, qint64 b)
{
    return static_cast<qint64>(static_cast<quint64>(a) + static_cast<quint64>(b));
}

/// Counts on below zero, where it takes nothing any more, as far as the type goes.
bool takeOne(int &left)
{
    const bool taken = left > 0;
    if (left > INT_MIN)
        --left;
    return taken;
}

void startTimer(Timer &timer)
{
    if (takeOne(timer.startsLeft))
        timer.running = static_cast<qint64>(counterNow());
}

void stopTimer(Timer &timer)
{
    if (takeOne(timer.stopsLeft))
        timer.running = ticksBetween(static_cast<quint64>(timer.running), counterNow());
}

bool areTimersPrinted()
{
    return Debug::isActive(libraryModule, timerLevel, timerClass);
}

QString sixDigits(double value)
{
    return QString::number(value, 'g', 6);
}

/// Prints all values and begins anew; the end of an armed run keeps them.
void finishTotal()
{
    Timer &database = s_timers[timeMeasDatabase];
    for (const enumTimeMeas hardware : {timeMeasHardware, timeMeasHardwareSecondPass})
        database.running = ticksBetween(static_cast<quint64>(s_timers[hardware].running),
                                        static_cast<quint64>(database.running));
    for (int i = 0; i < timerCount; ++i) {
        Timer &timer = s_timers[i];
        if (areTimersPrinted()) {
            Debug::println(libraryModule, timerClass,
                           QLatin1String(timerNames[i]) + sixDigits(static_cast<double>(timer.running))
                               + QLatin1String(" cycles"),
                           timerLevel);
        }
        if (s_timers[timeMeasTotal].stopsLeft == 0) {
            timer.lastResult = timer.running;
            s_areTimersArmed = false;
        }
        timer.running = 0;
    }
}

} // namespace

namespace measurements {

quint64 start(ressourceInfo *info)
{
    if (info == nullptr)
        return 0;
    info->count = wrappedSum(info->count, 1);
    info->memoryAtStart = analysis::trackedMemoryUsage();
    info->start = counterNow(); // last, so that nothing else is measured
    return info->start;
}

qint64 stop(ressourceInfo *info)
{
    if (info == nullptr)
        return 0;
    info->memoryAtStop = analysis::trackedMemoryUsage();
    info->stop = counterNow();
    const qint64 ticks = ticksBetween(info->start, info->stop);
    info->accumulated = wrappedSum(info->accumulated, ticks);
    return ticks;
}

} // namespace measurements

ressourceInfo *Debug::createMeasurement(moduleId module, int cls, int level)
{
    auto *const info = new (std::nothrow) ressourceInfo;
    if (info == nullptr)
        return nullptr;
    info->module = module;
    info->messageClass = cls;
    info->level = level;
    return info;
}

void Debug::startMeasurement(ressourceInfo *info)
{
    measurements::start(info);
}

void Debug::stopMeasurement(ressourceInfo *info)
{
    measurements::stop(info);
}

void Debug::dumpRessources(ressourceInfo *info)
{
    if (info == nullptr || !isActive(info->module, info->level, info->messageClass))
        return;
    // Never started: the mean is not a number, and printed so.
    const double mean =
        static_cast<double>(info->accumulated) / static_cast<double>(info->count) / info->divisor;
    QString text = info->label;
    if (analysis::memoryTracking() != 0) {
        // The usage is kept in 32 bits that wrap around; so does the difference.
        const auto change = static_cast<qint32>(static_cast<quint32>(info->memoryAtStop)
                                                - static_cast<quint32>(info->memoryAtStart));
        text += QLatin1String("allocated memory was ") + QString::number(change) + QLatin1String(" bytes, ");
    }
    text += sixDigits(mean) + info->unit + QLatin1String(" needed");
    println(info->module, info->messageClass, text, info->level);
}

void Debug::timeMeas4HwSetting(enumTimeMeas which, bool start, bool second)
{
    if (which < 0 || which >= timerCount || (!s_areTimersArmed && !areTimersPrinted()))
        return;
    if (!second && (which == timeMeasHardwareFrequency || which == timeMeasHardwareLevel))
        return;
    const bool isSecondPass = second && which == timeMeasHardware;
    Timer &timer = s_timers[isSecondPass ? timeMeasHardwareSecondPass : which];
    if (start) {
        startTimer(timer);
        return;
    }
    stopTimer(timer);
    if (which == timeMeasTotal)
        finishTotal();
}

void Debug::gettimeMeas4HwSetting(QString &out, int which)
{
    constexpr int all = -1;
    for (int i = 0; i < timerCount; ++i) {
        if (which == all || which == i) {
            out += QLatin1String(timerNames[i]) + QString::number(s_timers[i].lastResult)
                + QLatin1String(" cycles\n");
        }
    }
}

void Debug::enableSCPItimeMeas4HwSetting()
{
    for (int i = 0; i < timerCount; ++i) {
        s_timers[i].startsLeft = startsOfRun[i];
        s_timers[i].stopsLeft = stopsOfRun[i];
    }
    s_areTimersArmed = true;
}

} // namespace Zorvan
