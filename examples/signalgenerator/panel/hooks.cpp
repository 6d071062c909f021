#include "panel/hooks.h"

#include "instrument.h"
#include "panel/panelmodule.h"
#include "panel/remotecontrol.h"
#include "print.h"
#include "threadnames.h"

#include <QCoreApplication>

#include <cstring>
#include <mutex>

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

/// A plain function has no object to work on, so this is where it finds one. The lock is held while it
/// prints: nothing goes away under a dump that still runs.
struct DumpSource
{
    std::mutex mutex; // guards the members below
    const Instrument *instrument = nullptr;
    Zorvan::moduleId module = -1;
};

DumpSource &dumpSource()
{
    static DumpSource source;
    return source;
}

void setDumpSource(const Instrument *instrument, Zorvan::moduleId module)
{
    DumpSource &source = dumpSource();
    const std::lock_guard<std::mutex> guard(source.mutex);
    source.instrument = instrument;
    source.module = module;
}

const char *onOff(const Settings &settings, ParameterId id)
{
    return settings.isOn(id) ? "on" : "off";
}

void dump(const Status &status, Zorvan::moduleId module)
{
    const Settings &settings = status.settings;
    print(module, PanelLevel::Report,
          "frequency %.3f Hz, level %.2f dBm, RF %s\n"
          "AM %s, FM %s, pulse %s\n"
          "synthesizer %s at %.3f Hz, attenuator %d dB\n"
          "%zu errors in the queue",
          settings[ParameterId::Frequency], settings[ParameterId::Level],
          onOff(settings, ParameterId::Output), onOff(settings, ParameterId::AmState),
          onOff(settings, ParameterId::FmState), onOff(settings, ParameterId::PulseState),
          status.hardware.locked ? "locked" : "unlocked", status.hardware.frequencyHz,
          status.hardware.attenuationDecibel, status.errors);
}

void dumpStateActivated(char *, char *)
{
    setThreadName("hook"); // a thread that the library has made for this call
    DumpSource &source = dumpSource();
    const std::lock_guard<std::mutex> guard(source.mutex);
    if (source.instrument != nullptr)
        dump(source.instrument->status(), source.module);
}

} // namespace

FrequencyHook::FrequencyHook(RemoteControl &remote, Zorvan::moduleId module)
    : m_remote(remote)
    , m_module(module)
{}

void FrequencyHook::hookActivated(char *key, char *parameters)
{
    if (std::strpbrk(parameters, ";\n") != nullptr) { // would be more commands than this one
        print(m_module, PanelLevel::Warning, "%s: \"%s\" is no frequency", key, parameters);
        return;
    }
    print(m_module, PanelLevel::Info, "%s: %s", key, parameters);
    m_remote.send(std::string("FREQ ") + parameters);
}

void QuitHook::hookActivated(char *, char *)
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
}

Hooks::Hooks(const Instrument &instrument, RemoteControl &remote, Zorvan::moduleId module)
    : m_frequencyHook(remote, module)
{
    setDumpSource(&instrument, module);
    Debug::installHook(setFrequency, &m_frequencyHook, true);
    Debug::installHook(quit, &m_quitHook, true);
    Debug::installCHookHandler(dumpState, dumpStateActivated);
}

Hooks::~Hooks()
{
    Debug::removeCHookHandler(dumpState, dumpStateActivated);
    Debug::removeHook(quit, &m_quitHook);
    Debug::removeHook(setFrequency, &m_frequencyHook);
    setDumpSource(nullptr, -1); // waits for a dump that runs
}

} // namespace SignalGenerator
