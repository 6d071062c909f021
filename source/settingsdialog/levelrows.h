#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// The level filter as a list to choose from. A row stands for one entry of the filter, "module|text"; an
/// empty module fits every line.
namespace Zorvan::levelrows {

struct LevelRow
{
    QString text; ///< for people
    QString entry;
    bool isSelected;
};

/// Of all levels of the modules in use. Any thread.
[[nodiscard]] QStringList descriptionsInUse();
/// A row for each different description, and for each entry of \a filter that none of them stands for, so
/// that what others have set can be kept. The entries of the filter are selected and stand at the top.
[[nodiscard]] std::vector<LevelRow> arranged(const QStringList &descriptions, const QString &filter);
/// The entries of \a filter that \a other does not have.
[[nodiscard]] QStringList entriesWithout(const QString &filter, const QString &other);
/// The filter that consists of \a entries.
[[nodiscard]] QString filterOf(const QStringList &entries);

} // namespace Zorvan::levelrows
