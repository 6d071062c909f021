#include "instrument.h"

#include "commands.h"
#include "print.h"
#include "settingtimes.h"

namespace SignalGenerator {

Instrument::Instrument()
    : m_hardware([this](int code, const std::string &detail) { m_errors.push(code, detail); })
    , m_kernel(m_database, m_storage, m_hardware)
    , m_sequencer(m_kernel)
    , m_parser(m_errors)
{
    const TimeMeasurement measurement(Module::Startup, "start");
    m_database.setListener([this](GroupSet changed) { m_kernel.settingsChanged(changed); });
    addCommands(m_parser, {m_errors, m_database, m_storage, m_hardware, m_kernel, m_sequencer});
    m_database.reset();
    m_kernel.waitUntilSettled();
    print(Module::Startup, Level::Info, "instrument is ready");
}

Instrument::~Instrument()
{
    print(Module::Startup, Level::Info, "instrument is switched off");
}

std::string Instrument::execute(std::string_view line)
{
    const TimedStage total(Zorvan::timeMeasTotal);
    m_kernel.beginLine();
    std::string reply = m_parser.execute(line);
    m_kernel.endLine();
    return reply;
}

Status Instrument::status() const
{
    Settings settings = m_database.snapshot();
    settings[ParameterId::Frequency] += settings[ParameterId::FrequencyOffset];
    settings[ParameterId::Level] += settings[ParameterId::LevelOffset];
    return {settings, m_hardware.state(), m_errors.count()};
}

void Instrument::abort()
{
    m_sequencer.requestAbort();
}

void Instrument::close()
{
    m_sequencer.close();
}

} // namespace SignalGenerator
