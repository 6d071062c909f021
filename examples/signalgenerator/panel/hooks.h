#pragma once

#include <zorvan/debug.h>

namespace SignalGenerator {

class Instrument;
class RemoteControl;

/// "SG_setFrequency": sets the carrier frequency; the parameter is a number in hertz or with a unit: "2.4
/// GHz".
///
/// Installed as direct: it only sends a command, so it may run in whatever thread activates it.
class FrequencyHook : public Zorvan::IHookInterface
{
public:
    FrequencyHook(RemoteControl &remote, Zorvan::moduleId module);
    void hookActivated(char *key, char *parameters) override;

private:
    RemoteControl &m_remote;
    const Zorvan::moduleId m_module;
};

/// "SG_quit": ends the event loop and with it the host. Direct: it only asks for it.
class QuitHook : public Zorvan::IHookInterface
{
public:
    void hookActivated(char *key, char *parameters) override;
};

/// The host's own hooks, installed for as long as it lives: between two of Debug::initDebug() and
/// Debug::exitDebug(). One at a time.
///
/// "SG_dumpState" prints the state of the instrument on \a module, from a thread that the library makes for
/// it.
class Hooks
{
public:
    Hooks(const Instrument &instrument, RemoteControl &remote, Zorvan::moduleId module);
    ~Hooks();
    Hooks(const Hooks &) = delete;
    Hooks &operator=(const Hooks &) = delete;

    static constexpr const char *setFrequency = "SG_setFrequency";
    static constexpr const char *dumpState = "SG_dumpState";
    static constexpr const char *quit = "SG_quit";

private:
    FrequencyHook m_frequencyHook;
    QuitHook m_quitHook;
};

} // namespace SignalGenerator
