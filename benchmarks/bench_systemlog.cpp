// What a message in the system log costs, beside writing the same bytes by hand.

#include "host.h"
#include "table.h"

#include <chrono>
#include <cstdio>
#include <ctime>

using namespace bench;

namespace {

void logMessage()
{
    Zorvan::gyxLog("hardware.cpp", 217, "frequency set to %d Hz, level %s dBm\n", 1000000000, "-10.50");
}

/// What a program without a logger does.
void logWithStdio(const std::string &path)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y/%m/%d-%H:%M:%S", &local);
    if (FILE *const file = std::fopen(path.c_str(), "ae")) {
        std::fprintf(file, "%s.%03d: %s(%d): frequency set to %d Hz, level %s dBm\n", stamp,
                     static_cast<int>(now.tv_nsec / 1'000'000), "hardware.cpp", 217, 1000000000, "-10.50");
        std::fclose(file);
    }
}

} // namespace

int main()
{
    startLibrary();
    logMessage();
    const std::string bytes = lastLine(dataFile("GYX-syslog-0.log"));
    const std::string raw = dataFile("systemlog-raw.log");
    const std::string stdio = dataFile("systemlog-stdio.log");

    constexpr Setup setup{50, 200, true, true};
    const std::vector<Result> results =
        measure(setup,
                onThreads({1, 2},
                          {{"raw: open, write, close", repeated([raw, bytes] { writeRaw(raw, bytes); })},
                           {"localtime, strftime, fopen, fprintf, fclose",
                            repeated([stdio] { logWithStdio(stdio); })},
                           {"gyxLog()", repeated(logMessage)}}));
    Table table("System log", Table::Unit::Microseconds);
    table.row(results[0]);
    table.row(results[1], results[0]);
    table.row(results[2], results[0], 1.4);
    table.row(results[2], results[1]);
    table.row(results[3]);
    table.row(results[4], results[3]);
    table.row(results[5], results[3]);
    table.row(results[5], results[2]);
    table.note("Two threads: how long both took over the messages of both.");
}
