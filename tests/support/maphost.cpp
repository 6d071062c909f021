#include "support/maphost.h"

#include <algorithm>

namespace Zorvan::test {

namespace {

std::string ownKey(const char *key)
{
    return std::string("DebugServer/") + key;
}

} // namespace

void MapHost::store(const char *key, const char *value)
{
    const std::lock_guard guard(m_mutex);
    m_values[ownKey(key)] = QString::fromLatin1(value);
}

void MapHost::store(const char *key, int value)
{
    store(key, std::to_string(value).c_str());
}

QString MapHost::stored(const char *key)
{
    const std::lock_guard guard(m_mutex);
    return m_values[ownKey(key)];
}

int MapHost::reads(const char *key)
{
    const std::lock_guard guard(m_mutex);
    return m_reads[ownKey(key)];
}

std::vector<std::string> MapHost::written()
{
    const std::lock_guard guard(m_mutex);
    return m_written;
}

std::vector<std::string> MapHost::takeLines()
{
    const std::lock_guard guard(m_mutex);
    return std::exchange(m_lines, {});
}

std::ptrdiff_t MapHost::linesWith(const char *text)
{
    const std::vector<std::string> lines = takeLines();
    return std::count_if(lines.begin(), lines.end(),
                         [text](const std::string &line) { return line.find(text) != std::string::npos; });
}

QString MapHost::lookUp(const char *group, const QString &key, const QString &defaultValue)
{
    if (const auto call = onRead) // a copy: it may replace itself
        call(key);
    const std::string place = std::string(group) + '/' + key.toStdString();
    const std::lock_guard guard(m_mutex);
    ++m_reads[place];
    const auto found = m_values.find(place);
    return found == m_values.end() ? defaultValue : found->second;
}

int MapHost::readIntegerSetting(const char *group, const QString &key, int defaultValue)
{
    return lookUp(group, key, QString::number(defaultValue)).toInt();
}

QString MapHost::readStringSetting(const char *group, const QString &key, const QString &defaultValue)
{
    return lookUp(group, key, defaultValue);
}

void MapHost::writeStringSetting(const char *group, const QString &key, const QString &value)
{
    const std::lock_guard guard(m_mutex);
    m_values[std::string(group) + '/' + key.toStdString()] = value;
    m_written.push_back(key.toStdString());
}

void MapHost::outputLine(const QString &line)
{
    const std::lock_guard guard(m_mutex);
    m_lines.push_back(line.toLatin1().toStdString());
}

} // namespace Zorvan::test
