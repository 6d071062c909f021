#include "debugserverqueue/outputwindow.h"

#include "debugserverqueue/guibridge.h"
#include "leakanalyzer/analysisoutput.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Zorvan {

namespace {

/// Windows that have ended and are still to be deleted. The GUI thread only.
std::vector<QPointer<DebugWindow>> &endedWindows()
{
    static auto *const windows = new std::vector<QPointer<DebugWindow>>;
    return *windows;
}

} // namespace

OutputWindow::OutputWindow()
    : m_window(guibridge::externalWindow())
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
    const bool wasInUse = std::exchange(m_isInUse, false);
    if (window == nullptr)
        return;
    if (wasInUse) {
        analysis::removeOutputHandler(window);
        window->closeCompanions();
    }
    if (window == nullptr || m_isSupplied)
        return;
    auto &ended = endedWindows();
    ended.erase(std::remove(ended.begin(), ended.end(), nullptr), ended.end());
    ended.push_back(window);
    window->deleteLater(); // a host without a loop never gets to it
    window->hide();
}

void OutputWindow::deleteEnded()
{
    const std::vector<QPointer<DebugWindow>> windows = std::exchange(endedWindows(), {});
    for (const QPointer<DebugWindow> &window : windows)
        delete window;
}

} // namespace Zorvan
