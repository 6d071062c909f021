#include "lowlevelfunctions/lowlevelproperties.h"

#include "lowlevelfunctions/propertiesfile.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "platform/lock.h"

#include <zorvan/debug.h>

#include <string>

namespace Zorvan {

namespace {

/// The ten values, read from their file once and written to it at every change.
class PropertyTable
{
public:
    platform::Mutex &mutex() ZORVAN_RETURN_CAPABILITY(m_mutex) { return m_mutex; }

    void load() ZORVAN_REQUIRES(m_mutex);
    [[nodiscard]] int value(std::size_t id) const ZORVAN_REQUIRES(m_mutex) { return m_values[id]; }
    void store(std::size_t id, int value) ZORVAN_REQUIRES(m_mutex);

private:
    static std::string path()
    {
        return platform::programDataFolder() + platform::pathSeparator + "DebugServerLowlevelSettings.cfg";
    }
    void writeFile() const ZORVAN_REQUIRES(m_mutex);

    platform::Mutex m_mutex;
    bool m_loaded ZORVAN_GUARDED_BY(m_mutex) = false;
    PropertyValues m_values ZORVAN_GUARDED_BY(m_mutex){};
};

void PropertyTable::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    m_values = initialPropertyValues();
    std::string content;
    if (platform::readFileStart(path().c_str(), propertiesFileLimit, content))
        parseProperties(content, m_values);
    else if (!platform::fileExists(path().c_str())) // one that cannot be read is left as it is
        writeFile();
}

void PropertyTable::store(std::size_t id, int value)
{
    if (m_values[id] == value)
        return;
    m_values[id] = value;
    writeFile();
}

void PropertyTable::writeFile() const
{
    platform::makeProgramDataFolder();
    platform::replaceFile(path().c_str(), propertiesText(m_values));
}

PropertyTable &propertyTable()
{
    static auto *table = new PropertyTable; // never destroyed: read until the last static destructor has run
    return *table;
}

bool isPropertyId(int id)
{
    return id >= 0 && id < static_cast<int>(propertyCount);
}

} // namespace

int getLowlevelIntegerProperty(int id, int defaultValue)
{
    if (!isPropertyId(id))
        return defaultValue;
    PropertyTable &table = propertyTable();
    const platform::Locked guard(table.mutex());
    table.load();
    const int value = table.value(static_cast<std::size_t>(id));
    return value == propertyNotSet ? defaultValue : value;
}

void setLowlevelIntegerProperty(int id, int value)
{
    if (!isPropertyId(id))
        return;
    PropertyTable &table = propertyTable();
    const platform::Locked guard(table.mutex());
    table.load();
    table.store(static_cast<std::size_t>(id), value);
}

int lowlevelProperty(LowlevelProperty property, int defaultValue)
{
    return getLowlevelIntegerProperty(static_cast<int>(property), defaultValue);
}

void loadLowlevelProperties()
{
    PropertyTable &table = propertyTable();
    const platform::Locked guard(table.mutex());
    table.load();
}

void holdLowlevelProperties() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    propertyTable().mutex().lock();
}

void releaseLowlevelProperties() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    propertyTable().mutex().unlock();
}

} // namespace Zorvan
