#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <deque>
#include <functional>

namespace SignalGenerator {

class Panel;

/// Drives the panel and the debug window as a user would, answers the boxes that come up, takes a picture of
/// both and closes the panel. Says on the standard output what it does, and ends the event loop with 1 if
/// something never happens.
///
/// It works by a timer: that runs on while a box is shown.
class Autopilot : public QObject
{
public:
    /// \a script is what it chooses in the file selection, \a picture the file for the panel's picture; what
    /// it saves of the debug window comes beside that.
    Autopilot(Panel &panel, const QString &script, const QString &picture);

private:
    /// Something to do, and how to see that it has had its effect.
    struct Step
    {
        QString text;
        std::function<bool()> act; ///< false: not possible yet
        std::function<bool()> happened;
    };
    void addStep(const QString &text, std::function<bool()> act, std::function<bool()> happened);
    void addEntrySteps();
    void addHookSteps();
    void addScriptSteps(const QString &script);
    void addSelfTestSteps();
    /// A key of the debug window that makes it ask for a text.
    void addQuestionStep(Qt::Key key, const QString &text);
    void addDebugWindowSteps(const QString &folder);
    void addEnd(const QString &picture);
    void tick();
    void fail();

    Panel &m_panel;
    std::deque<Step> m_steps;
    bool m_acted = false;
    std::chrono::steady_clock::time_point m_start;
    QTimer m_timer;
};

} // namespace SignalGenerator
