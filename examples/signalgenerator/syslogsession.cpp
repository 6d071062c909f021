#include "syslogsession.h"

#include <array>
#include <cstdio>
#include <unistd.h>

namespace SignalGenerator {

namespace {

std::string nameOfMachine()
{
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

unsigned long long printable(std::uint64_t number)
{
    return number;
}

} // namespace

std::unique_ptr<SyslogSender> makeCollector(const Options &options)
{
    SyslogAddress address;
    if (options.collector.empty() || !parseSyslogAddress(options.collector, address))
        return nullptr;
    const SyslogFormat format(options.name.empty() ? nameOfMachine() : options.name, "signalgenerator",
                              std::to_string(getpid()));
    return std::make_unique<SyslogSender>(address, format);
}

void printReport(const SyslogReport &report)
{
    std::fprintf(
        stderr,
        "signalgenerator: syslog: %llu lines, %llu dropped in %llu gaps, %llu sent, %llu sent again, "
        "%llu unsent, %llu connections, %s\n",
        printable(report.lines), printable(report.dropped), printable(report.gaps), printable(report.sent),
        printable(report.sentAgain), printable(report.unsent), printable(report.connections),
        report.readToTheEnd ? "read to the end" : "end not confirmed");
}

} // namespace SignalGenerator
