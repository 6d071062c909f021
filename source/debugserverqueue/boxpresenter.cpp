#include "debugserverqueue/boxpresenter.h"

#include "debugserverqueue/debugmessagedialog.h"
#include "debugserverqueue/debugserverqueue.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/showndialog.h"
#include "host/hosthandlers.h"
#include "lowlevelfunctions/daemonlink.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QPointer>

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

namespace Zorvan {

namespace {

constexpr int handledByHost = 1; // no id: those begin above it

std::atomic<int> s_nextId{2};

bool isKeyEvent(const QEvent *event)
{
    return event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
}

/// Instruments without an Enter key at hand send Alt+F12 instead.
bool isEnterInDisguise(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    return event.key() == Qt::Key_F12 && modifiers == Qt::AltModifier;
}

bool filterKey(QObject *watched, const QKeyEvent &event)
{
    if (isEnterInDisguise(event)) {
        QKeyEvent enter(event.type(), Qt::Key_Enter, Qt::NoModifier);
        QCoreApplication::sendEvent(watched, &enter);
        return true;
    }
    const auto *const widget = qobject_cast<QWidget *>(watched);
    const auto *const box = widget ? qobject_cast<debugMessageDialog *>(widget->window()) : nullptr;
    return box != nullptr && box->confinesFocus(event, watched);
}

/// Tells the debug daemon, for as long as it exists, that a box waits for its user.
class ProgressNotices
{
public:
    ProgressNotices()
        : m_wanted(DebugServerQueue::useDaemon())
    {
        if (m_wanted)
            daemonLink().sendProgress("messageStart");
    }
    ~ProgressNotices()
    {
        if (m_wanted)
            daemonLink().sendProgress("messageStop");
    }
    ProgressNotices(const ProgressNotices &) = delete;
    ProgressNotices &operator=(const ProgressNotices &) = delete;

private:
    const bool m_wanted;
};

/// Boxes that are to be deleted when the loop gets to it. The GUI thread only.
std::vector<QPointer<debugMessageDialog>> &endedBoxes()
{
    static auto *const boxes = new std::vector<QPointer<debugMessageDialog>>;
    return *boxes;
}

void deleteSoon(debugMessageDialog *box)
{
    auto &ended = endedBoxes();
    ended.erase(std::remove(ended.begin(), ended.end(), nullptr), ended.end());
    ended.emplace_back(box);
    box->deleteLater();
}

} // namespace

BoxPresenter::BoxPresenter(DebugServerQueue &queue)
    : m_queue(queue)
{}

BoxPresenter::~BoxPresenter()
{
    const QHash<int, debugMessageDialog *> open = std::exchange(m_open, {});
    for (debugMessageDialog *const box : open) {
        if (guibridge::eventLoopRunning())
            deleteSoon(box);
        else
            delete box;
    }
}

void BoxPresenter::deleteEnded()
{
    const std::vector<QPointer<debugMessageDialog>> boxes = std::exchange(endedBoxes(), {});
    for (const QPointer<debugMessageDialog> &box : boxes)
        delete box;
}

int BoxPresenter::show(const BoxContent &content, const std::function<void()> &giveUp)
{
    if (IMessageBoxInterface *const handler = host::messageBoxHandler()) {
        handler->showMessage(content.message);
        return handledByHost;
    }
    return content.modal ? askModal(m_queue, content, giveUp) : showOpen(content);
}

int BoxPresenter::showOpen(const BoxContent &content)
{
    const QPointer<DebugServerQueue> keptQueue(&m_queue);
    auto *const box = new debugMessageDialog(content);
    if (!keptQueue) { // the host ended the library when it was asked for the settings of the box
        delete box;
        return boxcodes::noAnswer;
    }
    box->installEventFilter(&m_queue);
    QCoreApplication::instance()->installEventFilter(&m_queue);
    box->show();
    const int id = s_nextId.fetch_add(1);
    m_open.insert(id, box);
    return id;
}

// Static: after the box's event loop only what is held here is sure to exist.
int BoxPresenter::askModal(DebugServerQueue &queue, const BoxContent &content,
                           const std::function<void()> &giveUp)
{
    const QPointer<DebugServerQueue> keptQueue(&queue);
    queue.timeout(); // what led to the question is seen before it
    const QPointer<debugMessageDialog> box(new debugMessageDialog(content));
    if (keptQueue)
        QCoreApplication::instance()->installEventFilter(keptQueue);
    int result = 0;
    {
        const ProgressNotices notices;
        const ShownDialog shown(*box, giveUp);
        result = box->exec();
    }
    // Also when other boxes are open: hosts know it like that.
    if (keptQueue)
        QCoreApplication::instance()->removeEventFilter(keptQueue);
    delete box.data();
    return debugMessageDialog::codeOf(result);
}

void BoxPresenter::remove(int id)
{
    debugMessageDialog *const box = m_open.take(id);
    stopFilteringWithoutBoxes();
    if (box)
        deleteSoon(box);
}

void BoxPresenter::removeAll()
{
    for (debugMessageDialog *const box : m_open.values())
        box->hide();
}

void BoxPresenter::putAway()
{
    QCoreApplication::instance()->removeEventFilter(&m_queue);
    for (debugMessageDialog *const box : m_open.values()) {
        box->removeEventFilter(&m_queue); // it stays here, to be deleted
        box->hide();
    }
}

bool BoxPresenter::filter(QObject *watched, QEvent *event)
{
    if (isKeyEvent(event))
        return filterKey(watched, *static_cast<QKeyEvent *>(event));
    // A box that the window system hides, for example by minimising it, comes back.
    if (event->type() == QEvent::Hide && !event->spontaneous())
        boxHidden(watched);
    return false;
}

void BoxPresenter::boxHidden(QObject *box)
{
    for (auto open = m_open.begin(); open != m_open.end(); ++open) {
        if (open.value() != box)
            continue;
        deleteSoon(open.value());
        m_open.erase(open);
        stopFilteringWithoutBoxes();
        return;
    }
}

void BoxPresenter::stopFilteringWithoutBoxes()
{
    if (m_open.isEmpty())
        QCoreApplication::instance()->removeEventFilter(&m_queue);
}

QString BoxPresenter::selectFile(const FileQuestion &question, const std::function<void()> &giveUp)
{
    QFileDialog dialog(nullptr, question.caption, question.directory, question.filter);
    dialog.setAttribute(Qt::WA_QuitOnClose, false); // perhaps the only window of the host
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (QFileInfo(question.directory).isFile())
        dialog.selectFile(question.directory);
    const ShownDialog shown(dialog, giveUp);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace Zorvan
