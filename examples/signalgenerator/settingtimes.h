#pragma once

#include <zorvan/debug.h>

#include <string>

namespace SignalGenerator {

/// The passes of the kernel over the boards: it hands them their settings, then, while a setting is timed, it
/// waits until they have settled.
enum class Pass { HandOver, Settling };

/// One stage of a hardware setting, from the line of commands to the settled output, for the library's
/// timers.
///
/// The library leaves it to its host that one thread at a time uses them. Here commands, kernel and hardware
/// have threads of their own, so all of them take one lock.
class TimedStage
{
public:
    explicit TimedStage(Zorvan::enumTimeMeas stage, Pass pass = Pass::HandOver);
    ~TimedStage();
    TimedStage(const TimedStage &) = delete;
    TimedStage &operator=(const TimedStage &) = delete;

private:
    const Zorvan::enumTimeMeas m_stage;
    const Pass m_pass;
};

/// Arms the timers: the stages that run now still end, what follows is what counts.
void armSettingTimes();
/// The stages of the last setting that was timed, each a quoted text, with commas between them.
[[nodiscard]] std::string settingTimes();

} // namespace SignalGenerator
