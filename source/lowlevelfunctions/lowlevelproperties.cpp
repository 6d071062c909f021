#include "lowlevelfunctions/lowlevelproperties.h"

#include "lowlevelfunctions/propertiesfile.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "platform/lock.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <string>

namespace Zorvan {

namespace {

/// The ten values, read from their file once and written to it at every change. Readers take no lock once
/// they are there: a host's own operator new may ask for them, also while the file is read or written here.
class PropertyTable
{
public:
    platform::Mutex &mutex() ZORVAN_RETURN_CAPABILITY(m_mutex) { return m_mutex; }

    [[nodiscard]] int value(std::size_t id);
    void store(std::size_t id, int value) ZORVAN_EXCLUDES(m_mutex);
    void ensureLoaded() ZORVAN_EXCLUDES(m_mutex);

private:
    void load() ZORVAN_REQUIRES(m_mutex);
    void readFile() ZORVAN_REQUIRES(m_mutex);
    void writeFile() const ZORVAN_REQUIRES(m_mutex);
    [[nodiscard]] PropertyValues values() const;
    void setValues(const PropertyValues &values);

    platform::Mutex m_mutex;
    std::atomic<bool> m_isLoaded{false};
    std::atomic<std::uint64_t> m_loader{0}; // the thread, while it loads
    std::array<std::atomic<int>, propertyCount> m_values{};
};

/// Trivially destroyed and there before any constructor runs: asked from the first to the last static object.
PropertyTable s_table;

std::string path()
{
    return platform::programDataFolder() + platform::pathSeparator + "DebugServerLowlevelSettings.cfg";
}

int PropertyTable::value(std::size_t id)
{
    ensureLoaded();
    return m_values[id].load(std::memory_order_relaxed);
}

void PropertyTable::store(std::size_t id, int value)
{
    ensureLoaded();
    const platform::Locked guard(m_mutex);
    if (m_values[id].exchange(value, std::memory_order_relaxed) != value)
        writeFile();
}

/// Whoever comes back to this from loading gets the initial values.
void PropertyTable::ensureLoaded()
{
    if (m_isLoaded.load(std::memory_order_acquire) || m_loader.load() == platform::kernelThreadId())
        return;
    const platform::Locked guard(m_mutex);
    if (!m_isLoaded.load(std::memory_order_relaxed))
        load();
}

void PropertyTable::load()
{
    setValues(initialPropertyValues());
    m_loader.store(platform::kernelThreadId());
    readFile();
    m_isLoaded.store(true, std::memory_order_release);
    m_loader.store(0);
}

/// Without memory for it the initial values stay.
void PropertyTable::readFile()
try {
    PropertyValues read = values();
    std::string content;
    if (platform::readFileStart(path().c_str(), propertiesFileLimit, content)) {
        parseProperties(content, read);
        setValues(read);
    } else if (!platform::fileExists(path().c_str())) { // one that cannot be read is left as it is
        writeFile();
    }
} catch (const std::exception &) {
    return;
}

/// Without memory for it the values live in memory only, as on a disk that refuses them.
void PropertyTable::writeFile() const
try {
    platform::makeProgramDataFolder();
    platform::replaceFile(path().c_str(), propertiesText(values()));
} catch (const std::exception &) {
    return;
}

PropertyValues PropertyTable::values() const
{
    PropertyValues copied{};
    std::transform(m_values.begin(), m_values.end(), copied.begin(),
                   [](const std::atomic<int> &value) { return value.load(std::memory_order_relaxed); });
    return copied;
}

void PropertyTable::setValues(const PropertyValues &values)
{
    for (std::size_t id = 0; id < propertyCount; ++id)
        m_values[id].store(values[id], std::memory_order_relaxed);
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
    const int value = s_table.value(static_cast<std::size_t>(id));
    return value == propertyNotSet ? defaultValue : value;
}

void setLowlevelIntegerProperty(int id, int value)
{
    if (isPropertyId(id))
        s_table.store(static_cast<std::size_t>(id), value);
}

int lowlevelProperty(LowlevelProperty property, int defaultValue)
{
    return getLowlevelIntegerProperty(static_cast<int>(property), defaultValue);
}

void loadLowlevelProperties()
{
    s_table.ensureLoaded();
}

void holdLowlevelProperties() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    s_table.mutex().lock();
}

void releaseLowlevelProperties() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    s_table.mutex().unlock();
}

} // namespace Zorvan
