#include "debugwindow/handlerreports.h"

#include <zorvan/debug.h>

#include <QKeyEvent>
#include <QWidget>

#include <utility>

namespace Zorvan {

HandlerReports::HandlerReports(QWidget &window)
    : QObject(&window)
    , m_window(window)
{}

bool HandlerReports::report(QEvent *event)
{
    const QPointer<HandlerReports> kept(this);
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return reportKey(*static_cast<QKeyEvent *>(event)) || kept == nullptr;
    case QEvent::Show:
        reportShown();
        break;
    case QEvent::Hide:
        if (!event->spontaneous()) { // somebody hid it: when it is shown again, that is news
            m_comesFromMinimized = false;
            m_isDeactivationKept = false;
        }
        break;
    case QEvent::Close:
        reportVisible(false);
        break;
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
        reportActive(event->type() == QEvent::WindowActivate);
        break;
    case QEvent::WindowStateChange:
        noteState(*event);
        break;
    default:
        break;
    }
    return kept == nullptr;
}

void HandlerReports::setModalOpen(bool open)
{
    m_modalsOpen = qMax(0, m_modalsOpen + (open ? 1 : -1));
}

bool HandlerReports::reportKey(const QKeyEvent &event)
{
    IKeyInterface *const handler = Debug::getKeyboardHandler();
    return handler != nullptr && handler->keyEvent(event.key(), static_cast<int>(event.modifiers()));
}

void HandlerReports::reportVisible(bool isVisible)
{
    if (IKeyInterface *const handler = Debug::getKeyboardHandler())
        handler->visibilityChanged(&m_window, isVisible);
}

void HandlerReports::reportShown()
{
    if (!std::exchange(m_comesFromMinimized, m_window.isMinimized()))
        reportVisible(true);
}

void HandlerReports::reportActive(bool isActive)
{
    if (!isActive && m_modalsOpen > 0)
        m_isDeactivationKept = true;
    else if (isActive && m_isDeactivationKept) // often comes later than the end of the dialog
        m_isDeactivationKept = false;
    else if (IKeyInterface *const handler = Debug::getKeyboardHandler())
        handler->activationChanged(&m_window, isActive);
}

void HandlerReports::noteState(const QEvent &event)
{
    const auto before = static_cast<const QWindowStateChangeEvent &>(event).oldState();
    if (m_window.isVisible() && m_window.isMinimized() && (before & Qt::WindowMinimized) == 0)
        m_comesFromMinimized = true;
}

OwnModal::OwnModal(HandlerReports &reports)
    : m_reports(&reports)
{
    reports.setModalOpen(true);
}

OwnModal::~OwnModal()
{
    if (m_reports)
        m_reports->setModalOpen(false);
}

} // namespace Zorvan
