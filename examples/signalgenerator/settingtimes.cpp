#include "settingtimes.h"

#include <mutex>

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

constexpr int stageCount = 8;

std::mutex s_mutex; // one thread at a time in the library's timers

void time(Zorvan::enumTimeMeas stage, bool start, Pass pass)
{
    const std::lock_guard<std::mutex> guard(s_mutex);
    Debug::timeMeas4HwSetting(stage, start, pass == Pass::Settling);
}

} // namespace

TimedStage::TimedStage(Zorvan::enumTimeMeas stage, Pass pass)
    : m_stage(stage)
    , m_pass(pass)
{
    time(stage, true, pass);
}

TimedStage::~TimedStage()
{
    time(m_stage, false, m_pass);
}

void armSettingTimes()
{
    const std::lock_guard<std::mutex> guard(s_mutex);
    Debug::enableSCPItimeMeas4HwSetting();
}

std::string settingTimes()
{
    const std::lock_guard<std::mutex> guard(s_mutex);
    std::string all;
    for (int stage = 0; stage < stageCount; ++stage) {
        QString text;
        Debug::gettimeMeas4HwSetting(text, stage);
        all += (all.empty() ? "\"" : ",\"") + text.simplified().toStdString() + '"';
    }
    return all;
}

} // namespace SignalGenerator
