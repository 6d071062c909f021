#include "settingsdialog/levelrows.h"

#include "host/modulenames.h"
#include "host/normalizedname.h"

#include <QSet>

#include <algorithm>

namespace Zorvan::levelrows {

namespace {

constexpr QLatin1Char separator(';');

/// Collects rows, each entry once.
class Rows
{
public:
    explicit Rows(const QString &filter)
    {
        const QStringList entries = filter.split(separator, Qt::SkipEmptyParts);
        m_wanted = QSet<QString>(entries.begin(), entries.end());
    }
    void add(const QString &text, const QString &entry)
    {
        if (m_known.contains(entry))
            return;
        m_known.insert(entry);
        m_rows.push_back({text, entry, m_wanted.contains(entry)});
    }
    [[nodiscard]] std::vector<LevelRow> takeSorted()
    {
        std::stable_partition(m_rows.begin(), m_rows.end(),
                              [](const LevelRow &row) { return row.isSelected; });
        return std::move(m_rows);
    }

private:
    QSet<QString> m_wanted;
    QSet<QString> m_known;
    std::vector<LevelRow> m_rows;
};

} // namespace

QStringList descriptionsInUse()
{
    QStringList descriptions;
    const host::ModuleNames names;
    for (moduleId id = 0; id < names.count(); ++id) {
        if (names.name(id).isEmpty())
            continue;
        int count = 0;
        const char **const texts = Debug::getMessageLevelDescriptions(id, &count);
        for (int level = 0; level < count; ++level)
            descriptions += QString::fromLatin1(texts[level]);
    }
    return descriptions;
}

std::vector<LevelRow> arranged(const QStringList &descriptions, const QString &filter)
{
    Rows rows(filter);
    for (const QString &each : descriptions) {
        const QString description = each.trimmed();
        if (description.isEmpty() || description.contains(separator)) // no entry can say that
            continue;
        const QString name = getNormalizedName(description);
        rows.add(name.isEmpty() ? description : name, QLatin1Char('|') + description);
    }
    const QStringList entries = filter.split(separator, Qt::SkipEmptyParts);
    for (const QString &entry : entries)
        rows.add(entry, entry);
    return rows.takeSorted();
}

QStringList entriesWithout(const QString &filter, const QString &other)
{
    const QStringList known = other.split(separator);
    const QSet<QString> without(known.begin(), known.end());
    QStringList entries;
    for (const QString &entry : filter.split(separator, Qt::SkipEmptyParts)) {
        if (!without.contains(entry))
            entries += entry;
    }
    return entries;
}

QString filterOf(const QStringList &entries)
{
    return entries.join(separator);
}

} // namespace Zorvan::levelrows
