#pragma once

#include "debugserverqueue/boxcontent.h"
#include "debugserverqueue/events.h"

#include <QHash>

class QKeyEvent;

namespace Zorvan {

class DebugServerQueue;
class debugMessageDialog;

/// Shows message boxes and file dialogs, and keeps the boxes that stay open. In the GUI thread only.
///
/// Boxes with an answer run an event loop of their own. Anything may happen in it; the queue, and this with
/// it, may be gone afterwards.
class BoxPresenter
{
public:
    explicit BoxPresenter(DebugServerQueue &queue);
    ~BoxPresenter();
    BoxPresenter(const BoxPresenter &) = delete;
    BoxPresenter &operator=(const BoxPresenter &) = delete;

    /// What Debug::debugMessageBox() returns for the box. \a giveUp releases a thread that waits for it.
    int show(
        const BoxContent &content, const std::function<void()> &giveUp = [] {});
    /// Takes an open box away; an unknown id does no harm.
    void remove(int id);
    /// Takes all open boxes away.
    void removeAll();
    /// Nobody sees the open boxes any more; they are deleted with this object.
    void putAway();
    /// Deletes those that wait for a loop to do it, as none will: the application ends.
    static void deleteEnded();
    /// Keeps the focus inside the boxes and notices when one is hidden. True if the event is used up.
    bool filter(QObject *watched, QEvent *event);

    /// The chosen path, empty if the user cancelled.
    static QString selectFile(
        const FileQuestion &question, const std::function<void()> &giveUp = [] {});

private:
    int showOpen(const BoxContent &content);
    static int askModal(DebugServerQueue &queue, const BoxContent &content,
                        const std::function<void()> &giveUp);
    void boxHidden(QObject *box);
    void stopFilteringWithoutBoxes();

    DebugServerQueue &m_queue;
    QHash<int, debugMessageDialog *> m_open; // by box id
};

} // namespace Zorvan
