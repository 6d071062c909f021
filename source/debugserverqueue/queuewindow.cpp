// What the queue does with the debug window.
//
// Making and showing a window runs code of the host: its settings store, its key handler, its filters of
// events. It may end the library, the queue included.

#include "debugserverqueue/debugserverqueue.h"
#include "debugserverqueue/guibridge.h"

#include <QPointer>

namespace Zorvan {

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
    m_window.get()->refreshHooks();
    showTitle();
    m_window.get()->show();
    if (!kept)
        return false;
    m_isMakingWindow = false;
    if (isInUse() && m_remoteAccess.hasClients())
        clientCountChanged();
    return isInUse() && m_window.get() != nullptr;
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

void DebugServerQueue::showTitle()
{
    const QString title = guibridge::windowTitle();
    if (m_window.get() != nullptr && !title.isNull())
        m_window.get()->setWindowTitle(title);
}

void DebugServerQueue::deliverToWindow()
{
    if (m_window.get() == nullptr || m_isMakingWindow || m_remoteAccess.hasClients()
        || guibridge::isWindowOutputDropped())
        return;
    if (guibridge::takeLines(m_batch))
        m_window.get()->appendOutput(m_batch);
}

/// With clients the text of the window goes to them and they take all that follows, so that whoever connects
/// sees what has come so far. Nothing is emptied for clients that are only announced.
void DebugServerQueue::clientCountChanged()
{
    const QPointer<DebugWindow> window = m_window.get();
    if (window == nullptr)
        return;
    if (m_remoteAccess.hasClients()) {
        const QByteArray text = window->allLines();
        if (!text.isEmpty())
            m_remoteAccess.send({text.constData(), static_cast<std::size_t>(text.size())});
        window->clearText();
    }
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
    if (m_window.get() != nullptr && !Debug::isServer())
        m_window.get()->setOutputOn(false);
}

} // namespace Zorvan
