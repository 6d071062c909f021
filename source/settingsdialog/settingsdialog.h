#pragma once

#include <zorvan/debug.h>

#include <QDialog>
#include <QPointer>

#include <functional>
#include <memory>

class QCheckBox;
class QListWidgetItem;
class QMenu;
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
    /// Does what an entry of the menus does, see DialogCommand; other codes do nothing.
    void command(int code);

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
    /// The hook of these two comes from the event loop: its handler may delete the dialog, and Qt's list or
    /// combo box is still at work on the click.
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

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    class Updating;

    /// A change that its user makes, from before it is made. Its hook comes also if the dialog goes
    /// meanwhile, but not in the next run of the library.
    class Change
    {
    public:
        Change(SettingsDialog &dialog, moduleId module);
        [[nodiscard]] bool goesOn() const;
        /// Shows afterwards what has come of it: handlers may change more, and the library may have refused.
        void announce(const char *hook) const;
        void announceLater(const char *hook) const;

    private:
        const QPointer<SettingsDialog> m_dialog;
        const moduleId m_module;
        const unsigned m_ends;
    };

    void connectLists();
    void connectGlobals();
    void showFlags();
    void showModule();
    void showClasses();
    void showLevel();
    void applyLater(const QCheckBox &check, unsigned flag, void (SettingsDialog::*slot)());
    void setFlag(int command);
    void toggleFlag(unsigned flag, int setCommand);
    void enableAllClasses(moduleId module, bool enabled);
    void setAllClasses(moduleId module, bool enabled, const Change &change);

    /// Returns the chosen entry's data; 0 if there is none, or if the dialog is gone.
    int chosenFrom(const QPoint &globalPosition, const std::function<void(QMenu &)> &fill);
    void openDialogMenu(const QPoint &globalPosition);
    void chooseOutputFile();
    void chooseOutputFileSize();
    void switchDisplay();
    static void toggleWithoutWindow();
    static void toggleReleaseAssertions();

    const std::unique_ptr<Ui_configdialog> m_form;
    moduleId m_module = -1; ///< shown; -1 if there is none
    bool m_isUpdating = false; ///< the changes come from the dialog itself, not from its user
    bool m_isSmallDisplay = false;
};

} // namespace Zorvan
