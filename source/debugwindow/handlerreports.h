#pragma once

#include <QObject>
#include <QPointer>

class QKeyEvent;
class QWidget;

namespace Zorvan {

/// Tells the host's keyboard handler what happens to a window. Both may be gone after each report.
class HandlerReports : public QObject
{
public:
    explicit HandlerReports(QWidget &window);

    /// Reports an event of the window before the window gets it. True: the event is used up.
    [[nodiscard]] bool report(QEvent *event);

    /// The window's own dialogs and menus take the activation from it, which the handler does not hear of.
    void setModalOpen(bool open);

private:
    [[nodiscard]] static bool reportKey(const QKeyEvent &event);
    void reportVisible(bool isVisible);
    void reportShown();
    void reportActive(bool isActive);
    void noteState(const QEvent &event);

    QWidget &m_window;
    bool m_comesFromMinimized = false; // it counts as visible: the next Show is no news
    int m_modalsOpen = 0;
    bool m_isDeactivationKept = false; // the activation that takes it back is kept, too
};

/// One of the window's own dialogs or menus is open, for a scope in which the window may go.
class OwnModal
{
public:
    explicit OwnModal(HandlerReports &reports);
    ~OwnModal();
    OwnModal(const OwnModal &) = delete;
    OwnModal &operator=(const OwnModal &) = delete;

private:
    const QPointer<HandlerReports> m_reports;
};

} // namespace Zorvan
