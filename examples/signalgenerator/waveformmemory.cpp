#include "waveformmemory.h"

#include "modules.h"

#include <cstring>

namespace SignalGenerator {

WaveformMemory::~WaveformMemory()
{
    ZORVAN_FREE(m_samples);
}

void WaveformMemory::load(const std::string &samples)
{
    ZORVAN_TIME_METHOD();
    unload();
    if (samples.empty())
        return;
    m_samples = ZORVAN_MALLOC(samples.size());
    if (m_samples != nullptr)
        std::memcpy(m_samples, samples.data(), samples.size());
}

void WaveformMemory::unload()
{
    if (m_leaking && m_samples != nullptr)
        ZORVAN_PRINT_ONCE(Module::Wavemill, MessageClass::Debug, Level::Warning,
                          QStringLiteral("waveforms are not given back: a fault that was switched on"));
    else
        ZORVAN_FREE(m_samples);
    m_samples = nullptr;
}

} // namespace SignalGenerator
