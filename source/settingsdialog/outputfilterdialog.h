#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QVBoxLayout;

namespace Zorvan {

/// What the user wants to see: levels as in Debug::setLevelFilter(), text as in Debug::setOutputFilter().
struct OutputFilters
{
    QString levels;
    QString text;
};

/// The levels to choose from, and a regular expression. Shows the filters that are set, and sets none.
class OutputFilterDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OutputFilterDialog(QWidget *parent);

    [[nodiscard]] OutputFilters filters() const;

private:
    void buildLevels(QVBoxLayout &layout);
    void buildText(QVBoxLayout &layout);
    void buildButtons(QVBoxLayout &layout);
    void fillLevels();
    void checkText(const QString &text);
    [[nodiscard]] QStringList chosenEntries() const;

    OutputFilters m_before; // as they were when the dialog opened
    QStringList m_chosenBefore;
    QListWidget *m_levels;
    QLineEdit *m_text;
    QLabel *m_problem;
};

/// Lets the user choose which levels and which text a line must have to be printed, and sets the filters.
/// False if the user cancelled, or if \a parent is gone. The GUI thread only; runs an event loop.
[[nodiscard]] bool editOutputFilter(QWidget *parent);

} // namespace Zorvan
