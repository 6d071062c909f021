#include "settingsdialog/questions.h"

#include "settingsdialog/rundialog.h"

#include <zorvan/debug.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>

namespace Zorvan::questions {

namespace {

bool mayOverwrite(QWidget *parent, const QString &title, const QString &path)
{
    const QPointer<QMessageBox> box(new QMessageBox(QMessageBox::Warning, title,
                                                    QCoreApplication::translate("Zorvan::Questions",
                                                                                "%1 already exists.\n"
                                                                                "Do you want to replace it?")
                                                        .arg(QDir::toNativeSeparators(path)),
                                                    QMessageBox::Yes | QMessageBox::No, parent));
    box->setTextFormat(Qt::PlainText);
    const bool isAllowed = box->exec() == QMessageBox::Yes && box != nullptr;
    delete box;
    return isAllowed;
}

} // namespace

void tell(Icon icon, const QString &title, const QString &text)
{
    constexpr int okButton = 1;
    Debug::debugMessageBox(title, text, true, static_cast<int>(icon), okButton, 0, 0);
}

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
    const QPointer<QWidget> kept(parent);
    auto path =
        runDialog(dialog, [](const QFileDialog &accepted) { return accepted.selectedFiles().value(0); });
    const QString end = QLatin1Char('.') + question.suffix;
    const bool isOther = path && !path->isEmpty() && isWritten && !question.suffix.isEmpty()
        && !path->endsWith(end, question.suffixCase); // the dialog has asked about another file
    if (!isOther)
        return path;
    *path += end;
    if (kept != parent || (QFileInfo::exists(*path) && !mayOverwrite(parent, question.title, *path)))
        return std::nullopt;
    return path;
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
