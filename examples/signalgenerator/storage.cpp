#include "storage.h"

#include "errorqueue.h"
#include "print.h"

#include <utility>

namespace SignalGenerator {

namespace {

// "NAME","OTHER"
template <typename Map>
std::string catalogOf(const Map &map)
{
    std::string names;
    for (const auto &[name, content] : map)
        names += (names.empty() ? "\"" : ",\"") + name + '"';
    return names.empty() ? "\"\"" : names;
}

} // namespace

void Storage::selectList(const std::string &name)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_lists.try_emplace(name);
    m_list = name;
}

void Storage::setListFrequencies(std::vector<double> hertz)
{
    print(Module::ListAdmin, Level::Info, "%zu frequencies", hertz.size());
    const std::lock_guard<std::mutex> guard(m_mutex);
    selectedListLocked().frequencies = std::move(hertz);
}

void Storage::setListLevels(std::vector<double> dbm)
{
    print(Module::ListAdmin, Level::Info, "%zu levels", dbm.size());
    const std::lock_guard<std::mutex> guard(m_mutex);
    selectedListLocked().levels = std::move(dbm);
}

std::vector<Point> Storage::points() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const List &list = selectedListLocked();
    const bool oneLevel = list.levels.size() == 1;
    if (list.frequencies.empty() || (!oneLevel && list.levels.size() != list.frequencies.size()))
        throw ScpiError(ErrorCode::SettingsConflict, "list " + m_list);
    std::vector<Point> points;
    for (std::size_t i = 0; i < list.frequencies.size(); ++i)
        points.push_back({list.frequencies[i], list.levels[oneLevel ? 0 : i]});
    return points;
}

std::string Storage::listCatalog() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return catalogOf(m_lists);
}

void Storage::storeWaveform(const std::string &name, std::string samples)
{
    print(Module::ListAdmin, Level::Info, "waveform %s: %zu samples", name.c_str(), samples.size());
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_waveforms[name] = std::move(samples);
}

void Storage::selectWaveform(const std::string &name)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_waveforms.count(name) == 0)
        throw ScpiError(ErrorCode::NameNotFound, name);
    m_waveform = name;
}

std::string Storage::selectedWaveform() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_waveform;
}

std::string Storage::samplesOfSelectedWaveform() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto waveform = m_waveforms.find(m_waveform);
    return waveform == m_waveforms.end() ? std::string() : waveform->second;
}

std::string Storage::waveformCatalog() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return catalogOf(m_waveforms);
}

Storage::List &Storage::selectedListLocked()
{
    return const_cast<List &>(std::as_const(*this).selectedListLocked());
}

const Storage::List &Storage::selectedListLocked() const
{
    const auto list = m_lists.find(m_list);
    if (list == m_lists.end())
        throw ScpiError(ErrorCode::SettingsConflict, "no list is selected");
    return list->second;
}

} // namespace SignalGenerator
