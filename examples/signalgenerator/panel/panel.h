#pragma once

#include <QTimer>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace SignalGenerator {

class Controls;
class Display;
class Instrument;
class OperatorTasks;
class RemoteControl;

/// The front panel: shows the status of the instrument several times a second and sends commands. It waits
/// for nothing.
class Panel : public QWidget
{
    Q_OBJECT

public:
    /// All three outlive the panel.
    Panel(const Instrument &instrument, RemoteControl &remote, OperatorTasks &tasks);

    /// What the file selection for scripts starts with.
    void setScriptFolder(const QString &folder) { m_scriptFolder = folder; }
    void runScript(const QString &path);

Q_SIGNALS:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QLabel *makeMessageLine();
    QWidget *makeActionBar();
    QWidget *makeHookBar();
    QPushButton *makeButton(const QString &text, const char *name);
    void connectRemoteControl();
    void connectTasks();

    void send(const QByteArray &line);
    void follow();
    void scriptClicked();
    void selfTestClicked();
    void triggerHook();
    void setTaskRunning(bool running);
    void enableControls();
    void say(const QString &text);
    void sayError(const QString &text);

    const Instrument &m_instrument;
    RemoteControl &m_remote;
    OperatorTasks &m_tasks;
    QString m_scriptFolder;
    bool m_taskRuns = false;
    bool m_errorShown = false;
    QTimer m_refresh;

    Display *m_display;
    Controls *m_controls;
    QPushButton *m_preset;
    QPushButton *m_script;
    QPushButton *m_selfTest;
    QComboBox *m_hook;
    QLineEdit *m_hookParameter;
    QLabel *m_message;
};

} // namespace SignalGenerator
