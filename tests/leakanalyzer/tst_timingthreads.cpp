#include "leakanalyzer/insideanalyzer.h"
#include "leakanalyzer/timesrecorder.h"
#include "support/forks.h"

#include <zorvan/analysis.h>

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Zorvan::test {
namespace {

class TimingThreads : public TimingTest
{
protected:
    TimingThreads() { analysis::setTimeTracking(2); }
};

void measureMethods(int calls)
{
    for (int i = 0; i < calls; ++i) {
        const methodTracker outer("a.cpp", 1, "outer");
        const methodTracker inner("a.cpp", 2 + i % 40, "inner");
    }
}

TEST_F(TimingThreads, eachThreadHasRowsAndADepthOfItsOwn)
{
    TimesRecorder recorder;
    startMethod(1, "a.cpp", "shared");
    quint64 number = 0;
    std::thread([&] {
        number = platform::kernelThreadId();
        endMethod(1); // nothing was started here
        startMethod(1, "a.cpp", "shared");
        startMethod(2, "a.cpp", "left open");
    }).join();
    endMethod(1);
    ASSERT_EQ(recorder.texts.size(), 1U);
    EXPECT_EQ(recorder.texts[0].line, 1007);
    recorder.dump();
    EXPECT_EQ(recorder.summaries[0].records, 3);
    ASSERT_EQ(recorder.rowsOf("shared").size(), 2U);
    EXPECT_NE(recorder.rowsOf("shared")[0].thread, recorder.rowsOf("shared")[1].thread);
    EXPECT_EQ(recorder.row("left open").thread, number);
}

TEST_F(TimingThreads, callsAreCompleteWithReportsInBetween)
{
    constexpr int calls = 3000;
    TimesRecorder recorder;
    std::atomic<int> busy = 2;
    std::thread threads[2];
    for (std::thread &thread : threads) {
        thread = std::thread([&] {
            for (int i = 0; i < calls; ++i) {
                const unsigned id = static_cast<unsigned>(i % 50 + 1);
                analysis::startMethod(id, "a.cpp", 1, "a");
                analysis::endMethod(id);
            }
            --busy;
        });
    }
    class Nothing : public IAnalysisSummaryInterface
    {
        void methodInformation(const char *, int, const char *) override {}
    } receiver;
    while (busy > 0)
        analysis::reportMethods(&receiver); // suspends nothing
    for (std::thread &thread : threads)
        thread.join();
    recorder.dump();
    EXPECT_EQ(recorder.summaries[0].calls, 2 * calls);
    EXPECT_EQ(recorder.summaries[0].records, 100);
}

TEST_F(TimingThreads, reportsClearsAndSwitchesMayMeetMeasurements)
{
    TimesRecorder recorder;
    std::atomic<bool> stop = false;
    std::thread threads[2];
    for (std::thread &thread : threads)
        thread = std::thread([&] {
            while (!stop)
                measureMethods(50);
        });
    for (int round = 0; round < 30; ++round) {
        std::thread([] { measureMethods(20); }).join();
        recorder.dump();
        analysis::setTimeTracking(round % 3 == 0 ? 0 : 2);
        analysis::clearTimes();
        analysis::setTimeTracking(2);
    }
    stop = true;
    for (std::thread &thread : threads)
        thread.join();
    analysis::clearTimes();
    measureMethods(1);
    recorder.dump();
    EXPECT_EQ(recorder.summaries[0].calls, 2);
}

TEST_F(TimingThreads, endedThreadsStayInTheReportUntilAClear)
{
    TimesRecorder recorder;
    for (int i = 0; i < 3; ++i)
        std::thread([] { measureMethods(1); }).join();
    recorder.dump();
    EXPECT_EQ(recorder.summaries[0].calls, 6);
    analysis::clearTimes();
    std::thread([] { startMethod(1, "b.cpp", "b"); }).join();
    recorder.dump();
    EXPECT_EQ(recorder.summaries[0].records, 1);
}

/// Measures when the analyzer has seen its thread's end.
struct Late
{
    bool isArmed = false;

    ~Late()
    {
        if (isArmed)
            measureMethods(1);
    }
};

TEST_F(TimingThreads, methodsAreMeasuredUntilTheVeryEndOfAThread)
{
    TimesRecorder recorder;
    std::thread([] {
        static thread_local Late late;
        late.isArmed = true;
        measureMethods(1);
    }).join();
    recorder.dump();
    EXPECT_EQ(recorder.row("outer").calls, 2);
}

void expectSuccess(pid_t child)
{
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(TimingThreads, childOfAForkMeasuresWhateverOtherThreadsWereDoing)
{
    std::atomic<bool> stop = false;
    ForksAmidWork forks;
    std::thread busy([&] {
        while (!stop) {
            forks.turn([] {
                measureMethods(50);
                analysis::clearTimes();
                analysis::dumpTimes(nullptr, nullptr);
            });
        }
    });
    for (int round = 0; round < 20; ++round) {
        const pid_t child = forks.fork();
        if (child == 0) {
            alarm(60); // ends a child that hangs
            if (!analysis::isTimeTracked())
                _exit(2);
            TimesRecorder recorder;
            analysis::clearTimes();
            measureMethods(1);
            recorder.dump();
            _exit(recorder.row("outer").calls == 1 ? 0 : 1);
        }
        expectSuccess(child);
    }
    stop = true;
    busy.join();
}

TEST_F(TimingThreads, openMethodEndsInTheChildOfAForkUnderItsNumber)
{
    startMethod(1, "a.cpp", "forking");
    const pid_t child = fork();
    if (child == 0) {
        TimesRecorder recorder;
        endMethod(1);
        const bool isKnown = recorder.texts.empty();
        recorder.dump();
        _exit(isKnown && recorder.row("forking").thread == platform::kernelThreadId() ? 0 : 1);
    }
    expectSuccess(child);
}

TEST_F(TimingThreads, allocationsOfTheAnalyzerAreNotMeasured)
{
    const analysis::InsideAnalyzer inside;
    EXPECT_EQ(make_id("a.cpp", 1), -1);
    measureMethods(1);
    startMethod(1, "a.cpp", "a");
    TimesRecorder recorder;
    endMethod(2);
    recorder.dump();
    EXPECT_EQ(recorder.order, "tsc");
}

/// Does something with each text, and counts them.
class ActiveHandler : public IAnalysisOutputInterface
{
public:
    explicit ActiveHandler(std::function<void()> onText)
        : m_onText(std::move(onText))
    {}
    void textOutput(const char *, int, const char *) override
    {
        ++texts;
        m_onText();
    }
    void summary(int, qint64, qint64, qint64, quint64, quint64) override {}
    void tableRow(int, const char *, quint64, int, quint64, qint64, qint64) override {}
    void tableComplete() override {}

    std::atomic<int> texts{0};

private:
    const std::function<void()> m_onText;
};

TEST_F(TimingThreads, handlersMayTakeThemselvesAwayInTwoThreadsAtOnce)
{
    std::atomic<int> inside{0};
    ActiveHandler handler([&inside] {
        ++inside;
        while (inside < 2)
            std::this_thread::yield();
        analysis::setOutputHandler(nullptr);
    });
    analysis::setOutputHandler(&handler);
    std::thread other([] { analysis::endMethod(1); });
    analysis::endMethod(2);
    other.join();
    EXPECT_EQ(handler.texts, 2);
    EXPECT_FALSE(analysis::hasOutputHandler());
}

/// Takes a handler away while another thread is inside it.
void removeFromOtherThread(const std::function<void()> &whileItWaits)
{
    std::atomic<bool> isInside{false};
    std::atomic<bool> mayLeave{false};
    std::atomic<bool> isRemoved{false};
    ActiveHandler handler([&] {
        isInside = true;
        while (!mayLeave)
            std::this_thread::yield();
    });
    analysis::setOutputHandler(&handler);
    std::thread told([] { analysis::endMethod(1); });
    while (!isInside)
        std::this_thread::yield();
    std::thread remover([&] {
        analysis::removeOutputHandler(&handler);
        isRemoved = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // time for a removal that does not wait
    whileItWaits();
    EXPECT_FALSE(isRemoved);
    mayLeave = true;
    told.join();
    remover.join();
}

#if defined(ZORVAN_TSAN)
constexpr int roundsInChild = 0; // the sanitizer ends children that start threads
#else
constexpr int roundsInChild = 3;
#endif

TEST_F(TimingThreads, removalWaitsForTheDeliveryInProgressInAChildAsWell)
{
    removeFromOtherThread([] {
        const pid_t child = fork();
        if (child == 0) {
            alarm(60); // ends a child that hangs
            for (int round = 0; round < roundsInChild; ++round)
                removeFromOtherThread([] {});
            _exit(HasFailure() ? 1 : 0);
        }
        expectSuccess(child);
    });
}

TEST_F(TimingThreads, faultsOfAHandlerThatIsToldOfOneAreNotTold)
{
    ActiveHandler handler([] { analysis::endMethod(3); });
    analysis::setOutputHandler(&handler);
    analysis::endMethod(1);
    analysis::endMethod(2);
    EXPECT_EQ(handler.texts, 2);
    analysis::setOutputHandler(nullptr);
}

} // namespace
} // namespace Zorvan::test
