#include "debugserverqueue/guibridge.h"

#include "debugserverqueue/afterlines.h"
#include "debugserverqueue/boxpresenter.h"
#include "debugserverqueue/debugserverqueue.h"
#include "debugserverqueue/events.h"
#include "debugserverqueue/hooks.h"
#include "debugserverqueue/pendinglines.h"
#include "debugserverqueue/showndialog.h"
#include "host/hosthandlers.h"
#include "host/outputswitch.h"
#include "host/savedconfiguration.h"
#include "host/tablestate.h"
#include "platform/process.h"
#include "platform/standardoutput.h"

#include <QApplication>
#include <QPointer>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <vector>

namespace Zorvan::guibridge {

namespace {

using platform::Locked;

std::atomic<bool> s_eventLoopRunning{false};
std::atomic<bool> s_canShowWindows{false}; // found out when the queue is made
std::atomic<bool> s_windowOutputDropped{false};
std::atomic<bool> s_clientMode{false};
std::atomic<int> s_clientCount{0};
std::atomic<void *> s_guiThreadId{nullptr};
std::atomic<bool> s_hasWindow{false};
std::atomic<void (*)()> s_endHandler{nullptr};

// Whether a queue may be made, and whether there is one.
std::atomic<bool> s_queueExists{false};
std::atomic<int> s_endings{0};
std::atomic<bool> s_applicationEnds{false};
std::atomic<bool> s_endIsWatched{false};
std::atomic<bool> s_isForkedChild{false};
std::atomic<bool> s_processEnds{false};

/// The queue, and what belongs to it. One object, never destroyed: static objects of the host may print.
struct Road
{
    bool isBeingMade ZORVAN_GUARDED_BY(TableState::lock()) = false;
    platform::Mutex delivery; ///< held from taking a batch until it is written: batches keep their order
    PendingLines lines;
    platform::Mutex handOver; ///< held to post: a queue that somebody posts to is not deleted meanwhile
    DebugServerQueue *queue ZORVAN_GUARDED_BY(handOver) = nullptr;
    QString title ZORVAN_GUARDED_BY(handOver);
    QPointer<DebugWindow> externalWindow ZORVAN_GUARDED_BY(handOver);
    /// Detached queues that are still to be deleted. Who takes one out deletes it.
    std::vector<DebugServerQueue *> retired ZORVAN_GUARDED_BY(handOver);
};

Road &road()
{
    static auto *instance = new Road;
    return *instance;
}

bool mayMakeQueue()
{
    return s_endings.load(std::memory_order_acquire) == 0
        && !s_applicationEnds.load(std::memory_order_relaxed)
        && !s_isForkedChild.load(std::memory_order_relaxed) && !s_processEnds.load(std::memory_order_relaxed);
}

void postTo(DebugServerQueue *queue, std::unique_ptr<QEvent> event)
{
    platform::handOver(event.get());
    QCoreApplication::postEvent(queue, event.release());
}

/// Publishing the queue and posting its start event are one step: nothing is posted before the start.
void publish(DebugServerQueue *queue)
{
    const Locked guard(road().handOver);
    road().queue = queue;
    s_queueExists.store(true, std::memory_order_release);
    postTo(queue, std::make_unique<QEvent>(eventType(QueueEvent::Start)));
}

/// False: there is one already, or none may be made. The application of the host may see the new object, and
/// print or ask something in turn; there is no queue for that yet.
bool makeQueue()
{
    const Locked table(TableState::lock());
    if (queueExists() || road().isBeingMade || !qtApplicationRuns() || !mayMakeQueue())
        return false;
    road().isBeingMade = true;
    watchApplicationEnd();
    s_canShowWindows.store(qobject_cast<QApplication *>(QCoreApplication::instance()) != nullptr);
    publish(new DebugServerQueue);
    road().isBeingMade = false;
    return true;
}

/// Has the window follow something when the loop gets to it: the caller may hold locks.
void tellWindowLater(void (DebugServerQueue::*what)())
{
    if (!s_hasWindow.load())
        return;
    const Locked guard(road().handOver);
    if (road().queue != nullptr)
        QMetaObject::invokeMethod(road().queue, what, Qt::QueuedConnection);
}

/// The same, but at once if the caller is in the window's thread.
void tellWindow(void (DebugServerQueue::*what)())
{
    if (DebugServerQueue *const here = queueHere())
        (here->*what)();
    else
        tellWindowLater(what);
}

/// Reads what the host has to say to a new queue. Its reader may print: the queue takes lines already.
void readQueueSettings()
{
    DebugServerQueue::readUseDaemon();
    if (host::readInteger(QStringLiteral("showWindow"), 0) == 1)
        post(std::make_unique<QEvent>(eventType(QueueEvent::ShowWindow)));
}

void postIfLoopRuns(QueueEvent event)
{
    if (queueExists() && usingQt() && eventLoopRunning())
        post(std::make_unique<QEvent>(eventType(event)));
}

DebugServerQueue *detachQueue()
{
    const Locked guard(road().handOver);
    DebugServerQueue *const queue = std::exchange(road().queue, nullptr);
    s_queueExists.store(false, std::memory_order_release);
    road().title = QString();
    s_hasWindow.store(false);
    if (queue) {
        QCoreApplication::removePostedEvents(queue); // their ends answer whoever waits
        road().retired.push_back(queue);
    }
    return queue;
}

/// False: somebody else deletes it, or has done so.
bool takeRetired(DebugServerQueue *queue)
{
    const Locked guard(road().handOver);
    const auto found = std::find(road().retired.begin(), road().retired.end(), queue);
    if (found == road().retired.end())
        return false;
    road().retired.erase(found);
    return true;
}

/// Its own thread deletes it, if that has a loop; otherwise the end of the application does.
void deleteLater(DebugServerQueue *queue)
{
    const Locked guard(road().handOver);
    if (std::find(road().retired.begin(), road().retired.end(), queue) == road().retired.end())
        return;
    // A host that only handles events now and then, without a loop, never gets to the deletion.
    QMetaObject::invokeMethod(queue, &DebugServerQueue::closeDetached, Qt::QueuedConnection);
    queue->deleteLater();
}

void deliverLastLines()
{
    std::string batch;
    deliverLines(batch);
}

/// A process may end without its application object being destroyed. What is printed from here on goes to the
/// standard output at once. No lock of the table: a thread that still runs may never release it.
class ProcessEnd
{
public:
    ProcessEnd() = default;
    ~ProcessEnd()
    {
        s_processEnds.store(true);
        s_queueExists.store(false);
        deliverLastLines();
    }
    ProcessEnd(const ProcessEnd &) = delete;
    ProcessEnd &operator=(const ProcessEnd &) = delete;
};

const ProcessEnd s_processEnd;

/// No loop will delete them any more. In the GUI thread.
void deleteRetired()
{
    for (;;) {
        DebugServerQueue *queue = nullptr;
        {
            const Locked guard(road().handOver);
            if (road().retired.empty())
                break;
            queue = road().retired.back();
            road().retired.pop_back();
        }
        delete queue;
    }
    BoxPresenter::deleteEnded();
    OutputWindow::deleteEnded();
}

void applicationStarts()
{
    s_applicationEnds.store(false);
}

/// Runs while the application object is destroyed, in its thread. What else ends comes first: it may still
/// want the queue.
void applicationEnds()
{
    s_endIsWatched.store(false); // the application takes the registration with it
    setEventLoopRunning(false);
    if (void (*const handler)() = s_endHandler.load())
        handler();
    Ending ending;
    s_applicationEnds.store(true);
    ending.deleteQueue();
    deleteRetired();
    applicationGone();
}

void holdRoad() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    road().delivery.lock();
    road().lines.lockForFork();
    road().handOver.lock();
}

void releaseRoad() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    road().handOver.unlock();
    road().lines.unlockInParent();
    road().delivery.unlock();
}

void releaseRoadInChild() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    s_isForkedChild.store(QCoreApplication::instance() != nullptr);
    road().queue = nullptr;
    s_queueExists.store(false);
    road().handOver.unlock();
    road().lines.unlockInChild();
    road().delivery.unlock();
}

} // namespace

bool qtApplicationRuns()
{
    return QCoreApplication::instance() != nullptr && !QCoreApplication::startingUp()
        && !QCoreApplication::closingDown();
}

bool canShowWindows()
{
    return s_canShowWindows.load();
}

bool usingQt()
{
    if (!qtApplicationRuns() || !mayMakeQueue())
        return false;
    if (!queueExists() && makeQueue())
        readQueueSettings();
    return queueExists();
}

bool queueExists()
{
    return s_queueExists.load(std::memory_order_acquire);
}

DebugServerQueue *queueHere()
{
    const Locked guard(road().handOver);
    DebugServerQueue *const queue = road().queue;
    return queue && queue->thread() == QThread::currentThread() ? queue : nullptr;
}

bool isGuiThread()
{
    return queueHere() != nullptr;
}

bool post(std::unique_ptr<QEvent> event)
{
    const Locked guard(road().handOver);
    if (road().queue == nullptr)
        return false;
    postTo(road().queue, std::move(event));
    return true;
}

bool postRequest(std::unique_ptr<QEvent> event)
{
    const Locked guard(road().handOver);
    if (road().queue == nullptr || !eventLoopRunning())
        return false;
    postTo(road().queue, std::move(event));
    return true;
}

bool handOver(std::string_view line)
{
    // The queue outlives all doubts about the application: it is detached before the application goes.
    const bool isNew = !queueExists() && makeQueue();
    if (!queueExists())
        return false;
    if (road().lines.append(line))
        afterlines::noteBatch();
    afterlines::noteLine(waitingLines());
    if (isNew)
        readQueueSettings(); // what its reading prints comes behind this line
    return true;
}

void announceLines()
{
    post(std::make_unique<QEvent>(eventType(QueueEvent::LinesWait)));
}

std::int32_t waitingLines()
{
    return road().lines.count();
}

void forgetWaitingLines()
{
    road().lines.forgetCount();
}

bool linesWait()
{
    return road().lines.hasLines();
}

bool takeLines(std::string &batch)
{
    const Locked guard(road().delivery);
    return road().lines.take(batch);
}

void deliverLines(std::string &batch)
{
    const Locked guard(road().delivery);
    if (road().lines.take(batch) && !isWindowOutputDropped())
        platform::writeStandardOutput(batch += '\n');
}

void readOutputSettings()
{
    static std::atomic<bool> isRead{false};
    if (!isRead.exchange(true)) // before reading: the host's reader may lead here again
        s_windowOutputDropped.store(host::readInteger(QStringLiteral("noWindowOutput"), 0) == 1);
}

bool isWindowOutputDropped()
{
    return s_windowOutputDropped.load(std::memory_order_relaxed);
}

void clear()
{
    road().lines.clear();
    post(std::make_unique<QEvent>(eventType(QueueEvent::Start)));
}

void requestRebuild()
{
    postIfLoopRuns(QueueEvent::Rebuild);
}

void requestRedraw()
{
    postIfLoopRuns(QueueEvent::Redraw);
}

void setEventLoopRunning(bool running)
{
    const Locked guard(road().handOver);
    s_eventLoopRunning.store(running);
    if (running || road().queue == nullptr)
        return;
    QCoreApplication::removePostedEvents(road().queue, static_cast<int>(QueueEvent::Box));
    QCoreApplication::removePostedEvents(road().queue, static_cast<int>(QueueEvent::FileSelect));
}

bool eventLoopRunning()
{
    return s_eventLoopRunning.load();
}

void setGuiThreadId(void *id)
{
    s_guiThreadId.store(id);
}

void *guiThreadId()
{
    return s_guiThreadId.load();
}

void setExternalWindow(DebugWindow *window)
{
    const Locked guard(road().handOver);
    road().externalWindow = window;
}

DebugWindow *externalWindow()
{
    const Locked guard(road().handOver);
    return road().externalWindow;
}

void setHasWindow(bool has)
{
    s_hasWindow.store(has);
}

void setClientMode()
{
    s_clientMode.store(true);
    tellWindowLater(&DebugServerQueue::modesChanged);
}

bool isClientMode()
{
    return s_clientMode.load();
}

void setClientCount(int count)
{
    s_clientCount.store(count);
    tellWindow(&DebugServerQueue::clientCountChanged);
}

int clientCount()
{
    return s_clientCount.load();
}

void announceModes()
{
    tellWindow(&DebugServerQueue::modesChanged);
}

void switchWindowOff()
{
    if (!s_hasWindow.load() || Debug::isServer())
        return;
    host::setOutputEnabled(false); // at once: what the caller does to classes and levels next switches it on
    tellWindowLater(&DebugServerQueue::switchWindowOff);
}

void announceHookStart()
{
    tellWindow(&DebugServerQueue::hookStarted);
}

void makeDefault()
{
    if (DebugWindow *const window = windowHere())
        window->makeDefault();
    else
        host::saveConfiguration();
}

DebugWindow *windowHere()
{
    DebugServerQueue *const here = queueHere();
    return here != nullptr ? here->window() : nullptr;
}

DebugWindow *windowWithAllLines()
{
    if (DebugServerQueue *const here = queueHere())
        here->deliverToWindow();
    return windowHere(); // filters of the host have seen what happened to the window
}

void applicationGone()
{
    setEventLoopRunning(false);
    setGuiThreadId(nullptr);
}

void loopFound()
{
    afterlines::setLoopThread(platform::currentThreadId());
    setGuiThreadId(platform::currentThreadId());
    setEventLoopRunning(true);
}

void setWindowTitle(const QString &title)
{
    const Locked guard(road().handOver);
    if (road().queue == nullptr)
        return;
    road().title = title;
    postTo(road().queue, std::make_unique<QEvent>(eventType(QueueEvent::Title)));
}

QString windowTitle()
{
    const Locked guard(road().handOver);
    return road().title;
}

void registerForkHandlers()
{
    static const bool registered = [] {
        road(); // made here, while there is one thread
        // The preparing functions run from the last to the first.
        platform::aroundFork(holdRoad, releaseRoad, releaseRoadInChild);
        hooks::registerForkHandlers();
        return true;
    }();
    static_cast<void>(registered);
}

void setEndHandler(void (*handler)())
{
    s_endHandler.store(handler);
}

void watchApplicationEnd()
{
    static const bool startWatched = [] {
        qAddPreRoutine(applicationStarts);
        return true;
    }();
    static_cast<void>(startWatched);
    if (!s_endIsWatched.exchange(true))
        qAddPostRoutine(applicationEnds);
}

Ending::Ending()
{
    if (queueExists())
        readOutputSettings();
    if (DebugServerQueue *const here = queueHere())
        here->deliverToLastingWindow(); // with no lock held: filters of the host see what happens to it
    const Locked table(TableState::lock());
    s_endings.fetch_add(1);
    if (DebugServerQueue *const here = queueHere()) {
        m_isGuiThread = true;
        here->deliverToClients();
    }
    m_queue = detachQueue();
    deliverLastLines();
    afterlines::setLoopThread(nullptr);
    hooks::removeLibraryHooks();
}

Ending::~Ending()
{
    s_endings.fetch_sub(1);
}

void Ending::deleteQueue()
{
    if (m_queue)
        ShownDialog::endAll(); // hooks may wait for them
    if (m_queue && m_isGuiThread)
        m_queue->closeDetached();
    hooks::endThreads();
    if (m_queue == nullptr)
        return;
    if (m_isGuiThread && !eventLoopRunning()) {
        if (takeRetired(m_queue))
            delete m_queue;
    } else {
        deleteLater(m_queue);
    }
    m_queue = nullptr;
}

void queueGone(DebugServerQueue *queue)
{
    takeRetired(queue);
}

} // namespace Zorvan::guibridge
