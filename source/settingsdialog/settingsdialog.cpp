#include "settingsdialog/settingsdialog.h"

#include <QPushButton>

namespace Zorvan {

SettingsDialog::SettingsDialog(QWidget *parent)
    : QDialog(parent)
{}

SettingsDialog::~SettingsDialog() = default;

void SettingsDialog::refresh() {}

QPushButton *SettingsDialog::filterButton() const
{
    return findChild<QPushButton *>(QStringLiteral("filterButton"));
}

QPushButton *SettingsDialog::openButton() const
{
    return findChild<QPushButton *>(QStringLiteral("openButton"));
}

QPushButton *SettingsDialog::saveButton() const
{
    return findChild<QPushButton *>(QStringLiteral("saveButton"));
}

QPushButton *SettingsDialog::closeButton() const
{
    return findChild<QPushButton *>(QStringLiteral("closeButton"));
}

void SettingsDialog::moduleItemClickedSlot(QListWidgetItem *) {}
void SettingsDialog::classItemChangedSlot(QListWidgetItem *) {}
void SettingsDialog::levelChangedSlot(int) {}
void SettingsDialog::customContextMenuSlot(const QPoint &) {}
void SettingsDialog::levelsContextMenuRequested(const QPoint &) {}
void SettingsDialog::fileContextMenuRequested(const QPoint &) {}
void SettingsDialog::fileOutputChanged() {}
void SettingsDialog::consoleChanged() {}
void SettingsDialog::assertChanged() {}
void SettingsDialog::timeChanged() {}
void SettingsDialog::threadChanged() {}
void SettingsDialog::moduleInfoChanged() {}
void SettingsDialog::clearChanged() {}
void SettingsDialog::makeDefault() {}
void SettingsDialog::setFilter() {}
void SettingsDialog::saveSettings() {}
void SettingsDialog::loadSettings() {}
void SettingsDialog::accept() {}

} // namespace Zorvan
