#include "hardware.h"

#include "errorqueue.h"
#include "print.h"
#include "settingtimes.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <thread>
#include <utility>

namespace SignalGenerator {

namespace {

using std::chrono::microseconds;

constexpr double highestOscillatorHz = 6e9;
constexpr double amplifierMaximumDbm = 18;
constexpr microseconds lockPollInterval{50};
constexpr int pollsUntilLocked = 3;
constexpr int pollsUntilWarning = 20;
constexpr int pollsUntilGivenUp = 30;
constexpr microseconds relayTime{400};
constexpr microseconds modulatorTime{120};
constexpr microseconds loadTimePerSample{2};

void settle(microseconds time)
{
    std::this_thread::sleep_for(time);
}

const char *onOff(const Settings &settings, ParameterId id)
{
    return settings.isOn(id) ? "on" : "off";
}

// The oscillator covers one octave; lower frequencies are divided down from it.
int octaveOf(double frequencyHz)
{
    return static_cast<int>(std::floor(std::log2(highestOscillatorHz / frequencyHz)));
}

bool waitForLock(int octavesApart, bool externalReference)
{
    // The simulated instrument has nothing connected to its reference input.
    const int needed = externalReference ? pollsUntilGivenUp : pollsUntilLocked + octavesApart;
    for (int poll = 1; poll <= needed; ++poll) {
        settle(lockPollInterval);
        if (poll == pollsUntilWarning)
            print(Module::BaseBoard, Level::Warning, "oscillator has not locked after %d polls", poll);
    }
    return !externalReference;
}

void modulate(const Settings &settings)
{
    ZORVAN_TIME_METHOD();
    const TimeMeasurement measurement(Module::AnalogBoard, "modulator");
    settle(modulatorTime);
    print(Module::AnalogBoard, Level::Info,
          "AM %s (%g %%), FM %s (%g Hz), pulse %s (%g us), LF generator %g Hz",
          onOff(settings, ParameterId::AmState), settings[ParameterId::AmDepth],
          onOff(settings, ParameterId::FmState), settings[ParameterId::FmDeviation],
          onOff(settings, ParameterId::PulseState), settings[ParameterId::PulsePeriod] * 1e6,
          settings[ParameterId::LfFrequency]);
}

} // namespace

Hardware::Hardware(FaultHandler onFault)
    : m_onFault(std::move(onFault))
{}

void Hardware::setSynthesizer(const SynthesizerSetting &setting)
{
    m_thread.post([this, setting] { tune(setting); });
}

void Hardware::setOutput(const OutputSetting &setting)
{
    m_thread.post([this, setting] { attenuate(setting); });
}

void Hardware::setModulator(const Settings &settings)
{
    m_thread.post([settings] { modulate(settings); });
}

void Hardware::setBaseband(const Settings &settings, const std::string &samples)
{
    m_thread.post([this, settings, samples] { generate(settings, samples); });
}

void Hardware::waitUntilSettled()
{
    m_thread.waitUntilIdle();
}

HardwareState Hardware::state() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_state;
}

void Hardware::tune(const SynthesizerSetting &setting)
{
    ZORVAN_TIME_METHOD();
    const TimedStage stage(Zorvan::timeMeasHardwareFrequency, Pass::Settling);
    const TimeMeasurement measurement(Module::BaseBoard, "synthesizer");
    ZORVAN_TRACE("synthesizer %.0f Hz", setting.frequencyHz);
    const int octave = octaveOf(setting.frequencyHz);
    print(Module::BaseBoard, Level::Info, "oscillator %.6f MHz, divided by 2^%d, phase %g degrees",
          std::ldexp(setting.frequencyHz, octave) / 1e6, octave, setting.phaseDegrees);
    const bool locked =
        waitForLock(std::abs(octave - std::exchange(m_octave, octave)), setting.externalReference);
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_state.locked = locked;
        m_state.frequencyHz = setting.frequencyHz;
    }
    if (!locked) {
        print(Module::BaseBoard, Level::Critical,
              "oscillator is not locked: no signal at the external reference");
        m_onFault(ErrorCode::ReferenceMissing, "REF IN");
    }
}

void Hardware::attenuate(const OutputSetting &setting)
{
    ZORVAN_TIME_METHOD();
    const TimedStage stage(Zorvan::timeMeasHardwareLevel, Pass::Settling);
    const TimeMeasurement measurement(Module::AnalogBoard, "output");
    ZORVAN_TRACE("output %.2f dBm", setting.levelDbm);
    constexpr int step = attenuator_step_decibel;
    const int steps = static_cast<int>(std::ceil((amplifierMaximumDbm - setting.levelDbm) / step));
    const int attenuation = std::max(steps, 0) * step;
    const bool relaysMove = attenuator_set(&m_attenuator, attenuation) > 0;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_state.attenuationDecibel = attenuation;
    }
    print(Module::AnalogBoard, Level::Info, "output %s, attenuator %d dB, amplifier %.2f dBm",
          setting.on ? "on" : "off", attenuation, setting.levelDbm + attenuation);
    settle(relaysMove ? relayTime : modulatorTime);
    const double highestDbm = setting.frequencyHz > 3e9 ? 20 : 25;
    if (setting.on && setting.levelDbm > highestDbm) {
        print(Module::AnalogBoard, Level::Error, "unlevelled: %.2f dBm wanted, %.2f dBm possible",
              setting.levelDbm, highestDbm);
        m_onFault(ErrorCode::Unlevelled, std::to_string(std::lround(setting.levelDbm)) + " dBm");
    }
}

void Hardware::generate(const Settings &settings, const std::string &samples)
{
    ZORVAN_TIME_METHOD();
    const TimeMeasurement measurement(Module::Wavemill, "baseband");
    print(Module::Wavemill, Level::Info, "generator %s, %zu samples, clock %g Hz",
          onOff(settings, ParameterId::BasebandState), samples.size(), settings[ParameterId::BasebandClock]);
    m_waveform.load(samples);
    settle(modulatorTime + loadTimePerSample * static_cast<int>(samples.size()));
    print(Module::BasebandInput, Level::Info, "IQ modulator %s, quadrature %g degrees",
          onOff(settings, ParameterId::IqState), settings[ParameterId::IqQuadrature]);
}

} // namespace SignalGenerator
