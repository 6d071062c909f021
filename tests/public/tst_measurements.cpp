// Stopwatches and the timers of the hardware setting: arithmetic, reports, countdowns.

#include "support/maphost.h"

#include <zorvan/debug.h>
#include <zorvan/exports.h>

#include <climits>
#include <gtest/gtest.h>
#include <memory>

using namespace Zorvan;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

constexpr moduleId kernel = 2;
constexpr int info = 3;

class Measurements : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Debug::initDebug();
        Debug::setClippingLevel(kernel, info);
        host.takeLines();
    }
    void TearDown() override { Debug::exitDebug(); }

    /// The texts of the lines so far, without their headers.
    Lines takeTexts()
    {
        Lines texts = host.takeLines();
        for (std::string &text : texts)
            text.erase(0, text.find(">: ") + 3);
        return texts;
    }
    std::string report()
    {
        Debug::dumpRessources(watch.get());
        const Lines texts = takeTexts();
        return texts.size() == 1 ? texts[0] : std::to_string(texts.size()) + " lines";
    }
    /// A run of the stopwatch that takes so many ticks.
    qint64 run(quint64 begin, quint64 ticks)
    {
        host.counter = begin;
        EXPECT_EQ(::startMeasurement(watch.get()), begin);
        host.counter = begin + ticks;
        return ::stopMeasurement(watch.get());
    }

    void startTimer(enumTimeMeas which, quint64 at, bool second = false)
    {
        host.counter = at;
        Debug::timeMeas4HwSetting(which, true, second);
    }
    void stopTimer(enumTimeMeas which, quint64 at, bool second = false)
    {
        host.counter = at;
        Debug::timeMeas4HwSetting(which, false, second);
    }
    static std::string kept(int which = -1)
    {
        QString text;
        Debug::gettimeMeas4HwSetting(text, which);
        return text.toStdString();
    }

    MapHost host;
    std::unique_ptr<ressourceInfo> watch{Debug::createMeasurement(kernel, 0, info)};
};

const char *const nothingKept = "Total    time 0 cycles\nParse    time 0 cycles\nScpi->Db time 0 cycles\n"
                                "Database time 0 cycles\nHW_total time 0 cycles\nHW_total2 time 0 cycles\n"
                                "HW_freq  time 0 cycles\nHW_level time 0 cycles\n";

TEST_F(Measurements, ReportTheMeanOfAllRuns)
{
    EXPECT_EQ(run(1000, 100), 100);
    EXPECT_EQ(run(7000, 300), 300);
    EXPECT_EQ(report(), "current time200cycles needed");
    watch->divisor = 3e6;
    watch->label = QStringLiteral("sweep: ");
    watch->unit = QStringLiteral(" s");
    EXPECT_EQ(report(), "sweep: 6.66667e-05 s needed");
    Debug::startMeasurement(watch.get()); // a start without a stop counts, too
    EXPECT_EQ(watch->count, 3);
    Debug::stopMeasurement(watch.get());
    EXPECT_EQ(watch->accumulated, 400) << "no tick since";
}

TEST_F(Measurements, SurviveACounterThatPassesItsEndAndANullStopwatch)
{
    EXPECT_EQ(run(~quint64(0) - 9, 30), 30);
    host.countsPerFrequency = 7;
    EXPECT_EQ(run(500, quint64(-20)), -20) << "a counter that steps back";
    EXPECT_EQ(watch->accumulated, 10);
    watch->accumulated = std::numeric_limits<qint64>::max();
    run(0, 1);
    EXPECT_EQ(watch->accumulated, std::numeric_limits<qint64>::min());
    EXPECT_EQ(::startMeasurement(nullptr), 0U);
    EXPECT_EQ(::stopMeasurement(nullptr), 0);
    Debug::dumpRessources(nullptr);
    EXPECT_EQ(takeTexts(), Lines{});
}

TEST_F(Measurements, KeepTheTotalBehindTheOneInWhichTheyWereArmed)
{
    Debug::setClippingLevel(0, 4);
    host.takeLines();
    startTimer(timeMeasTotal, 10);
    Debug::enableSCPItimeMeas4HwSetting();
    stopTimer(timeMeasDatabase, 12); // the stages that are at work when it is armed end as well
    startTimer(timeMeasHardware, 13);
    stopTimer(timeMeasHardware, 15);
    stopTimer(timeMeasTotal, 20);
    EXPECT_EQ(takeTexts().size(), 8U) << "printed";
    EXPECT_EQ(kept(), nothingKept) << "but not kept";

    startTimer(timeMeasTotal, 1000);
    startTimer(timeMeasHardwareFrequency, 1001); // not without the second pass
    startTimer(timeMeasHardwareLevel, 1002);
    for (int round = 0; round < 2; ++round) { // whatever comes again changes nothing
        const quint64 later = 1000 + 7000 * static_cast<quint64>(round);
        const auto stage = [&](enumTimeMeas which, quint64 at, quint64 ticks, bool second = false) {
            startTimer(which, later + at, second);
            stopTimer(which, later + at + ticks, second);
        };
        stage(timeMeasParse, 10, 20);
        stage(timeMeasScpiToDatabase, 40, 5);
        startTimer(timeMeasDatabase, later + 100);
        stage(timeMeasHardware, 200, 40);
        stage(timeMeasHardware, 300, 7, true);
        stage(timeMeasHardwareFrequency, 400, 11, true);
        stage(timeMeasHardwareLevel, 500, 3, true);
        stopTimer(timeMeasDatabase, later + 600);
    }
    EXPECT_EQ(takeTexts(), Lines{}) << "only the end of the total tells";
    stopTimer(timeMeasTotal, 1234567 + 1000);
    EXPECT_EQ(takeTexts(),
              (Lines{"Total    time 1.23457e+06 cycles", "Parse    time 20 cycles", "Scpi->Db time 5 cycles",
                     "Database time 453 cycles", "HW_total time 40 cycles", "HW_total2 time 7 cycles",
                     "HW_freq  time 11 cycles", "HW_level time 3 cycles"}));
    EXPECT_EQ(kept(0) + kept(3), "Total    time 1234567 cycles\nDatabase time 453 cycles\n");
    EXPECT_EQ(kept(-2) + kept(8) + kept(INT_MAX) + kept(INT_MIN), "");

    startTimer(timeMeasTotal, 5000);
    stopTimer(timeMeasTotal, 6000);
    EXPECT_EQ(takeTexts()[0], "Total    time 0 cycles") << "no longer armed";
    EXPECT_EQ(kept(0), "Total    time 1234567 cycles\n");
}

TEST_F(Measurements, NeedArmingOrTheLevelOfTimeMeasurements)
{
    for (const int level : {3, 4}) {
        Debug::setClippingLevel(0, level);
        host.takeLines();
        startTimer(timeMeasTotal, 100);
        stopTimer(timeMeasTotal, 200);
        EXPECT_EQ(takeTexts().size(), level == 4 ? 8U : 0U);
        EXPECT_EQ(kept(), nothingKept);
    }
    Debug::setClippingLevel(0, 3);
    Debug::enableSCPItimeMeas4HwSetting();
    startTimer(timeMeasTotal, 100);
    stopTimer(timeMeasTotal, 150);
    startTimer(timeMeasTotal, 200); // one start only: not armed inside of a total
    stopTimer(timeMeasTotal, 300);
    EXPECT_EQ(takeTexts(), Lines{}) << "armed, but the level is off";
    EXPECT_EQ(kept(0), "Total    time 300 cycles\n");
}

TEST_F(Measurements, IgnoreTimersThatDoNotExist)
{
    Debug::enableSCPItimeMeas4HwSetting();
    for (const int which : {8, -1, 100000, INT_MAX, INT_MIN}) {
        for (const bool start : {true, false})
            Debug::timeMeas4HwSetting(static_cast<enumTimeMeas>(which), start, true);
    }
    EXPECT_EQ(kept(), nothingKept);
}

} // namespace
