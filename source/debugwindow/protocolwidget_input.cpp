// The message view: keys, mouse and context menu.

#include "debugwindow/paintedline.h"
#include "debugwindow/protocolwidget.h"
#include "debugwindow/viewcommands.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>

#include <algorithm>

namespace Zorvan {

namespace {

constexpr int dragInterval = 50; // ms for each row

} // namespace

void QProtocolWidget::keyPressEvent(QKeyEvent *event)
{
    const std::optional<ViewCommand> asked = commandOfKey(*event);
    if (!asked) {
        if (!scrollByKey(*event))
            QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    const bool isForOthersToo = asked == ViewCommand::FindNext || asked == ViewCommand::FindPrevious;
    if (isForOthersToo)
        QAbstractScrollArea::keyPressEvent(event);
    command(static_cast<int>(*asked)); // the view may be gone now
}

/// False: the key is for the base class, too.
bool QProtocolWidget::scrollByKey(const QKeyEvent &event)
{
    QScrollBar *const bar = verticalScrollBar();
    const int page = event.modifiers().testFlag(Qt::ShiftModifier) ? bar->pageStep() : fittingRows();
    if (event.modifiers().testFlag(Qt::ControlModifier)) {
        if (event.key() == Qt::Key_Home)
            bar->setValue(0);
        else if (event.key() == Qt::Key_End)
            bar->setValue(bar->maximum());
        return event.key() == Qt::Key_S; // the host does not want it when Shift slipped
    }
    switch (event.key()) {
    case Qt::Key_Up:
        bar->setValue(bar->value() - 1);
        return true;
    case Qt::Key_Down:
        bar->setValue(bar->value() + 1);
        return true;
    case Qt::Key_PageUp:
        bar->setValue(bar->value() - page);
        return true;
    case Qt::Key_PageDown:
        bar->setValue(bar->value() + page);
        return true;
    default:
        return false;
    }
}

/// By as much of the scroll bar as it takes: near its ends the text moves more slowly than the bar.
void QProtocolWidget::scrollByRow(int direction)
{
    QScrollBar *const bar = verticalScrollBar();
    const std::int64_t first = visibleRows().first;
    int value = bar->value();
    const auto firstAt = [&] { return visibleRowsAt(value, m_buffer.rowCount(), fittingRows()).first; };
    while (value + direction >= 0 && value + direction <= bar->maximum() && firstAt() == first)
        value += direction;
    bar->setValue(value);
}

TextPosition QProtocolWidget::positionAt(QPoint point) const
{
    const RowsToPaint view = rowsToPaint();
    const std::int64_t lastRow = std::max<std::int64_t>(std::int64_t(m_buffer.rowCount()) - 1, 0);
    const std::int64_t row = std::min(view.rows.first + point.y() / m_font.lineSpacing(), lastRow);
    PaintedLine line;
    line.set(m_buffer.line(row));
    return {row, m_font.columnAt(line.text(), point.x() - numberColumnWidth(view) + view.textOffset)};
}

void QProtocolWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    const TextPosition position = positionAt(event->pos());
    if (event->modifiers().testFlag(Qt::ShiftModifier)) {
        m_selection.extendTo(position);
    } else if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        m_pressPosition = event->pos();
        m_selection.begin(position);
    }
    repaintRows();
}

/// Whoever presses again quickly begins a selection, too.
void QProtocolWidget::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event);
}

void QProtocolWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!event->buttons().testFlag(Qt::LeftButton))
        return;
    m_dragPosition = event->pos();
    drag();
}

/// Outside, the view follows: by a row for each movement, and as long as the mouse rests there.
void QProtocolWidget::drag()
{
    int y = m_dragPosition.y();
    const int direction = y < 0 ? -1 : y >= viewport()->height() ? 1 : 0;
    if (direction != 0) // on the outermost whole row
        y = direction < 0 ? 0 : std::max(fittingRows() * m_font.lineSpacing() - 1, 0);
    if (direction == 0)
        m_dragTimer.stop();
    else if (!m_dragTimer.isActive())
        m_dragTimer.start(dragInterval, this);
    if (direction != 0)
        scrollByRow(direction);
    if (m_selection.isActive()) // not after Ctrl, nor once output has ended it
        m_selection.extendTo(positionAt({m_dragPosition.x(), y}));
    repaintRows();
}

void QProtocolWidget::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_dragTimer.timerId())
        QAbstractScrollArea::timerEvent(event);
    else if (QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        drag();
    else
        m_dragTimer.stop(); // it was released elsewhere, in a dialog that opened
}

void QProtocolWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mouseReleaseEvent(event);
        return;
    }
    m_dragTimer.stop();
    if (event->pos() == m_pressPosition)
        m_selection.clear();
    repaintRows();
}

void QProtocolWidget::contextMenuEvent(QContextMenuEvent *event)
{
    const QPointer<QProtocolWidget> kept(this);
    const Selection selection = m_selection; // new output ends it, but the menu speaks of it
    const QPointer<QMenu> menu(new QMenu(this));
    fillViewMenu(*menu,
                 {m_selection.isActive(), m_showLineNumbers, m_autoScroll, m_buffer.markedOutputOnly()});
    Q_EMIT modalStateChanged(true);
    const QAction *const chosen = menu->exec(event->globalPos());
    if (!kept)
        return;
    const int code = chosen != nullptr ? chosen->data().toInt() : 0;
    delete menu;
    Q_EMIT modalStateChanged(false);
    if (code == static_cast<int>(ViewCommand::Copy))
        copy(selection);
    else
        command(code); // the view may be gone now
}

} // namespace Zorvan
