#pragma once

#include <zorvan/debug.h>

namespace SignalGenerator {

/// From now on a process that a fault ends (a stray pointer, abort(), ...) first tries to write the trace
/// points of its last steps, see Zorvan::dumpLogHistory().
///
/// It may not work: the process is damaged, and the fault may have come in the middle of what writing needs.
/// What does not end within some seconds is ended. Then the fault takes its usual course, to the core dump.
/// A stack overflow is only survived that long in the thread that has called this, the main thread.
void writeHistoryOnFault();

/// Hooks to try out what happens when something goes wrong, installed for as long as it lives: between
/// Debug::initDebug() and Debug::exitDebug().
class FaultHooks
{
public:
    FaultHooks();
    ~FaultHooks();
    FaultHooks(const FaultHooks &) = delete;
    FaultHooks &operator=(const FaultHooks &) = delete;

    /// Ends the process as a stray pointer would, in the thread that activates it.
    static constexpr const char *crash = "SG_crash";
    /// Fails an assertion, with the parameters as its message. In a thread that the library makes for it:
    /// where the user is asked, only that thread waits for the answer.
    static constexpr const char *assertion = "SG_assert";

private:
    class CrashHook : public Zorvan::IHookInterface
    {
        void hookActivated(char *key, char *parameters) override;
    };
    CrashHook m_crashHook;
};

} // namespace SignalGenerator
