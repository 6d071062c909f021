#include "kernel.h"

#include "print.h"
#include "settingtimes.h"

#include <utility>

namespace SignalGenerator {

namespace {

bool has(GroupSet groups, Group group)
{
    return groups.test(static_cast<std::size_t>(group));
}

std::string namesOf(GroupSet groups)
{
    constexpr const char *names[] = {" synthesizer", " output", " modulators", " baseband"};
    std::string text;
    for (std::size_t i = 0; i < groups.size(); ++i)
        text += groups.test(i) ? names[i] : "";
    return text;
}

double limitedLevel(const Settings &settings, double levelDbm)
{
    const double limit = settings[ParameterId::LevelLimit];
    if (levelDbm <= limit) {
        print(Module::OrgLayer, Level::Info, "level %.2f dBm", levelDbm);
        return levelDbm;
    }
    print(Module::OrgLayer, Level::Warning, "level %.2f dBm is above the limit, using %.2f dBm", levelDbm,
          limit);
    return limit;
}

} // namespace

Kernel::Kernel(const Database &database, const Storage &storage, Hardware &hardware)
    : m_database(database)
    , m_storage(storage)
    , m_hardware(hardware)
{}

void Kernel::settingsChanged(GroupSet groups)
{
    bool alreadyPosted = false;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        alreadyPosted = m_changed.any();
        m_changed |= groups;
    }
    if (!alreadyPosted && groups.any())
        m_thread.post([this] { setHardware(); });
}

void Kernel::settlePoint(const Point &point)
{
    m_thread.post([this, point] {
        ZORVAN_TRACE("point %.0f Hz, %.2f dBm", point.frequencyHz, point.levelDbm);
        const Settings settings = m_database.snapshot();
        setSynthesizer(settings, point);
        setOutput(settings, point);
    });
    waitUntilSettled();
}

void Kernel::waitUntilSettled()
{
    m_thread.waitUntilIdle();
    m_hardware.waitUntilSettled();
}

void Kernel::timeNextSetting()
{
    waitUntilSettled();
    m_thread.post([this] {
        // The timers expect to be armed by a setting that ends both of these once before those that count.
        const TimedStage database(Zorvan::timeMeasDatabase);
        armSettingTimes();
        const TimedStage hardware(Zorvan::timeMeasHardware);
        m_nextIsTimed = true;
    });
    waitUntilSettled();
}

void Kernel::beginLine()
{
    m_isTimed = m_nextIsTimed.exchange(false);
}

void Kernel::endLine()
{
    if (m_isTimed)
        waitUntilSettled();
    m_isTimed = false;
}

void Kernel::setHardware()
{
    ZORVAN_TIME_METHOD();
    const TimeMeasurement measurement(Module::Kernel, "hardware setting");
    const TimedStage database(Zorvan::timeMeasDatabase);
    GroupSet changed;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        std::swap(changed, m_changed);
    }
    const std::string names = namesOf(changed);
    ZORVAN_TRACE("setting%s", names.c_str());
    print(Module::Kernel, Level::Info, "setting%s", names.c_str());
    handOver(changed);
    if (m_isTimed) {
        const TimedStage hardware(Zorvan::timeMeasHardware, Pass::Settling);
        m_hardware.waitUntilSettled();
    }
}

void Kernel::handOver(GroupSet changed)
{
    const Settings settings = m_database.snapshot();
    const TimedStage hardware(Zorvan::timeMeasHardware);
    const Point carrier{settings[ParameterId::Frequency], settings[ParameterId::Level]};
    if (has(changed, Group::Synthesizer))
        setSynthesizer(settings, carrier);
    if (has(changed, Group::Synthesizer) || has(changed, Group::Output))
        setOutput(settings, carrier); // its amplifier depends on the frequency
    if (has(changed, Group::Modulator))
        m_hardware.setModulator(settings);
    if (has(changed, Group::Baseband)) {
        const bool generator = settings.isOn(ParameterId::BasebandState);
        m_hardware.setBaseband(settings, generator ? m_storage.samplesOfSelectedWaveform() : std::string());
    }
}

void Kernel::setSynthesizer(const Settings &settings, const Point &point)
{
    const bool external =
        settings.is(ParameterId::ReferenceSource, static_cast<int>(ReferenceSource::External));
    m_hardware.setSynthesizer({point.frequencyHz, settings[ParameterId::Phase], external});
}

void Kernel::setOutput(const Settings &settings, const Point &point)
{
    m_hardware.setOutput(
        {point.frequencyHz, limitedLevel(settings, point.levelDbm), settings.isOn(ParameterId::Output)});
}

} // namespace SignalGenerator
