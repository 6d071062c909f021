#pragma once

/// The requests that other threads post to the queue in the GUI thread; see guibridge::post().

#include "debugserverqueue/answer.h"
#include "debugserverqueue/boxcontent.h"

#include <QEvent>

class QThread;

namespace Zorvan {

/// Types of the events. The numbers are fixed: hosts with events of their own keep away from them.
enum class QueueEvent : int {
    Start = 1000, ///< the first one starts the queue; a later one clears the window
    LinesWait = 1001, ///< the list of pending lines was empty
    Redraw = 1002,
    Rebuild = 1003,
    Box = 1004,
    RemoveBox = 1005,
    FileSelect = 1006,
    HookDone = 1007,
    ShowWindow = 1008,
    Server = 1009,
    Title = 1010,
};

constexpr QEvent::Type eventType(QueueEvent event)
{
    return static_cast<QEvent::Type>(event);
}

class BoxMsg final : public QEvent
{
public:
    explicit BoxMsg(BoxContent shown)
        : QEvent(eventType(QueueEvent::Box))
        , content(std::move(shown))
    {}

    BoxContent content;
    PendingAnswer<int> answer; ///< gets what Debug::debugMessageBox() returns
};

class RemoveMsg final : public QEvent
{
public:
    explicit RemoveMsg(int boxId)
        : QEvent(eventType(QueueEvent::RemoveBox))
        , id(boxId)
    {}

    const int id;
};

/// What a file selection asks for.
struct FileQuestion
{
    QString caption;
    QString directory;
    QString filter;
};

class FileSelectMsg final : public QEvent
{
public:
    explicit FileSelectMsg(FileQuestion asked)
        : QEvent(eventType(QueueEvent::FileSelect))
        , question(std::move(asked))
    {}

    FileQuestion question;
    PendingAnswer<QString> answer; ///< gets the chosen path, empty if the user cancelled
};

/// Without a thread if none could be started.
class HookDoneMsg final : public QEvent
{
public:
    HookDoneMsg(QThread *finished, bool windowFollows)
        : QEvent(eventType(QueueEvent::HookDone))
        , thread(finished)
        , forWindow(windowFollows)
    {}

    QThread *const thread;
    const bool forWindow; ///< the window knows of its start
};

class ServerEventMsg final : public QEvent
{
public:
    explicit ServerEventMsg(bool open)
        : QEvent(eventType(QueueEvent::Server))
        , allowed(open)
    {}

    const bool allowed;
};

} // namespace Zorvan
