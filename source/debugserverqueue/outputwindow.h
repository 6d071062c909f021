#pragma once

#include "debugwindow/debugwindow.h"

#include <QPointer>

#include <memory>

namespace Zorvan {

/// Keeps the debug window of a queue: the one that the host has supplied, which stays the host's, or one of
/// the queue's own. The GUI thread only, but for the constructor.
class OutputWindow
{
public:
    OutputWindow();
    ~OutputWindow();
    OutputWindow(const OutputWindow &) = delete;
    OutputWindow &operator=(const OutputWindow &) = delete;

    /// The window in use; null until there is one, and again after the host has deleted it.
    [[nodiscard]] DebugWindow *get() const { return m_isInUse ? m_window.data() : nullptr; }
    /// Whether the host has supplied a window.
    [[nodiscard]] bool isSupplied() const { return m_isSupplied && m_window != nullptr; }
    /// Takes the supplied window into use, or the one that was made because there is none.
    void use(std::unique_ptr<DebugWindow> made);
    /// For a queue that is detached: the window disappears. It is deleted by the event loop, when no function
    /// of it runs any more, or with the application.
    void end();
    /// Deletes what no loop has deleted. At the end of the application.
    static void deleteEnded();

private:
    QPointer<DebugWindow> m_window;
    bool m_isSupplied;
    bool m_isInUse = false;
};

} // namespace Zorvan
