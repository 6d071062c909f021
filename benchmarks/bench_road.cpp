// The way of a finished line into the thread with the event loop: how long it holds up the thread that hands
// the line over, and how long the line takes to its sink; beside other ways to get it there.

#include "host.h"
#include "peers.h"
#include "roads.h"
#include "table.h"
#include "waits.h"

#include <QCoreApplication>

#include <chrono>
#include <thread>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

// All producers together: threads that see more than 200 lines wait are held back.
constexpr int linesOfSample = 160;
constexpr int rounds = 400;
constexpr double tailLimit = 50'000; // ns
// Tells the library's queue that the first line waits.
constexpr auto linesWait = static_cast<QEvent::Type>(1001);

/// What went along a road so far.
struct Traffic
{
    long events;
    long batches;
    long lines;
};

Traffic trafficOn(const EventCounter &events, const CountingStream &end)
{
    return {events.count(), end.writes(), end.lines()};
}

std::string description(const std::string &road, const Traffic &before, const Traffic &now)
{
    const auto batches = static_cast<double>(now.batches - before.batches);
    return road + ": " + number(static_cast<double>(now.events - before.events) / batches, 3)
        + " events for each batch of " + number(static_cast<double>(now.lines - before.lines) / batches, 1)
        + " lines on the average.";
}

/// The ways of one line, and the counters on two of them.
class Roads
{
public:
    explicit Roads(moduleId module)
        : m_module(module)
        , m_line(QStringLiteral("<     Measured> <debug message>, <    Info>: ")
                 + QString::fromLatin1(messageText))
    {}

    enum Road : std::size_t {
        ListRow,
        SharingRow,
        CallRow,
        LibraryRow,
        FirstPeerRow,
    };

    std::vector<Subject> subjects()
    {
        std::vector<Subject> all = {
            subject("mutex, list, event for each batch", [this] { m_list.handOver(copyOfLine()); }),
            subject("the same, sharing one text", [this] { m_list.handOver(m_line); }),
            subject("queued call for each line", [this] { m_calls.handOver(m_line); }),
            subject("printFormattedString()",
                    [this] { Debug::printFormattedString(m_module, enabledClass, infoLevel, m_line); }),
        };
        for (Subject &peer : peerSubjects(&Peer::handedOver, {"spdlog"}, m_line.toStdString()))
            all.push_back(std::move(peer));
        return all;
    }

    [[nodiscard]] Traffic libraryTraffic() const { return trafficOn(m_libraryEvents, standardOutput()); }
    [[nodiscard]] Traffic listTraffic() const { return trafficOn(m_listEvents, m_list.stream()); }

private:
    template <typename HandOver>
    static Subject subject(const char *name, HandOver handOver)
    {
        Subject subject{name, repeated(handOver)};
        subject.settle = settleLoop;
        subject.consumed = true;
        return subject;
    }

    /// A list keeps what it gets until it is shown, so that each line has to be a text of its own.
    [[nodiscard]] QString copyOfLine() const { return QString(m_line.constData(), m_line.size()); }

    const moduleId m_module;
    const QString m_line;
    ListRoad m_list;
    CallRoad m_calls;
    EventCounter m_libraryEvents{linesWait};
    EventCounter m_listEvents{ListRoad::eventType()};
};

/// Single calls are timed in samples of their own: two readings of the clock are half of what is measured.
std::vector<Result> timeSingleCalls(std::vector<Subject> subjects, int producers)
{
    constexpr Setup setup{linesOfSample, rounds, true, true, true};
    for (Subject &subject : subjects)
        subject.name += ", timed singly";
    return measure(setup, onThreads({producers}, subjects));
}

void measureHandOver(const Roads &roads, const std::vector<Subject> &subjects, int producers)
{
    constexpr Setup setup{linesOfSample, rounds, true, false, true};
    const Traffic libraryBefore = roads.libraryTraffic();
    const Traffic listBefore = roads.listTraffic();
    const std::vector<Result> results = measure(setup, onThreads({producers}, subjects));
    const std::string notes = description("Library", libraryBefore, roads.libraryTraffic()) + ' '
        + description("List", listBefore, roads.listTraffic());
    const std::vector<Result> calls =
        timeSingleCalls({subjects[Roads::ListRow], subjects[Roads::LibraryRow]}, producers);

    const std::string title =
        "Handing a line over to the loop's thread, producers: " + std::to_string(producers);
    Table table(title.c_str(), Table::Unit::Nanoseconds);
    const Result &baseline = results[Roads::ListRow];
    const Result &ours = results[Roads::LibraryRow];
    table.row(baseline);
    for (std::size_t i = 0; i < results.size(); ++i) {
        if (i != Roads::ListRow && i != Roads::LibraryRow)
            table.row(results[i], baseline);
    }
    table.row(ours, baseline, 0.85);
    table.row(ours, results[Roads::SharingRow]);
    table.row(ours, results[Roads::CallRow], 1.0);
    for (std::size_t peer = Roads::FirstPeerRow; peer < results.size(); ++peer)
        table.row(ours, results[peer], 1.0);
    table.row(calls[0]);
    table.percentileRow(calls[1], tailLimit);
    table.note(notes);
}

/// Takes events and counts them.
class Arrivals final : public QObject
{
public:
    [[nodiscard]] long count() const { return m_count.load(std::memory_order_acquire); }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        m_count.fetch_add(1, std::memory_order_release);
        return true;
    }

private:
    std::atomic<long> m_count{0};
};

template <typename Counter>
void waitForChange(Counter counter, long before)
{
    while (counter() == before)
        std::this_thread::yield();
}

void measureLatency(moduleId module, Arrivals &arrivals)
{
    constexpr int latencyRounds = 3000;
    const auto post = [&arrivals] {
        const long before = arrivals.count();
        QCoreApplication::postEvent(&arrivals, new QEvent(QEvent::User));
        waitForChange([&arrivals] { return arrivals.count(); }, before);
    };
    const auto print = [module, text = QString::fromLatin1(messageText)] {
        const long before = standardOutput().lines();
        Debug::println(module, enabledClass, text, infoLevel);
        waitForChange([] { return standardOutput().lines(); }, before);
    };
    const auto rest = [] { std::this_thread::sleep_for(std::chrono::microseconds(300)); };
    const std::vector<WaitTimes> times =
        timeWaits(latencyRounds, {{"one posted event", post, rest}, {"println() to the sink", print, rest}});
    Table table("One line, everything asleep", Table::Unit::Microseconds);
    for (const double share : {0.5, 0.99}) {
        const std::string suffix = share < 0.9 ? ", median" : ", 99 %";
        table.row(resultAt(times[0], share, suffix));
        table.row(resultAt(times[1], share, suffix), resultAt(times[0], share, suffix), 2.0);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    standardOutput();
    startLibrary();
    setFlags("displayModuleName");
    Debug::setUtilityCallbackHandler(nullptr); // without a line tap
    const moduleId module = makeModule("Measured");
    Roads roads(module);
    Arrivals arrivals;
    measureBesideLoop([&] {
        const std::vector<Subject> subjects = roads.subjects();
        for (const int producers : {1, 2, 4})
            measureHandOver(roads, subjects, producers);
        measureLatency(module, arrivals);
    });
    Debug::exitDebug();
}
