#include "debugwindow/parameterhistory.h"

#include <QComboBox>
#include <QLineEdit>
#include <QScopedValueRollback>

#include <utility>

namespace Zorvan {

void ParameterHistory::add(const QString &text)
{
    if (text.isEmpty())
        return;
    const QScopedValueRollback<bool> changing(m_isChanging, true);
    const QString shown = m_field.currentText();
    for (int i = m_field.count() - 1; i >= 0; --i) {
        if (m_field.itemText(i) == text)
            m_field.removeItem(i);
    }
    m_field.insertItem(0, text);
    while (m_field.count() > capacity)
        m_field.removeItem(m_field.count() - 1);
    m_field.setCurrentIndex(0);
    m_field.setEditText(shown);
}

bool ParameterHistory::typed(const QString &text)
{
    if (m_isChanging)
        return false;
    const bool hasGrown = text.size() > m_lastTyped.size();
    m_lastTyped = text;
    m_toComplete = hasGrown && m_field.itemText(m_field.currentIndex()) != text ? text : QString();
    return !m_toComplete.isEmpty();
}

void ParameterHistory::selected()
{
    const QLineEdit &edit = *m_field.lineEdit();
    m_lastTyped = edit.text();
    if (edit.hasSelectedText())
        m_lastTyped.remove(edit.selectionStart(), edit.selectionLength());
}

void ParameterHistory::complete()
{
    const QString typed = std::exchange(m_toComplete, QString());
    const QLineEdit &edit = *m_field.lineEdit();
    if (typed.isEmpty() || edit.text() != typed || edit.cursorPosition() != typed.size())
        return;
    const QScopedValueRollback<bool> changing(m_isChanging, true);
    for (int i = 0; i < m_field.count(); ++i) {
        const QString text = m_field.itemText(i);
        if (!text.startsWith(typed))
            continue;
        m_field.setCurrentIndex(i);
        m_field.setEditText(text);
        m_field.lineEdit()->setSelection(typed.size(), text.size() - typed.size());
        return;
    }
}

void ParameterHistory::clear()
{
    m_field.clearEditText();
    m_lastTyped.clear();
    m_toComplete.clear();
}

} // namespace Zorvan
