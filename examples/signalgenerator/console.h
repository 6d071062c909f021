#pragma once

#include <zorvan/debug.h>

#include <iosfwd>
#include <string>

namespace SignalGenerator {

class Instrument;

/// How much went through a console.
struct Traffic
{
    int commandLines = 0;
    int replies = 0;
};

/// Says on the standard error how much it was.
void printSummary(const Traffic &traffic, quint64 tappedLines);

/// Front end of a terminal: feeds lines to the instrument and writes its replies to the standard output.
class Console
{
public:
    /// Makes the module "SG4000-Console" with a class of its own for the remote traffic; after
    /// Debug::initDebug().
    explicit Console(Instrument &instrument);

    /// Carries out \a script line by line.
    Traffic run(std::istream &script);
    /// Carries out one line and returns the reply, which is on the standard output by then. Nothing happens
    /// on an empty line and on one that begins with '#'. Used by one thread at a time.
    std::string runLine(const std::string &line);
    [[nodiscard]] const Traffic &traffic() const { return m_traffic; }

private:
    Instrument &m_instrument;
    Zorvan::moduleId m_module;
    Traffic m_traffic;
};

} // namespace SignalGenerator
