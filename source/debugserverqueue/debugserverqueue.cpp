#include "debugserverqueue/debugserverqueue.h"

#include "debugserverqueue/boxpresenter.h"
#include "debugserverqueue/builtinhooks.h"
#include "debugserverqueue/events.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/hooks.h"
#include "host/hosthandlers.h"

#include <QGuiApplication>
#include <QPointer>

#include <atomic>

namespace Zorvan {

namespace {

constexpr std::int32_t fastBatch = 200; // lines that are delivered at once
constexpr std::int32_t linesPerMillisecond = 50; // longer batches grow by 1 ms for each of these

std::atomic<bool> s_useDaemon{false};

void openServerIfWanted()
{
    if (!QCoreApplication::startingUp() && !QCoreApplication::closingDown()
        && host::readInteger(QStringLiteral("serverPortOpen"), 0) == 1)
        Debug::setClientsAllowed(true);
}

bool isQueueEvent(QEvent::Type type)
{
    return type >= eventType(QueueEvent::Start) && type <= eventType(QueueEvent::Title);
}

} // namespace

DebugServerQueue::DebugServerQueue()
    : m_boxes(std::make_unique<BoxPresenter>(*this))
{
    QCoreApplication *const application = QCoreApplication::instance();
    moveToThread(application->thread());
    connect(application, &QCoreApplication::aboutToQuit, this, &DebugServerQueue::eventloopStopped);
    if (auto *const windows = qobject_cast<QGuiApplication *>(application))
        connect(windows, &QGuiApplication::lastWindowClosed, this, &DebugServerQueue::endWithLastWindow);
    installEventFilter(this);
    hooks::installLibraryHooks();
}

DebugServerQueue::~DebugServerQueue()
{
    guibridge::queueGone(this);
    closeTestEditor();
}

bool DebugServerQueue::useDaemon()
{
    return s_useDaemon.load();
}

void DebugServerQueue::readUseDaemon()
{
    s_useDaemon.store(host::readInteger("ProgressBar", QStringLiteral("useDaemon"), 0) == 1);
}

void DebugServerQueue::guiRunning()
{
    guibridge::loopFound();
}

void DebugServerQueue::eventloopStopped()
{
    guibridge::setEventLoopRunning(false);
}

void DebugServerQueue::timeout()
{
    const QPointer<DebugServerQueue> kept(this);
    guibridge::readOutputSettings();
    if (kept && isInUse())
        m_remoteAccess.dropLaggards();
    if (kept && isInUse() && wantsWindow())
        makeWindow();
    // Otherwise the lines belong to its successor, or have to wait.
    if (kept && isInUse() && !m_isMakingWindow)
        deliverLines();
}

/// Code of the host, which the queue leads into, may have ended the library and even started it again.
bool DebugServerQueue::isInUse() const
{
    return guibridge::queueHere() == this;
}

void DebugServerQueue::deliverLines()
{
    if (m_remoteAccess.hasClients())
        deliverToClients();
    else if (m_window.get() != nullptr && !guibridge::isWindowOutputDropped())
        deliverToWindow();
    else if (!guibridge::canShowWindows() || guibridge::isWindowOutputDropped())
        guibridge::deliverLines(m_batch);
}

void DebugServerQueue::deliverToClients()
{
    if (m_remoteAccess.hasClients() && guibridge::takeLines(m_batch))
        m_remoteAccess.send(m_batch);
}

void DebugServerQueue::closeDetached()
{
    m_remoteAccess.closeDetached();
    m_window.end();
    m_boxes->putAway(); // now: the queue goes when the caller has returned to the loop
}

// As a filter of the application it sees the events of all objects, and numbers of its events may mean
// something else there.
bool DebugServerQueue::eventFilter(QObject *watched, QEvent *event)
{
    if (m_boxes->filter(watched, event))
        return true;
    if (watched != this || !isQueueEvent(event->type()))
        return QObject::eventFilter(watched, event);
    handle(event);
    return true; // the queue may be deleted by now
}

// An application that ends with its last window asks every other one whether it closes, also the boxes that
// their user cannot close.
void DebugServerQueue::endWithLastWindow()
{
    if (QGuiApplication::quitOnLastWindowClosed())
        m_boxes->removeAll();
}

void DebugServerQueue::handle(QEvent *event)
{
    platform::takeOver(event);
    switch (static_cast<QueueEvent>(event->type())) {
    case QueueEvent::Start:
        if (!m_isStarted)
            start();
        else if (m_window.get() != nullptr)
            m_window.get()->clearText();
        break;
    case QueueEvent::LinesWait:
        armTimer();
        break;
    case QueueEvent::Box: {
        auto *const request = static_cast<BoxMsg *>(event);
        request->answer.give(m_boxes->show(request->content, request->answer.giver()));
        break;
    }
    case QueueEvent::RemoveBox:
        m_boxes->remove(static_cast<RemoveMsg *>(event)->id);
        break;
    case QueueEvent::FileSelect: {
        auto *const request = static_cast<FileSelectMsg *>(event);
        request->answer.give(BoxPresenter::selectFile(request->question, request->answer.giver()));
        break;
    }
    case QueueEvent::HookDone:
        hooks::reap(static_cast<HookDoneMsg *>(event)->thread);
        if (static_cast<HookDoneMsg *>(event)->forWindow && m_window.get() != nullptr)
            m_window.get()->hookDone();
        break;
    case QueueEvent::Server:
        openOrCloseServer(static_cast<ServerEventMsg *>(event)->allowed);
        break;
    case QueueEvent::Redraw:
        fillHooks();
        refreshSettings();
        break;
    case QueueEvent::Rebuild:
        refreshSettings();
        break;
    case QueueEvent::ShowWindow:
        showWindow();
        break;
    case QueueEvent::Title:
        if (m_window.get() != nullptr)
            m_window.get()->setWindowTitle(guibridge::windowTitle());
        break;
    }
}

// The host is asked last: it may do anything, even end the library.
void DebugServerQueue::start()
{
    m_isStarted = true;
    m_flushTimer = std::make_unique<QTimer>();
    m_flushTimer->setSingleShot(true);
    connect(m_flushTimer.get(), &QTimer::timeout, this, &DebugServerQueue::timeout);
    guibridge::loopFound();
    openServerIfWanted();
}

void DebugServerQueue::armTimer()
{
    const std::int32_t waiting = guibridge::waitingLines();
    m_flushTimer->start(waiting <= fastBatch ? 0 : waiting / linesPerMillisecond);
}

void DebugServerQueue::openOrCloseServer(bool allowed)
{
    m_clientsWanted = allowed;
    if (allowed == m_remoteAccess.isOpen())
        return;
    if (!allowed) {
        m_remoteAccess.close();
        return;
    }
    const QPointer<DebugServerQueue> kept(this);
    const ServerPlace place = ServerPlace::read();
    if (kept && isInUse() && m_clientsWanted && !m_remoteAccess.isOpen())
        m_remoteAccess.open(place);
}

} // namespace Zorvan
