#include "debugwindow/viewdialogs.h"

#include <QCoreApplication>
#include <QInputDialog>
#include <QPointer>

namespace Zorvan::viewdialogs {

namespace {

/// Runs a dialog and deletes it; \a answer reads what was entered, if it was accepted.
template <typename Dialog, typename Answer>
std::optional<QString> run(Dialog *dialog, Answer answer)
{
    const QPointer<Dialog> kept(dialog); // on the stack it would be destroyed twice when its parent goes
    const int result = dialog->exec();
    std::optional<QString> entered;
    if (kept && result == QDialog::Accepted)
        entered = answer(*kept);
    delete kept;
    return entered;
}

} // namespace

std::optional<QString> askForText(QWidget *parent, const QString &title, const QString &label,
                                  const QString &preset)
{
    auto *const dialog = new QInputDialog(parent);
    dialog->setWindowTitle(title);
    dialog->setLabelText(label);
    dialog->setTextValue(preset);
    return run(dialog, [](const QInputDialog &accepted) { return accepted.textValue(); });
}

std::optional<QString> askForMarkerFile(QWidget *parent, const QString &title, QFileDialog::AcceptMode mode)
{
    const QString filter =
        QCoreApplication::translate("Zorvan::QProtocolWidget", "Debug Server Output Filter (*.dbgfilt)");
    auto *const dialog = new QFileDialog(parent, title, QString(), filter);
    dialog->setAcceptMode(mode);
    dialog->setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    if (mode == QFileDialog::AcceptSave) // so that it asks before a file is overwritten
        dialog->setDefaultSuffix(QStringLiteral("dbgfilt"));
    return run(dialog, [](const QFileDialog &accepted) { return accepted.selectedFiles().value(0); });
}

} // namespace Zorvan::viewdialogs
