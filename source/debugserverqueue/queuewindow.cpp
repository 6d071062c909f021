// What the queue does with the debug window.
//
// Making and showing a window runs code of the host: its settings store, its key handler, its filters of
// events. It may end the library, the queue included.

#include "debugserverqueue/debugserverqueue.h"
#include "debugserverqueue/guibridge.h"

#include <QPointer>

#include <limits>

namespace Zorvan {

namespace {

constexpr std::size_t mostBytesOfRecord = std::numeric_limits<int>::max() - 1024; // of a QByteArray

} // namespace

bool DebugServerQueue::wantsWindow() const
{
    return m_window.get() == nullptr && !m_remoteAccess.hasClients() && guibridge::canShowWindows()
        && !guibridge::isWindowOutputDropped() && guibridge::linesWait();
}

/// False: there is none, and perhaps no queue either. Lines that arrive meanwhile go on waiting.
bool DebugServerQueue::makeWindow()
{
    if (m_window.get() != nullptr)
        return true;
    if (m_isMakingWindow || !guibridge::canShowWindows())
        return false;
    m_isMakingWindow = true;
    const QPointer<DebugServerQueue> kept(this);
    std::unique_ptr<DebugWindow> made;
    if (!m_window.isSupplied())
        made = std::make_unique<DebugWindow>(QStringLiteral("KLV debug window"));
    if (!kept || !isInUse())
        return false;
    m_window.use(std::move(made));
    guibridge::setHasWindow(true);
    for (void (DebugServerQueue::*const step)() :
         {&DebugServerQueue::takeWindowIntoUse, &DebugServerQueue::fillHooks, &DebugServerQueue::showTitle,
          &DebugServerQueue::putWindowOnScreen, &DebugServerQueue::clientCountChanged}) {
        (this->*step)();
        if (!kept || !isInUse())
            return false;
        if (m_window.get() == nullptr) // the host has deleted its own
            break;
    }
    m_isMakingWindow = false;
    if (m_isStarted && guibridge::linesWait())
        armTimer(); // no other line tells of them
    return m_window.get() != nullptr;
}

void DebugServerQueue::takeWindowIntoUse()
{
    m_window.get()->takeIntoUse(guibridge::clientCount() > 0);
}

void DebugServerQueue::fillHooks()
{
    if (m_window.get() != nullptr)
        m_window.get()->refreshHooks();
}

void DebugServerQueue::refreshSettings()
{
    if (m_window.get() != nullptr)
        m_window.get()->refreshSettings();
}

void DebugServerQueue::putWindowOnScreen()
{
    m_window.get()->show();
}

void DebugServerQueue::showWindow()
{
    const QPointer<DebugServerQueue> kept(this);
    if (!makeWindow())
        return;
    const QPointer<DebugWindow> window = m_window.get();
    if (window->isMinimized())
        window->showNormal();
    else
        window->show();
    if (window) {
        window->raise();
        window->activateWindow();
    }
    if (kept)
        showTitle();
}

/// Without a title the window keeps its own.
void DebugServerQueue::showTitle()
{
    const QString title = guibridge::windowTitle();
    if (m_window.get() != nullptr && !title.isEmpty())
        m_window.get()->setWindowTitle(title);
}

void DebugServerQueue::deliverToLastingWindow()
{
    if (m_window.isSupplied())
        deliverToWindow();
}

void DebugServerQueue::deliverToWindow()
{
    if (m_window.get() == nullptr || m_isMakingWindow || m_remoteAccess.hasClients()
        || guibridge::isWindowOutputDropped())
        return;
    if (guibridge::takeLines(m_batch))
        m_window.get()->appendOutput(m_batch);
}

/// Returns how many lines were sent: not all, if there is no memory for them.
std::int64_t DebugServerQueue::sendWindowText(const DebugWindow &window)
{
    std::int64_t lines = 0;
    window.forEachPiece(mostBytesOfRecord, [this, &lines](const QByteArray &piece) {
        lines += piece.count('\n') + 1;
        m_remoteAccess.send(piece);
        return true;
    });
    return lines;
}

/// With clients the text of the window goes to them and they take all that follows, so that whoever connects
/// sees what has come so far. Nothing is emptied for clients that are only announced.
void DebugServerQueue::clientCountChanged()
{
    const QPointer<DebugWindow> window = m_window.get();
    if (window == nullptr)
        return;
    if (m_remoteAccess.hasClients() && window->lineCount() > 0
        && sendWindowText(*window) == window->lineCount())
        window->clearText();
    if (window)
        window->setClientsConnected(guibridge::clientCount() > 0);
}

void DebugServerQueue::modesChanged()
{
    if (m_window.get() != nullptr)
        m_window.get()->updateModes();
}

void DebugServerQueue::hookStarted()
{
    if (m_window.get() != nullptr)
        m_window.get()->hookStarted();
}

void DebugServerQueue::switchWindowOff()
{
    if (m_window.get() != nullptr)
        m_window.get()->dropOutput();
}

} // namespace Zorvan
