#include "debugwindow/protocolwidget.h"

#include "debugwindow/rowcopy.h"
#include "debugwindow/viewcommands.h"

#include <zorvan/debug.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>

#include <algorithm>
#include <limits>

namespace Zorvan {

namespace {

constexpr std::int64_t linesPerMemoryCheck = 500;
constexpr std::uint64_t mostKilobytes = 0x3FFFFF; // of lines: what 32 bits can address
constexpr int horizontalRange = 256; // in points of the font's size

/// Half of what the lines have and could get together; 4 GiB where that sum is 4 GiB or more.
std::uint32_t memoryLimit(std::uint64_t allocatedBytes, std::uint64_t availableBytes)
{
    const std::uint64_t kilobytes = allocatedBytes / 1024 + availableBytes / 1024;
    return static_cast<std::uint32_t>((kilobytes < mostKilobytes ? kilobytes / 2 : mostKilobytes) * 1024);
}

} // namespace

QProtocolWidget::QProtocolWidget(QWidget *parent, AvailableMemory availableMemory)
    : QAbstractScrollArea(parent)
    , m_availableMemory(availableMemory)
    , m_font(font(), viewport())
    , m_resolution(resolution())
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Messages"));
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    verticalScrollBar()->setRange(0, 0);
    horizontalScrollBar()->setRange(0, horizontalRange);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent); // brings its own paper, see paintEvent()
    m_buffer.sizeGrowthSteps(m_availableMemory());
}

QProtocolWidget::~QProtocolWidget() = default;

void QProtocolWidget::appendText(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    appendText(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

void QProtocolWidget::appendText(std::string_view text)
{
    const std::uint32_t linesBefore = m_buffer.lineCount();
    std::int64_t pieces = 1;
    for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos; ++pieces) {
        m_buffer.appendLine(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    m_buffer.appendLine(text);

    const std::int64_t count = m_linesSinceMemoryCheck + linesPerMemoryCheck - 1;
    const std::int64_t nextCheck = count - count % linesPerMemoryCheck; // before a piece with this number
    m_linesSinceMemoryCheck += pieces;
    if (nextCheck < m_linesSinceMemoryCheck)
        checkMemory();

    // In the ring the lines change their rows, and marked lines may have rows already when they come.
    const bool areAdded = m_buffer.lineCount() == linesBefore + pieces && !m_buffer.markedOutputOnly();
    if (m_selection.isActive() || !areAdded)
        m_picture = Picture();
    m_selection.clear();
    followRows();
    showNewRows();
}

/// The limit never rises: memory that is given back later may be gone again when the lines need it.
void QProtocolWidget::checkMemory()
{
    m_linesSinceMemoryCheck = 1;
    const std::uint64_t available = m_availableMemory();
    if (available == 0)
        return; // not known
    const std::uint32_t limit = memoryLimit(m_buffer.allocatedBytes(), available);
    if (m_buffer.memoryLimit() != 0 && limit >= m_buffer.memoryLimit())
        return;
    m_buffer.setMemoryLimit(limit);
    gyxLog("source/debugwindow", 497,
           "QProtocolWidget memory check: maximum messages size limit now is %u Bytes\n", limit);
}

void QProtocolWidget::fitScrollBar()
{
    const auto most = std::uint32_t(std::numeric_limits<int>::max());
    verticalScrollBar()->setMaximum(static_cast<int>(std::min(m_buffer.rowCount(), most)));
}

void QProtocolWidget::followRows()
{
    fitScrollBar();
    if (m_autoScroll)
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void QProtocolWidget::updateScrollRange()
{
    followRows();
    repaintRows();
}

QString QProtocolWidget::copyText() const
{
    return copiedText(m_buffer, m_selection);
}

void QProtocolWidget::command(int code)
{
    static const struct
    {
        ViewCommand command;
        void (QProtocolWidget::*action)();
    } actions[] = {
        {ViewCommand::Clear, &QProtocolWidget::clear},
        {ViewCommand::Copy, &QProtocolWidget::copy},
        {ViewCommand::SelectAll, &QProtocolWidget::selectAll},
        {ViewCommand::ClearSelection, &QProtocolWidget::clearSelection},
        {ViewCommand::Find, &QProtocolWidget::find},
        {ViewCommand::FindNext, &QProtocolWidget::findNext},
        {ViewCommand::FindPrevious, &QProtocolWidget::findPrevious},
        {ViewCommand::GotoLine, &QProtocolWidget::gotoLine},
        {ViewCommand::AddMarker, &QProtocolWidget::addMarker},
        {ViewCommand::ClearMarkers, &QProtocolWidget::clearMarkers},
        {ViewCommand::RemoveMarker, &QProtocolWidget::removeMarker},
        {ViewCommand::SaveMarkers, &QProtocolWidget::saveMarkers},
        {ViewCommand::LoadMarkers, &QProtocolWidget::loadMarkers},
        {ViewCommand::ShowLineNumbers, &QProtocolWidget::toggleLineNumbers},
        {ViewCommand::AutoScroll, &QProtocolWidget::toggleAutoScroll},
        {ViewCommand::MarkedOutputOnly, &QProtocolWidget::toggleMarkedOutputOnly},
        {ViewCommand::MarkExtraLines, &QProtocolWidget::askForExtraLines},
    };
    for (const auto &entry : actions) {
        if (static_cast<int>(entry.command) == code)
            return (this->*entry.action)(); // the view may be gone now
    }
}

void QProtocolWidget::clear()
{
    m_buffer.clearAll();
    m_selection.clear();
    updateScrollRange();
}

void QProtocolWidget::selectAll()
{
    m_selection.selectAll(m_buffer.rowCount());
    repaintRows();
}

void QProtocolWidget::clearSelection()
{
    m_selection.clear();
    repaintRows();
}

void QProtocolWidget::copy()
{
    copy(m_selection);
}

void QProtocolWidget::copy(const Selection &selection)
{
    QGuiApplication::clipboard()->setText(copiedText(m_buffer, selection));
}

void QProtocolWidget::toggleLineNumbers()
{
    m_showLineNumbers = !m_showLineNumbers;
    repaintRows();
}

void QProtocolWidget::toggleAutoScroll()
{
    m_autoScroll = !m_autoScroll;
}

void QProtocolWidget::toggleMarkedOutputOnly()
{
    m_buffer.setMarkedOutputOnly(!m_buffer.markedOutputOnly());
    updateScrollRange();
}

} // namespace Zorvan
