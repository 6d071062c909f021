#pragma once

#include <QStyledItemDelegate>

namespace Zorvan {

/// Draws the cells of the table of results by the type of their values: quint64 is the number of a thread,
/// double a share or a time, int a count.
class CheckBoxDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// The same in every language: the numbers are compared with those of log files.
    [[nodiscard]] QString displayText(const QVariant &value, const QLocale &locale) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

} // namespace Zorvan
