#pragma once

#include "panel/guithread.h"
#include "workerthread.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <deque>
#include <string>

namespace SignalGenerator {

class Console;
class Instrument;

/// Commands for the instrument without waiting for it: the command thread carries them out, one at a time, in
/// the order in which they came. What it has to tell comes back as signals in the GUI thread.
///
/// Lives in the GUI thread. The destructor ends a script between two lines and a sweep at its next point.
class RemoteControl : public QObject
{
    Q_OBJECT

public:
    /// \a console carries out the lines for \a instrument; both stay with the command thread as long as this
    /// object lives.
    RemoteControl(Instrument &instrument, Console &console);
    ~RemoteControl() override;

    /// Any thread; returns at once.
    void send(const std::string &line);
    /// Waits for the reply. Any thread but the command thread, which would wait for itself, and the GUI
    /// thread, which waits for nobody.
    [[nodiscard]] std::string ask(const std::string &line);
    /// Takes what is in the error queue; errorsTaken() brings it, if there is something.
    void takeErrors();
    /// Whether something that was sent is not done yet. GUI thread.
    [[nodiscard]] bool isBusy() const { return m_waiting > 0; }

    /// Carries out the lines of a file one by one, so that other commands find their place in between. GUI
    /// thread; scriptEnded() says how it went. Nothing happens while another script runs.
    void startScript(const QString &path);
    void stopScript();
    [[nodiscard]] bool scriptRuns() const { return m_scriptRuns; }

Q_SIGNALS:
    void done(); ///< a command that was sent is carried out
    void errorsTaken(const QString &errors);
    void scriptAdvanced(int line, int lines);
    void scriptEnded(const QString &result);

private:
    /// What the command thread knows of the running script.
    struct Script
    {
        std::string name;
        std::deque<std::string> lines;
        int done = 0;
        int count = 0;
    };
    void readScript(const std::string &path);
    void runNextLine();
    void endScript(const std::string &result);

    Instrument &m_instrument;
    Console &m_console;
    GuiThread m_guiThread;
    std::atomic<int> m_waiting{0};
    std::atomic<bool> m_stop{false};
    bool m_scriptRuns = false; // GUI thread
    Script m_script; // command thread
    WorkerThread m_thread{"command"}; // last, so that it ends first
};

} // namespace SignalGenerator
