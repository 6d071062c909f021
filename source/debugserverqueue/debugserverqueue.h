#pragma once

#include "debugserverqueue/outputwindow.h"
#include "debugserverqueue/remoteaccess.h"

#include <zorvan/debug.h>

#include <QObject>
#include <QTimer>

#include <memory>
#include <string>

namespace Zorvan {

class BoxPresenter;

/// The one object that lives in the GUI thread and does there what other threads ask for: it brings their
/// lines to the debug window or to remote clients, in batches, shows their message boxes and file selections,
/// and joins their hook threads.
///
/// Other threads reach it through guibridge only. It is made in whatever thread first needs it and moves to
/// the application's thread; everything but the constructor runs there, the destructor included.
class DebugServerQueue final : public QObject
{
    Q_OBJECT

public:
    DebugServerQueue();
    ~DebugServerQueue() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    [[nodiscard]] BoxPresenter &boxes() { return *m_boxes; }
    /// Whether message boxes are announced to the debug daemon: setting "useDaemon" of the group
    /// "ProgressBar". Any thread.
    [[nodiscard]] static bool useDaemon();
    static void readUseDaemon();

    /// Delivers the lines that wait to the remote clients, if there are any. Calls nobody: locks may be held.
    void deliverToClients();
    /// Delivers them to the window, if there is one and no client takes them.
    void deliverToWindow();
    /// The same for a window that stays when the queue ends.
    void deliverToLastingWindow();
    /// The window; null if there is none.
    [[nodiscard]] DebugWindow *window() const { return m_window.get(); }
    /// What became of the window's state elsewhere; nothing happens without a window.
    void clientCountChanged();
    void modesChanged();
    void hookStarted();
    /// The window only: the other outputs are off already.
    void switchWindowOff();
    /// For a queue that is detached: closes its port, which its successor may want, and its window.
    void closeDetached();

    /// A host may call it when its event loop is up; otherwise the queue finds out by its first event.
    Q_SLOT static void guiRunning();
    Q_SLOT static void eventloopStopped();
    /// Delivers the lines that wait, as one batch.
    Q_SLOT void timeout();

private:
    void endWithLastWindow();
    void handle(QEvent *event);
    void start();
    void armTimer();
    void openOrCloseServer(bool allowed);
    void deliverLines();
    [[nodiscard]] bool wantsWindow() const;
    bool makeWindow();
    void takeWindowIntoUse();
    void fillHooks();
    void refreshSettings();
    void showTitle();
    void putWindowOnScreen();
    std::int64_t sendWindowText(const DebugWindow &window);
    void showWindow();
    [[nodiscard]] bool isInUse() const;

    bool m_isStarted = false;
    std::unique_ptr<QTimer> m_flushTimer;
    std::unique_ptr<BoxPresenter> m_boxes;
    bool m_clientsWanted = false; ///< the last request
    RemoteAccess m_remoteAccess;
    OutputWindow m_window;
    bool m_isMakingWindow = false;
    std::string m_batch; ///< its memory goes back and forth between this and the lines that wait
};

} // namespace Zorvan
