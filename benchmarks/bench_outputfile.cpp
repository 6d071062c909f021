// What a line in the output file costs, beside writing the same bytes by other means, on one and on two
// threads.

#include "host.h"
#include "peers.h"
#include "table.h"

#include <QFile>

#include <cstdio>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

constexpr int threadsAtMost = 2;
constexpr double tailLimit = 100'000; // ns
constexpr Setup setup{100, 200, true, true};

void writeWithQt(const QString &path, const std::string &bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void writeWithStdio(const std::string &path, const std::string &bytes)
{
    if (FILE *const file = std::fopen(path.c_str(), "ae")) {
        std::fprintf(file, "%s", bytes.c_str());
        std::fclose(file);
    }
}

/// Makes \a module print one line to a file of its own and returns that line.
std::string printedLine(moduleId module, const std::string &path, const QString &text)
{
    Debug::setOutputFileName(path.c_str());
    Debug::println(module, enabledClass, text, infoLevel);
    return lastLine(path);
}

/// The same bytes by hand, then by println().
std::vector<Subject> writers(const std::string &prefix, const std::string &bytes,
                             const std::function<void(int)> &print)
{
    const std::string raw = dataFile(prefix + "raw.log");
    const std::string stdio = dataFile(prefix + "stdio.log");
    const QString qt = QString::fromStdString(dataFile(prefix + "qt.log"));
    return {
        {"raw: open, write, close", repeated([raw, bytes] { writeRaw(raw, bytes); })},
        {"fopen, fprintf, fclose", repeated([stdio, bytes] { writeWithStdio(stdio, bytes); })},
        {"QFile: open, write, close", repeated([qt, bytes] { writeWithQt(qt, bytes); })},
        {"println()", print},
    };
}

/// On one thread: against raw. On two: also against one thread, and the slowest calls.
void printTable(const char *title, const std::vector<Subject> &subjects)
{
    constexpr std::size_t rawRow = 0;
    constexpr std::size_t printlnRow = 3;
    const std::vector<Result> results = measure(setup, onThreads({1, threadsAtMost}, subjects));
    Table table(title, Table::Unit::Microseconds);
    for (std::size_t i = 0; i < results.size(); ++i) {
        const std::size_t kind = i % subjects.size();
        const bool oneThread = i < subjects.size();
        const Result &raw = results[oneThread ? rawRow : subjects.size()];
        if (kind == rawRow)
            table.row(results[i]);
        else if (kind == printlnRow && oneThread)
            table.row(results[i], raw, 1.4);
        else
            table.row(results[i], raw);
    }
    const Result &shared = results[subjects.size() + printlnRow];
    table.row(shared, results[printlnRow], 1.5);
    table.percentileRow(shared, tailLimit);
    table.note(
        "Two threads: how long both took over the lines of both. Samples with sleep included, println(): "
        + number(shared.withSleep.call / 1000, 2) + " us, 99.9 % "
        + number(shared.withSleep.percentile999 / 1000, 2) + " us.");
}

/// One call with 100 lines, 100 calls with one line.
void printLongMessage(moduleId module, const QString &text, const std::string &bytes)
{
    constexpr int lines = 100;
    QString message;
    for (int line = 0; line < lines; ++line)
        message += text + QLatin1Char('\n');
    const std::string raw = dataFile("long-raw.log");
    const auto repeat = [](const std::function<void()> &call) {
        return repeated([call] {
            for (int line = 0; line < lines; ++line)
                call();
        });
    };
    constexpr Setup messages{1, 300, true, false};
    const std::vector<Result> results = measure(
        messages,
        {{"raw, 100 times", repeat([raw, bytes] { writeRaw(raw, bytes); })},
         {"100 messages of one line",
          repeat([module, text] { Debug::println(module, enabledClass, text, infoLevel); })},
         {"one message of 100 lines",
          repeated([module, message] { Debug::println(module, enabledClass, message, infoLevel); })}});
    Table table("100 lines to the output file", Table::Unit::Microseconds);
    table.row(results[0]);
    table.row(results[1], results[0]);
    table.row(results[2], results[1], 1.0);
}

} // namespace

int main()
{
    startLibrary();
    const moduleId module = makeModule("Measured");
    Debug::setOutputReceiver(module, ignoreLine); // in place of the standard output
    const QString text = QString::fromLatin1(messageText);
    const auto print = repeated([module, text] { Debug::println(module, enabledClass, text, infoLevel); });

    setFlags("activateFileProtocol,displayModuleName");
    const std::string line = printedLine(module, dataFile("println.log"), text);
    printTable("Output file, header of module, class and level", writers("", line, print));
    printLongMessage(module, text, line);

    setFlags("activateFileProtocol,displayModuleName,displayTimeStamp,displayThreadID");
    const std::string stamped = printedLine(module, dataFile("stamped-println.log"), text);
    std::vector<Subject> subjects = writers("stamped-", stamped, print);
    for (Subject &peer : peerSubjects(&Peer::toFile, {"spdlog", "glog", "log4cplus"}, dataFile("peer-")))
        subjects.push_back(std::move(peer));
    printTable("Output file, header also of time stamp and thread", subjects);
}
