// What a line costs without a file: to a receiver, and to the line tap, beside formatting alone in other
// loggers.
//
// Behind the line tap always comes the standard output. It is a stream that drops everything inside the
// process, so that the line tap is what is measured; once more, for comparison, with the system calls of a
// flush to /dev/null.

#include "host.h"
#include "peers.h"
#include "table.h"

#include <cstdio>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

/// Prints to the line tap with \a output as standard output.
std::function<void(int)> tapped(moduleId module, const QString &text, FILE *output)
{
    const auto print = repeated([module, text] { Debug::println(module, enabledClass, text, infoLevel); });
    return [print, output](int calls) {
        stdout = output;
        print(calls);
    };
}

} // namespace

int main()
{
    startLibrary();
    setFlags("displayModuleName,displayTimeStamp,displayThreadID");
    const moduleId module = makeModule("Tapped");
    const moduleId received = makeModule("Received");
    Debug::setOutputReceiver(received, ignoreLine);
    const QString text = QString::fromLatin1(messageText);

    std::vector<Subject> subjects = peerSubjects(&Peer::formatted, {"spdlog", "log4cplus"});
    const std::size_t peers = subjects.size();
    subjects.push_back({"println() to a receiver", repeated([received, text] {
                            Debug::println(received, enabledClass, text, infoLevel);
                        })});
    subjects.push_back({"println() to the line tap", tapped(module, text, droppingStream())});
    const std::size_t withGoal = subjects.size();
    subjects.push_back(
        {"println() to line tap and /dev/null", tapped(module, text, std::fopen("/dev/null", "w"))});

    constexpr Setup setup{500, 300, true, false};
    const std::vector<Result> results = measure(setup, onThreads({1, 2}, subjects));
    Table table("Lines without a file", Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < results.size(); ++i) {
        const std::size_t kind = i % subjects.size();
        const std::size_t group = i - kind;
        if (kind < peers || kind >= withGoal)
            table.row(results[i]);
        for (std::size_t peer = 0; kind >= peers && kind < withGoal && peer < peers; ++peer)
            table.row(results[i], results[group + peer], 1.0);
    }
    table.note("Two threads: how long both took over the lines of both.");
}
