#include "settingsdialog/questions.h"

#include "settingsdialog/rundialog.h"

#include <QInputDialog>

namespace Zorvan::questions {

std::optional<QString> askForFile(QWidget *parent, const FileQuestion &question)
{
    const bool isWritten = question.mode == QFileDialog::AcceptSave;
    auto *const dialog = new QFileDialog(parent, question.title, question.folder, question.filter);
    dialog->setAcceptMode(question.mode);
    dialog->setFileMode(isWritten ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (isWritten) // so that it asks before a file is overwritten
        dialog->setDefaultSuffix(question.suffix);
    if (!question.name.isEmpty())
        dialog->selectFile(question.name);
    return runDialog(dialog, [](const QFileDialog &accepted) { return accepted.selectedFiles().value(0); });
}

std::optional<QString> askForText(QWidget *parent, const QString &title, const QString &label,
                                  const QString &preset)
{
    auto *const dialog = new QInputDialog(parent);
    dialog->setWindowTitle(title);
    dialog->setLabelText(label);
    dialog->setTextValue(preset);
    return runDialog(dialog, [](const QInputDialog &accepted) { return accepted.textValue(); });
}

std::optional<int> askForNumber(QWidget *parent, const QString &title, const QString &label, int preset,
                                const Range &range)
{
    auto *const dialog = new QInputDialog(parent);
    dialog->setWindowTitle(title);
    dialog->setLabelText(label);
    dialog->setInputMode(QInputDialog::IntInput);
    dialog->setIntRange(range.least, range.most);
    dialog->setIntStep(range.step);
    dialog->setIntValue(preset);
    return runDialog(dialog, [](const QInputDialog &accepted) { return accepted.intValue(); });
}

} // namespace Zorvan::questions
