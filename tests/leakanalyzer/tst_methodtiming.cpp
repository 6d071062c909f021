#include "leakanalyzer/timesrecorder.h"
#include "lowlevelfunctions/lowlevelproperties.h"

#include <zorvan/analysis.h>

#include <regex>

namespace Zorvan::test {
namespace {

const Text tooManyStarts{"source/leakanalyzer", 928,
                         "++++++++++++++++++++++++ wrong startMethod / endMethod pairing, resetting! "
                         "++++++++++++++++++++++++\n"};
const Text tooManyEnds{"source/leakanalyzer", 980,
                       "++++++++++++++++++++++++ wrong startMethod / endMethod pairing, resetting "
                       "++++++++++++++++++++++++\n"};
const Text unknownMethod{"source/leakanalyzer", 1007,
                         "++++++++++++++++++++++++ unknown endMethod ID given, no measurement "
                         "++++++++++++++++++++++++\n"};
using Texts = std::vector<Text>;

class MethodTiming : public TimingTest
{
protected:
    MethodTiming() { analysis::setTimeTracking(2); }
};

TEST(MethodTimingOff, analyzerThatDoesNotRunDoesNothing)
{
    TimesRecorder recorder;
    EXPECT_EQ(analysis::timeTrackingEnabled(1), 0);
    EXPECT_EQ(lowlevelProperty(LowlevelProperty::timeTrackingEnabled, -1), 1);
    EXPECT_EQ(analysis::makeMethodId("a.cpp", 1), -1);
    startMethod(1, "a.cpp", "a");
    endMethod(2);
    analysis::clearTimes();
    recorder.dump();
    EXPECT_EQ(recorder.order, "");
}

TEST_F(TimingTest, switchedOffNothingIsNumberedOrMeasured)
{
    TimesRecorder recorder;
    EXPECT_EQ(make_id("first.cpp", 1), -1);
    startMethod(1, "first.cpp", "first");
    endMethod(2);
    EXPECT_EQ(recorder.order, "");
    EXPECT_EQ(analysis::timeTrackingEnabled(7), 1);
    EXPECT_EQ(lowlevelProperty(LowlevelProperty::timeTrackingEnabled, 0), 7);
    EXPECT_EQ(make_id("second.cpp", 5), 5);
    EXPECT_EQ(analysis::timeTrackingEnabled(-1), 1);
    EXPECT_EQ(analysis::timeTrackingEnabled(0), 0);
    EXPECT_EQ(make_id("second.cpp", 5), -1);
}

TEST_F(TimingTest, onlyTheFirstOneCalibrates)
{
    TimesRecorder recorder;
    analysis::setTimeTracking(2);
    EXPECT_EQ(recorder.order, "");
    analysis::setTimeTracking(1);
    EXPECT_EQ(recorder.order, "ttt");
    EXPECT_EQ(analysis::timeTracking(), 1);
    analysis::setTimeTracking(0);
    analysis::setTimeTracking(1);
    EXPECT_EQ(recorder.order, "ttt");
    std::string told;
    for (const Text &text : recorder.texts)
        told += text.source + ": " + std::regex_replace(text.text, std::regex("-?[0-9]+"), "#");
    const std::string begin = "Method Analyzer: ****************************** # overhead ";
    EXPECT_EQ(told,
              begin + "method call, # int loop\n" + begin + "meas skipped, # overhead meas enabled\n" + begin
                  + "first call, # overhead avg calls, # overhead measured\n");
    // Its measurements are gone, its numbers are not.
    EXPECT_EQ(analysis::makeMethodId("mine.cpp", 3) % 65536, 3);
    EXPECT_GT(analysis::makeMethodId("mine.cpp", 3), 65536);
    recorder.dump();
    EXPECT_EQ(recorder.order, "tsc");
    EXPECT_EQ(recorder.texts.at(0).text,
              "------------------------------ no time measurements in tracked code found.\n");
}

TEST_F(TimingTest, calibrationWaitsForTheEndOfReportsAndComesOnce)
{
    TimesRecorder recorder;
    for (const int last : {0, 1}) {
        EXPECT_EQ(recorder.order, "");
        const analysis::SuspendedTiming report;
        {
            const analysis::SuspendedTiming clear;
            analysis::setTimeTracking(1);
        }
        EXPECT_EQ(recorder.order, "");
        analysis::setTimeTracking(last);
    }
    EXPECT_EQ(recorder.order, "ttt");
    startMethod(1, "a.cpp", "a");
    endMethod(1);
    analysis::setTimeTracking(1);
    recorder.dump();
    EXPECT_EQ(recorder.order, "srtc");
}

TEST_F(MethodTiming, idsCountFilesAndMethodNamesByTheirAddress)
{
    static const char file[] = "a.cpp";
    static const char copy[] = "a.cpp";
    EXPECT_EQ(make_id(file, 1), 1);
    EXPECT_EQ(make_id(copy, 2), 65536 + 2);
    EXPECT_EQ(make_id(file, 3), 3);
    startMethod(1, file, "a");
    endMethod(1);
    EXPECT_EQ(make_id("b.cpp", 1), 3 * 65536 + 1);
    EXPECT_EQ(make_id(nullptr, 1), 4 * 65536 + 1);
    EXPECT_EQ(make_id(file, 65536 + 4), 65536 + 4);
}

TEST_F(MethodTiming, disabledFileIsRecognisedByItsTextAndTakesNoNumber)
{
    const std::string disabled = "<disabled>";
    EXPECT_EQ(static_cast<unsigned>(make_id(disabled.c_str(), 5)), 0xFFFF0005U);
    EXPECT_EQ(make_id("<disabled>", 65536), 0);
    EXPECT_EQ(make_id("a.cpp", 1), 1);
    TimesRecorder recorder;
    {
        const methodTracker tracker(disabled.c_str(), 5, "never");
    }
    recorder.dump();
    EXPECT_EQ(recorder.order, "tsc");
}

TEST_F(MethodTiming, manyFilesKeepTheirNumbersUntilTheyTurnNegative)
{
    std::vector<std::string> files(33000, "file");
    for (int i = 0; i < 33000; ++i)
        ASSERT_EQ(make_id(files[static_cast<std::size_t>(i)].c_str(), 1) < 0, i >= 32768) << i;
    EXPECT_EQ(make_id(files[0].c_str(), 1), 1);
    EXPECT_EQ(make_id(files[32767].c_str(), 1), 32767 * 65536 + 1);
    EXPECT_EQ(make_id(files[700].c_str(), 2), 700 * 65536 + 2);
}

TEST_F(MethodTiming, timesExcludeMeasuredCallees)
{
    startMethod(1, "a.cpp", "outer");
    for (int i = 0; i < 2; ++i) {
        startMethod(2, "a.cpp", "inner");
        work(workCycles * 10);
        startMethod(3, "a.cpp", "innermost");
        work(workCycles * 100);
        endMethod(3);
        endMethod(2);
    }
    work(workCycles);
    endMethod(1);
    TimesRecorder recorder;
    recorder.dump();
    // Bounds that hold even if this thread loses its core now and then.
    const qint64 outer = recorder.row("outer").total;
    const qint64 inner = recorder.row("inner").total;
    EXPECT_GE(outer, qint64(workCycles));
    EXPECT_GE(inner, qint64(workCycles * 20));
    EXPECT_GE(recorder.row("innermost").total, qint64(workCycles * 200));
    EXPECT_EQ(recorder.row("inner").calls, 2);
    EXPECT_LT(outer, qint64(workCycles * 100));
    EXPECT_LT(inner, qint64(workCycles * 200));
}

TEST_F(MethodTiming, recursionCountsTheInnermostCallFromItsStart)
{
    startMethod(1, "a.cpp", "top");
    startMethod(2, "a.cpp", "recursive");
    work(workCycles * 100); // charged to the caller
    startMethod(2, "a.cpp", "recursive");
    startMethod(3, "a.cpp", "callee");
    work(workCycles * 100);
    endMethod(3);
    work(workCycles * 10);
    for (const int id : {2, 2, 1})
        endMethod(id);
    TimesRecorder recorder;
    recorder.dump();
    EXPECT_EQ(recorder.row("recursive").calls, 2);
    EXPECT_GE(recorder.row("recursive").total, qint64(workCycles * 10));
    EXPECT_LT(recorder.row("recursive").total, qint64(workCycles * 100));
    EXPECT_LT(recorder.row("top").total, qint64(workCycles * 150));
}

TEST_F(MethodTiming, everyEndTooManyIsToldOnceAndLeavesTheNextPairInOrder)
{
    TimesRecorder recorder;
    startMethod(1, "a.cpp", "a");
    endMethod(1);
    EXPECT_EQ(recorder.texts, Texts());
    endMethod(1);
    EXPECT_EQ(recorder.texts, Texts{tooManyEnds});
    startMethod(1, "a.cpp", "a");
    endMethod(9); // counts as the end of "a"
    EXPECT_EQ(recorder.texts, (Texts{tooManyEnds, unknownMethod}));
    endMethod(9);
    EXPECT_EQ(recorder.texts, (Texts{tooManyEnds, unknownMethod, tooManyEnds, unknownMethod}));
    recorder.forget();
    startMethod(1, "a.cpp", "a");
    endMethod(1);
    EXPECT_EQ(recorder.texts, Texts());
}

TEST_F(MethodTiming, startsWithoutEndsBeginAnewAtTheLimit)
{
    TimesRecorder recorder;
    for (int i = 0; i < 98; ++i)
        startMethod(1, "a.cpp", "a");
    EXPECT_EQ(recorder.texts, Texts());
    startMethod(1, "a.cpp", "a"); // its own measurement is one level deeper, and the one that starts anew
    EXPECT_EQ(recorder.texts, (Texts{tooManyStarts, tooManyEnds}));
    endMethod(1);
    EXPECT_EQ(recorder.texts.size(), 2U);
    endMethod(1);
    EXPECT_EQ(recorder.texts.size(), 3U);

    recorder.forget();
    for (int i = 0; i < 99; ++i)
        startMethod(0, "a.cpp", "zero");
    EXPECT_EQ(recorder.texts, Texts{tooManyStarts});
    endMethod(0);
    EXPECT_EQ(recorder.texts, (Texts{tooManyStarts, tooManyEnds}));
}

TEST_F(MethodTiming, clearForgetsOpenMethodsAndTheDepth)
{
    TimesRecorder recorder;
    startMethod(1, "a.cpp", "a");
    startMethod(2, "a.cpp", "b");
    analysis::clearTimes();
    endMethod(2); // nothing is known of this thread any more, so nothing can be out of order
    EXPECT_EQ(recorder.texts, Texts{unknownMethod});
    startMethod(3, "a.cpp", "c");
    endMethod(1);
    endMethod(3);
    EXPECT_EQ(recorder.texts, (Texts{unknownMethod, unknownMethod, tooManyEnds}));
    recorder.dump();
    EXPECT_EQ(recorder.rows.size(), 1U);
    EXPECT_EQ(analysis::timeTracking(), 1);
}

TEST_F(MethodTiming, methodsStayApartWhenThereAreMany)
{
    for (int round = 0; round < 2; ++round) {
        for (int id = 1; id <= 1000; ++id) {
            startMethod(id * 4096, "a.cpp", "many", id);
            endMethod(id * 4096);
        }
    }
    TimesRecorder recorder;
    recorder.dump();
    ASSERT_EQ(recorder.rows.size(), 1000U);
    for (const Row &row : recorder.rows)
        EXPECT_EQ(row.calls, 2);
}

TEST_F(MethodTiming, namesAreCopiedAndToldWhole)
{
    std::string file = "folder/gone.cpp";
    std::string name(600, 'n');
    const std::string copy = name;
    startMethod(1, file.c_str(), name.c_str());
    endMethod(1);
    file.assign(file.size(), '#');
    name.assign(name.size(), '#');
    TimesRecorder recorder;
    recorder.dump();
    EXPECT_EQ(recorder.row(copy).calls, 1);
    EXPECT_NE(recorder.texts.at(0).text.find(copy + ", avg "), std::string::npos);
    EXPECT_EQ(recorder.texts.at(0).source, "folder/gone.cpp");
}

} // namespace
} // namespace Zorvan::test
