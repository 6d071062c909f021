#pragma once

#include "panel/guithread.h"
#include "workerthread.h"

#include <zorvan/debug.h>

#include <QObject>
#include <QString>

#include <atomic>

namespace SignalGenerator {

class RemoteControl;

/// What takes longer than the GUI thread may be kept, and asks the operator on its way: message boxes and
/// file selection are asked for in the task thread, shown by the library in the GUI thread.
///
/// Lives in the GUI thread. The destructor waits for the running task; the library answers questions that are
/// still open when the event loop ends.
class OperatorTasks : public QObject
{
    Q_OBJECT

public:
    OperatorTasks(RemoteControl &remote, Zorvan::moduleId module);

    /// Both return at once; signals bring the result.
    void chooseScript(const QString &folder);
    void startSelfTest();
    /// Takes the box with the last result away, if it is still there. Any thread.
    void closeResult();

Q_SIGNALS:
    void scriptChosen(const QString &path); ///< empty: the operator wanted none
    void selfTestEnded(const QString &result);

private:
    QString selfTest();
    void showResult(bool passed, const QString &report);

    RemoteControl &m_remote;
    const Zorvan::moduleId m_module;
    std::atomic<int> m_resultBox{-1};
    GuiThread m_guiThread;
    WorkerThread m_thread{"task"}; // last, so that it ends first
};

} // namespace SignalGenerator
