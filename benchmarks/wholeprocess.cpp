#include "wholeprocess.h"

#include "comparison.h"
#include "table.h"

#include <chrono>
#include <cstdlib>
#include <optional>

namespace bench {

namespace {

/// None if the command fails.
std::optional<double> seconds(const std::string &command)
{
    const auto start = std::chrono::steady_clock::now();
    if (std::system(command.c_str()) != 0)
        return {};
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool hasHeaptrack()
{
    return std::system("command -v heaptrack > /dev/null") == 0;
}

std::string underHeaptrack(const std::string &self)
{
    const std::string data = std::string(std::getenv("ZORVAN_PROGRAMDATA")) + "/heaptrack";
    return "heaptrack -o '" + data + "' '" + self + "' plain > /dev/null 2>&1";
}

} // namespace

bool compareWithHeaptrack(const std::string &self)
{
    constexpr std::size_t times = 3;
    const bool installed = hasHeaptrack();
    std::vector<double> plain;
    std::vector<double> tracked;
    std::vector<double> observed;
    while (plain.size() < times) {
        const auto malloced = seconds("'" + self + "' plain");
        const auto own = seconds("'" + self + "' pairs");
        const auto under = installed ? seconds(underHeaptrack(self)) : 0;
        if (!malloced || !own || !under)
            return false;
        plain.push_back(*malloced * 1e9);
        tracked.push_back(*own * 1e9);
        observed.push_back(*under * 1e9);
    }
    const auto row = [&](const char *what, double base, double divisor) {
        std::vector<PeerFigure> peers = {
            {installed ? "heaptrack" : "heaptrack, which is not installed:", {}}};
        if (installed)
            peers.front().figure = (median(observed) - base) / divisor;
        comparisonRow(what, (median(tracked) - base) / divisor, peers);
    };
    row("5,000,000 of 1,000 blocks replaced, tracked, whole process", 0, 1);
    row("Time that tracking adds to a release and an allocation, start and end of the tool included",
        median(plain), wholeProcessPairs);
    return true;
}

bool compareProcesses(const std::string &self)
{
    const std::optional<double> malloced = seconds("'" + self + "' plain");
    bool succeeded = malloced.has_value();
    say("\n### " + std::to_string(wholeProcessPairs)
        + " pairs, whole process\n\n| | s | times plain |\n|---|--:|--:|\n");
    const auto row = [&](const char *what, std::optional<double> time) {
        succeeded = succeeded && time.has_value();
        say("| " + std::string(what) + " | " + (time ? number(*time, 2) : "failed") + " | "
            + (time && malloced ? number(*time / *malloced, 1) : "") + " |\n");
    };
    row("malloc/free", malloced);
    row("xmalloc/xfree, tracked", seconds("'" + self + "' pairs"));
    if (hasHeaptrack())
        row("malloc/free under heaptrack", seconds(underHeaptrack(self)));
    else
        say("\nheaptrack is not installed.\n");
    return succeeded;
}

} // namespace bench
