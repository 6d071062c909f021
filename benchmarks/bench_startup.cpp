// From the start of a process to its first line, and what memory it has then, with the library and with Qt
// alone.

#include "startup.h"
#include "table.h"

#include <cstdlib>
#include <string>

using namespace bench;

namespace {

constexpr int rounds = 40;

/// What the children of one kind reported.
struct Starts
{
    std::vector<double> milliseconds;
    std::vector<double> residentKilobytes;
    std::vector<double> privateKilobytes;
};

bool start(const std::string &program, Starts &starts)
{
    const long long before = now();
    FILE *const child = popen(("exec '" + program + "'").c_str(), "re");
    if (child == nullptr)
        return false;
    long long firstLine = 0;
    long resident = 0;
    long dirty = 0;
    const bool read = std::fscanf(child, "%lld %ld %ld", &firstLine, &resident, &dirty) == 3;
    if (pclose(child) != 0 || !read)
        return false;
    starts.milliseconds.push_back(static_cast<double>(firstLine - before) / 1e6);
    starts.residentKilobytes.push_back(static_cast<double>(resident));
    starts.privateKilobytes.push_back(static_cast<double>(dirty));
    return true;
}

void row(const char *what, const std::vector<double> &with, const std::vector<double> &without, int decimals)
{
    const double difference = median(with) - median(without);
    say("| " + std::string(what) + " | " + number(median(with), decimals) + " | "
        + number(median(without), decimals) + " | " + number(difference, decimals) + " |\n");
}

} // namespace

int main(int, char *arguments[])
{
    if (std::getenv("ZORVAN_PROGRAMDATA") == nullptr) {
        std::fputs("Set ZORVAN_PROGRAMDATA to a folder for the log files, or use benchmarks/run.\n", stderr);
        return 2;
    }
    const std::string self = arguments[0];
    const std::string folder = self.substr(0, self.rfind('/') + 1);
    Starts library;
    Starts qt;
    for (int round = 0; round < rounds; ++round) {
        if (!start(folder + "startup_qt", qt) || !start(folder + "startup_library", library)) {
            std::fputs("A child did not report its start.\n", stderr);
            return 1;
        }
    }
    say("\n### Start of a process, medians of " + std::to_string(rounds) + "\n\n");
    say("| | with the library | Qt alone | difference |\n|---|--:|--:|--:|\n");
    row("start to first line, ms", library.milliseconds, qt.milliseconds, 2);
    row("resident memory, KiB", library.residentKilobytes, qt.residentKilobytes, 0);
    row("of it written to and private, KiB", library.privateKilobytes, qt.privateKilobytes, 0);
}
