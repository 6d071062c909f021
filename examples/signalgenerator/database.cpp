#include "database.h"

#include "print.h"

#include <utility>

namespace SignalGenerator {

namespace {

Settings presets()
{
    Settings settings;
    for (const ParameterInfo &info : parameterTable())
        settings[info.id] = info.preset;
    return settings;
}

GroupSet groupOf(ParameterId id)
{
    const Group group = infoOf(id).group;
    return group == Group::None ? GroupSet() : GroupSet().set(static_cast<std::size_t>(group));
}

} // namespace

Database::Database()
    : m_settings(presets())
{}

void Database::setListener(Listener listener)
{
    m_listener = std::move(listener);
}

double Database::value(ParameterId id) const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_settings[id];
}

Settings Database::snapshot() const
{
    ZORVAN_TIME_METHOD();
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_settings;
}

bool Database::set(ParameterId id, double value)
{
    ZORVAN_TIME_METHOD();
    const ParameterInfo &info = infoOf(id);
    if (value < info.minimum || value > info.maximum) {
        print(Module::Database, Level::Warning, "%s: %g is not within %g and %g", info.header, value,
              info.minimum, info.maximum);
        return false;
    }
    double before = value;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        std::swap(before, m_settings[id]);
    }
    print(Module::Database, Level::Info, "%s: %g -> %g", info.header, before, value);
    if (before != value && m_listener)
        m_listener(groupOf(id));
    return true;
}

void Database::reset()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_settings = presets();
    }
    print(Module::Database, Level::Info, "%zu parameters preset", parameterCount);
    if (m_listener)
        m_listener(GroupSet().set());
}

} // namespace SignalGenerator
