#pragma once

#include <QRegExp>
#include <QString>
#include <QStringList>

#include <vector>

namespace Zorvan {

/// Decides by the text of a finished line whether it is printed. Not for two threads at once: even matching
/// changes the regular expression.
class OutputFilter
{
public:
    /// A regular expression; empty lets everything through. False: it is kept, but it costs too much to be
    /// used, and lets nothing through, as an invalid one does.
    bool setPattern(const QString &pattern);
    [[nodiscard]] QString pattern() const { return m_pattern; }
    /// "module|text" entries joined by ';'; empty lets everything through. False: they are kept, but there
    /// are so many that comparing them takes too long, and nothing is let through.
    bool setEntries(const QString &entries);
    [[nodiscard]] QString entries() const { return m_entryTexts.join(QLatin1Char(';')); }

    [[nodiscard]] bool isActive() const { return m_active; }
    /// Whether both filters let the line through. An entry's module counts only while module names are shown.
    [[nodiscard]] bool passes(const QString &line, bool moduleNameShown) const;

private:
    struct Entry
    {
        QString module;
        QString text;
    };
    [[nodiscard]] bool passesPattern(const QString &line) const;
    [[nodiscard]] bool passesEntries(const QString &line, bool moduleNameShown) const;
    void updateActive();

    QString m_pattern;
    QRegExp m_expression;
    bool m_isUsable = true;
    QStringList m_entryTexts;
    std::vector<Entry> m_entries;
    bool m_active = false;
};

} // namespace Zorvan
