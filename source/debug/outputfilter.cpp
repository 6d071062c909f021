#include "debug/outputfilter.h"

#include "host/patternlimits.h"

#include <algorithm>
#include <utility>

namespace Zorvan {

namespace {

constexpr int mostEntries = 1000;

} // namespace

bool OutputFilter::setPattern(const QString &pattern)
{
    m_pattern = pattern;
    const bool affordable = isAffordable(pattern);
    m_expression = affordable ? expressionOf(pattern) : QRegExp();
    m_isUsable = affordable && m_expression.isValid(); // QRegExp would search with what it has understood
    updateActive();
    return affordable;
}

bool OutputFilter::setEntries(const QString &entries)
{
    m_entryTexts = entries.isEmpty() ? QStringList() : entries.split(QLatin1Char(';'));
    m_entries.clear();
    updateActive();
    if (m_entryTexts.size() > mostEntries)
        return false;
    for (const QString &entry : std::as_const(m_entryTexts)) {
        // A missing part is empty, and an empty text occurs in every line.
        m_entries.push_back({entry.section(QLatin1Char('|'), 0, 0), entry.section(QLatin1Char('|'), 1)});
    }
    return true;
}

bool OutputFilter::passes(const QString &line, bool moduleNameShown) const
{
    return passesPattern(line) && passesEntries(line, moduleNameShown);
}

/// A match at the very start of a line has never counted; existing filters rely on it.
bool OutputFilter::passesPattern(const QString &line) const
{
    return m_pattern.isEmpty() || (m_isUsable && m_expression.indexIn(line) > 0);
}

bool OutputFilter::passesEntries(const QString &line, bool moduleNameShown) const
{
    const auto fits = [&](const Entry &entry) {
        return (!moduleNameShown || line.contains(entry.module)) && line.contains(entry.text);
    };
    return m_entryTexts.isEmpty() || std::any_of(m_entries.begin(), m_entries.end(), fits);
}

void OutputFilter::updateActive()
{
    m_active = !m_pattern.isEmpty() || !m_entryTexts.isEmpty();
}

} // namespace Zorvan
