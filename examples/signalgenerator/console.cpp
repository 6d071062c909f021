#include "console.h"

#include "instrument.h"
#include "print.h"

#include <cstdio>
#include <istream>

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

constexpr int trafficClass = 2;

// Each description is a piece of the line header, blanks included.
const char *classes[] = {"<debug message>, ", "<  time meas  >, ", "<   traffic   >, ", nullptr};
const char *levels[] = {"<+ CRITICAL +>: ", "<       Error>: ", "<     Warning>: ",
                        "<        Info>: ", "<   Time Meas>: ", nullptr};

} // namespace

void printSummary(const Traffic &traffic, quint64 tappedLines)
{
    std::fprintf(stderr, "signalgenerator: %d command lines, %d replies, %llu lines through the line tap\n",
                 traffic.commandLines, traffic.replies, static_cast<unsigned long long>(tappedLines));
}

Console::Console(Instrument &instrument)
    : m_instrument(instrument)
    , m_module(Debug::createModule("SG4000-Console", "Console"))
{
    Debug::setMessageClassDescriptions(m_module, -1, classes);
    Debug::setMessageLevelDescriptions(m_module, -1, levels);
}

Traffic Console::run(std::istream &script)
{
    std::string line;
    while (std::getline(script, line))
        runLine(line);
    return m_traffic;
}

std::string Console::runLine(const std::string &line)
{
    const std::size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string::npos || line[begin] == '#')
        return {};
    ++m_traffic.commandLines;
    printClass(m_module, trafficClass, Level::Info, "-> %s", line.c_str());
    const std::string reply = m_instrument.execute(line);
    if (!reply.empty()) {
        ++m_traffic.replies;
        std::printf("<- %s\n", reply.c_str());
        std::fflush(stdout); // keeps its place among the lines of the library
    }
    return reply;
}

} // namespace SignalGenerator
