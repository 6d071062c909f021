// Messages beside other loggers, on 1 to 8 threads. Without an argument: rows of the comparison; "growth":
// how the library's own figures grow with the number of threads. "handover" and "handover-growth" do the same
// for lines that another thread takes, in a process of their own: it has an event loop.

#include "comparison.h"
#include "guiloop.h"
#include "host.h"
#include "peers.h"
#include "table.h"

#include <zorvan/macros.h>

#include <QCoreApplication>

#include <cstring>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

constexpr int clippingLevel = 2;
constexpr int passingLevel = 2;
constexpr int refusedLevel = infoLevel;
const std::vector<int> threadCounts = {1, 2, 4, 8};

constexpr Setup refusal{20000, 40, false, false};
constexpr Setup lines{480, 30, true, false};
constexpr Setup formatting{400, 60, true, false};
constexpr Setup handOver{160, 100, true, false, true};

std::vector<double> timesByThreads(const Setup &setup, const Subject &subject)
{
    std::vector<double> times;
    for (const Result &result : measure(setup, onThreads(threadCounts, {subject})))
        times.push_back(result.figures.call);
    return times;
}

/// What takes turns: a subject of this library, then those of the peers that are installed.
struct Lineup
{
    template <typename... Arguments>
    Lineup(Subject own, Subject (*Peer::*kind)(Arguments...), const std::vector<const char *> &names,
           const std::decay_t<Arguments> &...arguments)
        : subjects{std::move(own)}
    {
        for (const char *const name : names) {
            const Peer *const peer = findPeer(name);
            (peer != nullptr ? peers : missing).push_back(name);
            if (peer != nullptr)
                subjects.push_back((peer->*kind)(arguments...));
        }
    }

    void compare(std::string what, const Setup &setup, const std::vector<int> &threads) const
    {
        for (const std::string &name : missing)
            what += " (" + name + " is not installed)";
        comparisonRows(what, measure(setup, onThreads(threads, subjects)), peers);
    }

    std::vector<Subject> subjects;
    std::vector<std::string> peers;
    std::vector<std::string> missing;
};

class Loggers
{
public:
    Loggers()
        : m_module(makeModule("Measured"))
        , m_tapped(makeModule("Tapped"))
        , m_text(QString::fromLatin1(messageText))
    {
        Debug::setOutputReceiver(m_module, ignoreLine); // in place of the standard output
        Debug::setOutputFileName(dataFile("println.log").c_str());
        Debug::setClippingLevel(m_module, clippingLevel);
        stdout = droppingStream(); // what passes the line tap ends there
    }

    [[nodiscard]] Subject println(const char *name, int level) const
    {
        return printlnTo(m_module, name, level);
    }

    void compareRefused() const
    {
        const std::vector<const char *> all = {"spdlog", "glog", "log4cplus", "Qt"};
        const Subject macro{"ZORVAN_PRINT, refused", repeated([module = m_module] {
                                ZORVAN_PRINT(module, enabledClass, refusedLevel, messageText);
                            })};
        Lineup(println("refused", refusedLevel), &Peer::refused, all)
            .compare("Message refused by its level, `println()`", refusal, {1, 2});
        Lineup(macro, &Peer::refused, all)
            .compare("The same by `ZORVAN_PRINT`, which builds no text", refusal, {1, 2});
    }

    void compareFiles() const
    {
        withFile();
        const std::string folder = dataFile("peer-");
        const Subject print = println("println()", passingLevel);
        Lineup(print, &Peer::toFile, {"spdlog", "glog", "log4cplus", "Qt"}, folder)
            .compare("Line to a file, flushed; the library also opens and closes it", lines, threadCounts);
        compareWithRaw(print);
        Lineup(print, &Peer::toFileLater, {"spdlog", "log4cplus"}, folder)
            .compare("The library's line in its file; peers' asynchronous, only handed over", heldUp(),
                     threadCounts);
    }

    void compareFormatted() const
    {
        withoutFile();
        const std::vector<const char *> all = {"spdlog", "glog", "log4cplus", "Qt"};
        Lineup(println("println() to a receiver", passingLevel), &Peer::formatted, all)
            .compare("Formatted line, to a receiver", formatting, threadCounts);
        Lineup(printlnTo(m_tapped, "println() to the line tap", passingLevel), &Peer::formatted, all)
            .compare("Formatted line, to the line tap and a stream that drops it", formatting, threadCounts);
    }

    /// The library's own figures, by threads.
    void showGrowth() const
    {
        const GrowthTable table("Threads", {threadCounts.begin(), threadCounts.end()});
        const auto row = [&table](const char *what, const Setup &setup, const Subject &subject) {
            table.row(what, timesByThreads(setup, subject));
        };
        withFile();
        row("Line to the file, per line of all threads", lines, println("to a file", passingLevel));
        withoutFile();
        row("Line to a receiver, per line of all threads", formatting, println("received", passingLevel));
        row("Line to the line tap, per line of all threads", formatting,
            printlnTo(m_tapped, "tapped", passingLevel));
    }

private:
    [[nodiscard]] Subject printlnTo(moduleId module, const char *name, int level) const
    {
        return {name, repeated([module, level, text = m_text] {
                    Debug::println(module, enabledClass, text, level);
                })};
    }
    static Setup heldUp()
    {
        Setup setup = lines;
        setup.ownTime = true;
        return setup;
    }
    static void withFile()
    {
        setFlags("activateFileProtocol,displayModuleName,displayTimeStamp,displayThreadID");
    }
    static void withoutFile() { setFlags("displayModuleName,displayTimeStamp,displayThreadID"); }

    /// What opening and closing costs anybody.
    void compareWithRaw(const Subject &print) const
    {
        print.body(1);
        const std::string bytes = lastLine(dataFile("println.log"));
        const std::string path = dataFile("raw.log");
        const Subject raw{"raw", repeated([path, bytes] { writeRaw(path, bytes); })};
        comparisonRows("The same bytes: open, write, close", measure(lines, {print, raw}), {"system calls"});
    }

    const moduleId m_module;
    const moduleId m_tapped;
    const QString m_text;
};

Subject handingOver(moduleId module)
{
    Subject subject{"printFormattedString()", repeated([module, line = QString::fromLatin1(messageText)] {
                        Debug::printFormattedString(module, enabledClass, infoLevel, line);
                    })};
    subject.settle = settleLoop;
    subject.consumed = true;
    return subject;
}

void runBesideLoop(int &count, char *arguments[], bool growth)
{
    const QCoreApplication application(count, arguments);
    standardOutput();
    startLibrary();
    setFlags("displayModuleName");
    Debug::setUtilityCallbackHandler(nullptr); // without a line tap
    const moduleId module = makeModule("Measured");
    measureBesideLoop([module, growth] {
        const Lineup lineup(handingOver(module), &Peer::handedOver, {"spdlog"}, std::string(messageText));
        if (!growth) {
            lineup.compare("Finished line handed over to another thread, per call", handOver, threadCounts);
            return;
        }
        GrowthTable("", {threadCounts.begin(), threadCounts.end()}, false)
            .row("Line handed over, per call of each thread",
                 timesByThreads(handOver, lineup.subjects.front()));
    });
    Debug::exitDebug();
}

} // namespace

int main(int count, char *arguments[])
{
    const std::string mode = count > 1 ? arguments[1] : "";
    if (mode.rfind("handover", 0) == 0) {
        runBesideLoop(count, arguments, mode != "handover");
        return 0;
    }
    startLibrary();
    const Loggers loggers;
    if (mode == "growth") {
        loggers.showGrowth();
        return 0;
    }
    comparisonTitle();
    loggers.compareRefused();
    loggers.compareFiles();
    loggers.compareFormatted();
}
