#pragma once

#include "database.h"
#include "drivers/attenuator.h"
#include "waveformmemory.h"
#include "workerthread.h"

#include <functional>
#include <mutex>
#include <string>

namespace SignalGenerator {

struct SynthesizerSetting
{
    double frequencyHz = 0;
    double phaseDegrees = 0;
    bool externalReference = false;
};

struct OutputSetting
{
    double frequencyHz = 0; ///< the amplifier gives less at high frequencies
    double levelDbm = 0;
    bool on = false;
};

struct HardwareState
{
    bool locked = false;
    double frequencyHz = 0;
    int attenuationDecibel = 0;
};

/// The simulated boards of the instrument. Settings are applied one after the other in the hardware thread,
/// and take as long to settle as the real ones would: microseconds to a few milliseconds.
class Hardware
{
public:
    /// Called in the hardware thread with a positive error number and a detail.
    using FaultHandler = std::function<void(int code, const std::string &detail)>;

    explicit Hardware(FaultHandler onFault);

    void setSynthesizer(const SynthesizerSetting &setting);
    void setOutput(const OutputSetting &setting);
    /// Modulators and baseband generator take their values from \a settings as they are.
    void setModulator(const Settings &settings);
    void setBaseband(const Settings &settings, const std::string &samples);
    /// See WaveformMemory.
    void setLeaking(bool leaking) { m_waveform.setLeaking(leaking); }
    void waitUntilSettled();

    [[nodiscard]] HardwareState state() const;

private:
    void tune(const SynthesizerSetting &setting);
    void attenuate(const OutputSetting &setting);
    void generate(const Settings &settings, const std::string &samples);

    const FaultHandler m_onFault;
    mutable std::mutex m_mutex; // guards m_state
    HardwareState m_state;
    // hardware thread only
    int m_octave = 0; // how often the oscillator's frequency is halved
    attenuator m_attenuator{};
    WaveformMemory m_waveform;
    WorkerThread m_thread{"hardware"}; // last, so that it ends first
};

} // namespace SignalGenerator
