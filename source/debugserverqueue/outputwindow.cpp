#include "debugserverqueue/outputwindow.h"

#include "debugserverqueue/guibridge.h"

#include <utility>

namespace Zorvan {

OutputWindow::OutputWindow()
    : m_window(guibridge::takeExternalWindow())
    , m_isSupplied(m_window != nullptr)
{}

OutputWindow::~OutputWindow()
{
    end();
}

void OutputWindow::use(std::unique_ptr<DebugWindow> made)
{
    if (!isSupplied()) {
        m_isSupplied = false;
        m_window = made.release();
    }
    m_isInUse = true;
}

void OutputWindow::end()
{
    const QPointer<DebugWindow> window = std::exchange(m_window, nullptr);
    m_isInUse = false;
    if (window == nullptr || m_isSupplied)
        return;
    if (guibridge::eventLoopRunning())
        window->deleteLater();
    else
        delete window;
}

} // namespace Zorvan
