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

/// Front end of a terminal: feeds lines to the instrument and writes its replies to the standard output.
class Console
{
public:
    /// Makes the module "SG4000-Console" with a class of its own for the remote traffic; after
    /// Debug::initDebug().
    explicit Console(Instrument &instrument);

    /// Carries out \a script line by line; empty lines and lines that begin with '#' are skipped.
    Traffic run(std::istream &script);

private:
    void runLine(const std::string &line);

    Instrument &m_instrument;
    Zorvan::moduleId m_module;
    Traffic m_traffic;
};

} // namespace SignalGenerator
