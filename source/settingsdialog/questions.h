#pragma once

#include <QFileDialog>
#include <QString>

#include <optional>

class QWidget;

/// Questions and notices to the user, of the windows of this library. Each runs an event loop, in which the
/// parent may be deleted: that is no answer, as is a cancelled dialog. The GUI thread only.
namespace Zorvan::questions {

struct FileQuestion
{
    QString title;
    QString filter; ///< as in QFileDialog
    QFileDialog::AcceptMode mode = QFileDialog::AcceptOpen; ///< an existing file, or one to be written
    QString suffix{}; ///< appended to the name of a file to be written, if it does not have it
    Qt::CaseSensitivity suffixCase = Qt::CaseInsensitive; ///< how it is looked for there
    QString folder{}; ///< where to begin; empty: the working directory
    QString name{}; ///< a file in it that is proposed
};

struct Range
{
    int least;
    int most;
    int step;
};

/// As the message boxes count them.
enum class Icon { Information = 1, Warning = 2 };

/// Tells something in a message box of the library, and waits until it is closed.
void tell(Icon icon, const QString &title, const QString &text);

[[nodiscard]] std::optional<QString> askForFile(QWidget *parent, const FileQuestion &question);
[[nodiscard]] std::optional<QString> askForText(QWidget *parent, const QString &title, const QString &label,
                                                const QString &preset);
[[nodiscard]] std::optional<int> askForNumber(QWidget *parent, const QString &title, const QString &label,
                                              int preset, const Range &range);

} // namespace Zorvan::questions
