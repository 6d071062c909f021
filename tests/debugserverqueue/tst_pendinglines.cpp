// The lines that wait: what wakes the GUI thread and when, their count, their limit, and their batches.

#include "debugserverqueue/debugserverqueue.h"
#include "debugserverqueue/events.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/pendinglines.h"
#include "support/guiapplication.h"
#include "support/programdata.h"

#include <chrono>
#include <gtest/gtest.h>

using namespace Zorvan;
using namespace Zorvan::test;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

class Waiting : public ::testing::Test
{
protected:
    void append(const std::string &line) { wakeUps += lines.append(line); }
    std::string batch()
    {
        std::string text = "of before";
        isTaken = lines.take(text);
        return text;
    }

    PendingLines lines;
    int wakeUps = 0;
    bool isTaken = false;
};

TEST_F(Waiting, LinesWakeOncePerBatch)
{
    for (const char *line : {"one", "", "three"})
        append(line);
    EXPECT_EQ(wakeUps, 1);
    EXPECT_EQ(lines.count(), 3);
    EXPECT_EQ(batch(), "one\n\nthree");
    EXPECT_EQ(lines.count(), 0);
    EXPECT_EQ(batch(), "");
    EXPECT_FALSE(isTaken);
    append("");
    EXPECT_EQ(wakeUps, 2);
    EXPECT_EQ(batch(), "");
    EXPECT_TRUE(isTaken) << "one empty line is a line";
    append("dropped");
    lines.clear();
    append("four");
    EXPECT_EQ(wakeUps, 4) << "anew after dropping";
    lines.forgetCount();
    EXPECT_EQ(lines.count(), 0);
    append("five");
    EXPECT_EQ(wakeUps, 4);
    EXPECT_EQ(batch(), "four\nfive");
}

TEST_F(Waiting, LinesKeepTheirOrderWhateverTheirSize)
{
    std::string expected;
    for (int i = 0; i < 300; ++i) {
        const std::string line(static_cast<std::size_t>(i % 7 == 0 ? 70000 : i * 11),
                               static_cast<char>('a' + i % 26));
        expected += (i ? "\n" : "") + line;
        append(line);
    }
    EXPECT_EQ(batch(), expected);
    EXPECT_EQ(wakeUps, 1);
}

TEST_F(Waiting, LinesThatNobodyTakesAreDroppedFromTheOldestOn)
{
    constexpr int most = 1000000;
    for (int i = 0; i < most + 50000; ++i)
        append(std::to_string(i));
    const std::vector<std::string> kept = linesOf(batch());
    EXPECT_LE(kept.size(), static_cast<std::size_t>(most));
    EXPECT_GT(kept.size(), static_cast<std::size_t>(most - 50000)) << "not more than necessary";
    ASSERT_EQ(kept.back(), std::to_string(most + 50000 - 1));
    EXPECT_EQ(std::stoul(kept.front()) + kept.size(), most + 50000UL) << "without a gap";
    for (int i = 0; i < 300; ++i)
        append(std::string(1 << 20, 'x'));
    EXPECT_LE(batch().size(), (257U << 20));
    EXPECT_EQ(linesOf(readFile(libraryFile("GYX-syslog-0.log"))).size(), 2U) << "told once for each batch";
}

/// Counts the events that lines send into a queue.
class Batches : public QObject, public ::testing::Test
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        events += event->type() == eventType(QueueEvent::LinesWait);
        return false;
    }

protected:
    Batches()
    {
        Debug::initDebug();
        QCoreApplication::processEvents();
        guibridge::queueHere()->installEventFilter(this);
    }
    ~Batches() override { Debug::exitDebug(); }
    static void print(int lines)
    {
        for (int i = 0; i < lines; ++i)
            Debug::println(2, 0, QStringLiteral("line"), 0);
    }
    /// How long a batch of so many lines is held back.
    static milliseconds delayOf(int lines)
    {
        print(lines);
        const auto start = steady_clock::now();
        while (guibridge::waitingLines() > 0)
            QCoreApplication::processEvents();
        return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    }

    int events = 0;

private:
    TestApplication<QCoreApplication> m_application;
};

TEST_F(Batches, CostOneEventEach)
{
    for (int batch = 1; batch <= 3; ++batch) {
        print(50);
        QCoreApplication::sendPostedEvents();
        print(50);
        QCoreApplication::processEvents();
        EXPECT_EQ(guibridge::waitingLines(), 0) << "a short batch does not wait";
        EXPECT_EQ(events, batch);
    }
}

TEST_F(Batches, WaitLongerTheLongerTheyAre)
{
    EXPECT_GE(delayOf(1000), milliseconds(18)); // 20 less what Qt rounds
    const milliseconds longDelay = delayOf(10000);
    EXPECT_GE(longDelay, milliseconds(180));
    EXPECT_LT(longDelay, milliseconds(1800));
    milliseconds ofTheFirstMoment = longDelay;
    for (int tries = 0; tries < 5 && ofTheFirstMoment >= milliseconds(180);
         ++tries) { // others may need the processor
        print(250);
        QCoreApplication::sendPostedEvents();
        ofTheFirstMoment = delayOf(10000);
    }
    EXPECT_LT(ofTheFirstMoment, milliseconds(180));
}

} // namespace
