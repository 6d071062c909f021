#pragma once

#include <zorvan/debug.h>

#include <QDialog>

#include <memory>

class QListWidgetItem;
class QPushButton;
class Ui_configdialog;

namespace Zorvan {

/// Shows what the modules print and where it goes, and changes it: classes and levels of each module, display
/// flags, output file, filters. Every change goes to the facade at once and is announced by a hook, whose
/// parameter is the id of the module shown.
///
/// The GUI thread only. A hook, a message box, a file dialog or a menu may lead to the end of the library and
/// of this dialog.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SettingsDialog(QWidget *parent);
    ~SettingsDialog() override;

    /// Shows the present state. It does so by itself when it is shown or becomes the active window.
    void refresh();

    /// \name The buttons, whose icons and tooltips come from the debug window
    /// @{
    [[nodiscard]] QPushButton *filterButton() const;
    [[nodiscard]] QPushButton *openButton() const;
    [[nodiscard]] QPushButton *saveButton() const;
    [[nodiscard]] QPushButton *closeButton() const;
    /// @}

    /// The user wants the present configuration to be that of the next start.
    Q_SIGNAL void makeDefaultRequested();

    Q_SLOT void moduleItemClickedSlot(QListWidgetItem *item);
    Q_SLOT void classItemChangedSlot(QListWidgetItem *item);
    Q_SLOT void levelChangedSlot(int index);
    Q_SLOT void customContextMenuSlot(const QPoint &position);
    Q_SLOT void levelsContextMenuRequested(const QPoint &position);
    Q_SLOT void fileContextMenuRequested(const QPoint &position);
    Q_SLOT void fileOutputChanged();
    Q_SLOT void consoleChanged();
    Q_SLOT void assertChanged();
    Q_SLOT void timeChanged();
    Q_SLOT void threadChanged();
    Q_SLOT void moduleInfoChanged();
    Q_SLOT void clearChanged();
    Q_SLOT void makeDefault();
    Q_SLOT void setFilter();
    Q_SLOT void saveSettings();
    Q_SLOT void loadSettings();
    Q_SLOT void accept() override;
};

} // namespace Zorvan
