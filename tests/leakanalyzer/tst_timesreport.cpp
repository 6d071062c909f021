#include "leakanalyzer/timesrecorder.h"
#include "leakanalyzer/timesreport.h"

#include <cstdio>

namespace Zorvan::test {
namespace {

class TimesReport : public TimingTest
{
protected:
    TimesReport() { analysis::setTimeTracking(2); }

    static void measure(int id, const char *file, const char *name, quint64 cycles, int calls = 1)
    {
        for (int i = 0; i < calls; ++i) {
            startMethod(id, file, name, id * 10);
            work(cycles);
            endMethod(id);
        }
    }
};

TEST_F(TimesReport, rowsComeByFallingAverageWithTheirTexts)
{
    TimesRecorder recorder;
    measure(1, "src/quick.cpp", "quick", workCycles / 100, 3);
    measure(2, "src/slow.cpp", "slow", workCycles * 100);
    measure(3, "src/medium.cpp", "medium", workCycles, 2);
    recorder.dump();
    EXPECT_EQ(recorder.order, "srtrtrtc");
    const char *const methods[] = {"slow", "medium", "quick"};
    qint64 total = 0;
    for (int number = 0; number < 3; ++number) {
        const Row &row = recorder.rows[static_cast<std::size_t>(number)];
        EXPECT_EQ(row.number, number);
        EXPECT_EQ(row.method, methods[number]);
        EXPECT_EQ(row.thread, platform::kernelThreadId());
        char text[200];
        snprintf(text, sizeof text,
                 "****************************** %d calls, method %s, avg %08lld cycles, meas error: %08lld "
                 "cycles\n",
                 row.calls, row.method.c_str(), row.total / row.calls, row.overhead / row.calls);
        EXPECT_EQ(recorder.texts[static_cast<std::size_t>(number)].text, text);
        EXPECT_GT(row.overhead, 0);
        total += row.total;
    }
    EXPECT_EQ(recorder.texts[0].source, "src/slow.cpp");
    EXPECT_EQ(recorder.texts[0].line, 20);
    const Summary &sums = recorder.summaries[0];
    EXPECT_EQ(sums.records, 3);
    EXPECT_EQ(sums.total, total);
    EXPECT_EQ(sums.reserved, 0);
    EXPECT_EQ(sums.calls, 6);
    EXPECT_EQ(sums.earliest, recorder.row("quick").stamp);
    EXPECT_EQ(sums.latest, recorder.row("medium").stamp);
}

TEST_F(TimesReport, sourceFilterDropsRowsMethodFilterEmptiesThem)
{
    TimesRecorder recorder;
    measure(1, "src/data.cpp", "load", 10);
    measure(2, "src\\a.cpp", "store", 10);
    recorder.dump("data.cpp"); // ends in the name of the other file
    EXPECT_EQ(recorder.rows.size(), 2U);
    recorder.dump("src/a.cpp", "");
    ASSERT_EQ(recorder.rows.size(), 1U);
    EXPECT_EQ(recorder.rows[0].method, "store");
    EXPECT_EQ(recorder.summaries[0].records, 1);

    recorder.dump("", "load");
    ASSERT_EQ(recorder.rows.size(), 2U);
    const Row load = recorder.row("load");
    const Row store = recorder.row("store");
    EXPECT_EQ(load.calls, 1);
    EXPECT_EQ(store.calls + store.total + store.overhead, 0);
    EXPECT_EQ(store.stamp, 0U);
    EXPECT_NE(recorder.texts[static_cast<std::size_t>(store.number)].text.find(" 1 calls, method store"),
              std::string::npos);
    EXPECT_EQ(recorder.summaries[0].records, 2);
    EXPECT_EQ(recorder.summaries[0].calls, 1);
    EXPECT_EQ(recorder.summaries[0].latest, load.stamp);

    recorder.dump("none", "none");
    EXPECT_EQ(recorder.order, "sc");
    EXPECT_EQ(recorder.summaries[0].earliest, 0x3FFFFFFFFFFFFFFFU);
    EXPECT_EQ(recorder.summaries[0].latest, 0U);
}

TEST_F(TimesReport, handlerMayUseTheAnalyzerWhileItIsTold)
{
    TimesRecorder recorder;
    measure(1, "a.cpp", "a", 10);
    measure(2, "a.cpp", "b", 10);
    bool isNested = false;
    recorder.onCall = [&](char sign) {
        startMethod(3, "a.cpp", "not measured meanwhile");
        endMethod(3);
        EXPECT_EQ(analysis::makeMethodId("a.cpp", 1), -1);
        EXPECT_EQ(analysis::timeTracking(), 1);
        if (sign != 'r' || std::exchange(isNested, true))
            return;
        analysis::clearTimes();
        analysis::dumpTimes(nullptr, nullptr);
        analysis::setTimeTracking(0);
        analysis::setTimeTracking(2);
    };
    recorder.dump();
    EXPECT_EQ(recorder.order, "srtsctrtc");
    recorder.onCall = nullptr;
    measure(4, "a.cpp", "again", 10);
    recorder.dump();
    EXPECT_EQ(recorder.order, "srtc");
}

TEST_F(TimesReport, switchOfTheHandlerOutlastsTheReport)
{
    TimesRecorder recorder;
    measure(1, "a.cpp", "a", 10);
    recorder.onCall = [](char) { analysis::setTimeTracking(0); };
    recorder.dump();
    EXPECT_EQ(analysis::timeTracking(), 0);
    EXPECT_EQ(analysis::makeMethodId("a.cpp", 1), -1);
}

TEST_F(TimesReport, eventsAreToldWithTheGapsBetweenThem)
{
    TimesRecorder recorder;
    analysis::reportEvents({{"a", 1, "start", 100, 1, 2}, {"b", 2, "stop", 5'000'000'100, 3, 4'000'000'000}});
    const std::vector<Text> expected = {
        {"a", 1, "(start) 1,2\n"}, {"b", 2, "---- gap: 5000000000\n"}, {"b", 2, "(stop) 3,4000000000\n"}};
    EXPECT_EQ(recorder.texts, expected);
}

class Receiver : public IAnalysisSummaryInterface
{
public:
    void methodInformation(const char *file, int line, const char *methodName) override
    {
        methods.push_back({file == nullptr ? "null" : file, line, methodName});
        startMethod(9, "b.cpp", "receiver");
        endMethod(9);
    }

    std::vector<Text> methods;
};

TEST_F(TimesReport, receiversLearnAllMethodsById)
{
    measure(2, "b.cpp", "two", 10);
    measure(1, "a.cpp", "one", 10);
    measure(2, "b.cpp", "two", 10);
    Receiver receiver;
    analysis::reportMethods(&receiver);
    const std::vector<Text> expected = {
        {"null", 0, "calling overhead"}, {"a.cpp", 10, "one"}, {"b.cpp", 20, "two"}};
    EXPECT_EQ(receiver.methods, expected);
    analysis::reportMethods(nullptr);
}

} // namespace
} // namespace Zorvan::test
