#pragma once

#include <QString>

class QComboBox;

namespace Zorvan {

/// What was typed into the field of hook parameters: its list keeps the latest texts and completes new ones.
///
/// A completion is found when the text changes, but applied later: the field does not like to be changed from
/// inside its own signal.
class ParameterHistory
{
public:
    static constexpr int capacity = 50;

    /// \a field must outlive this.
    explicit ParameterHistory(QComboBox &field)
        : m_field(field)
    {}

    /// Puts a text on top of the list, which has it once; not the empty one.
    void add(const QString &text);
    /// The field has a new text. True: complete() has something to look for.
    [[nodiscard]] bool typed(const QString &text);
    /// The field has another selection, which goes when the user types on: what is left counts as typed.
    void selected();
    /// Appends the rest of the first text in the list that begins with what was typed, and marks it, so that
    /// typing on replaces it.
    void complete();
    void clear();

private:
    QComboBox &m_field;
    QString m_lastTyped;
    QString m_toComplete; // empty: nothing
    bool m_isChanging = false; // the change of the text is our own
};

} // namespace Zorvan
