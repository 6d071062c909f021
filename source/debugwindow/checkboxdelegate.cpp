#include "debugwindow/checkboxdelegate.h"

namespace Zorvan {

namespace {

bool isNumber(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::Double:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

} // namespace

QString CheckBoxDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    switch (value.userType()) {
    case QMetaType::Double:
        return QString::asprintf("%1.3f", value.toDouble());
    case QMetaType::ULongLong:
        return QString::asprintf("%08llx", value.toULongLong());
    case QMetaType::Int:
        return QString::number(value.toInt());
    default:
        return QStyledItemDelegate::displayText(value, locale);
    }
}

void CheckBoxDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (!isNumber(index.data()))
        return;
    option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
    option->textElideMode = Qt::ElideNone; // without some of its digits it would read as another number
}

} // namespace Zorvan
