// The message view: what is painted, and how little of it.

#include "debugwindow/protocolwidget.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace Zorvan {

QProtocolWidget::Resolution QProtocolWidget::resolution() const
{
    return {viewport()->logicalDpiY(), viewport()->devicePixelRatioF()};
}

void QProtocolWidget::renewFont()
{
    m_font = LatinFont(font(), viewport());
    m_resolution = resolution();
    repaintRows();
}

int QProtocolWidget::fittingRows() const
{
    return viewport()->height() / m_font.lineSpacing();
}

VisibleRows QProtocolWidget::visibleRows() const
{
    return visibleRowsAt(verticalScrollBar()->value(), m_buffer.rowCount(), fittingRows());
}

RowsToPaint QProtocolWidget::rowsToPaint() const
{
    return {m_buffer,
            m_font,
            m_selection,
            m_searchText ? &*m_searchText : nullptr,
            m_foundRow,
            visibleRows(),
            horizontalScrollBar()->value() * m_font.pointSize(),
            m_showLineNumbers};
}

QProtocolWidget::Picture QProtocolWidget::picture() const
{
    const RowsToPaint view = rowsToPaint();
    return {fittingRows(), view.rows.first, m_buffer.rowCount(), numberColumnWidth(view)};
}

/// The paper stays white under a dark palette: the colours of the lines are those for a light ground.
void QProtocolWidget::paintEvent(QPaintEvent *event)
{
    if (m_resolution != resolution()) // on another screen
        renewFont();
    const RowsToPaint view = rowsToPaint();
    QPainter painter(viewport());
    for (const QRect &exposed : event->region()) {
        painter.fillRect(exposed, Qt::white);
        paintRows(painter, view, exposed);
    }
}

void QProtocolWidget::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    repaintRows();
}

void QProtocolWidget::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        renewFont();
}

void QProtocolWidget::scrollContentsBy(int dx, int /*dy*/)
{
    if (dx != 0)
        repaintRows();
    else
        showNewRows();
}

void QProtocolWidget::repaintRows()
{
    m_picture = Picture();
    showNewRows();
}

/// After the view was scrolled or rows were added behind the others, when each row is as it was.
void QProtocolWidget::showNewRows()
{
    const Picture before = std::exchange(m_picture, picture());
    const std::int64_t moved = m_picture.firstRow - before.firstRow;
    if (before.fittingRows != m_picture.fittingRows || before.numberColumn != m_picture.numberColumn
        || std::abs(moved) >= m_picture.fittingRows) {
        viewport()->update();
        return;
    }
    if (moved != 0)
        movePicture(static_cast<int>(moved));
    if (before.rowCount != m_picture.rowCount) {
        const std::int64_t firstNew = std::min(before.rowCount, m_picture.rowCount) - m_picture.firstRow;
        paintLater(firstNew - 1, m_picture.fittingRows + 1);
    }
}

/// Upwards, if \a rows is positive. A row's letters and background may reach into the neighbouring rows:
/// those of rows that leave or enter the picture are painted over at both ends.
void QProtocolWidget::movePicture(int rows)
{
    viewport()->scroll(0, -rows * m_font.lineSpacing());
    const int fitting = m_picture.fittingRows;
    paintLater(0, rows > 0 ? 1 : 1 - rows);
    paintLater(rows > 0 ? fitting - rows - 1 : fitting - 1, fitting + 1);
}

/// Lines of the view, from 0 at its top; those outside do not matter.
void QProtocolWidget::paintLater(std::int64_t firstLine, std::int64_t endLine)
{
    const std::int64_t first = std::max<std::int64_t>(firstLine, 0);
    if (first < endLine)
        viewport()->update(0, static_cast<int>(first) * m_font.lineSpacing(), viewport()->width(),
                           static_cast<int>(endLine - first) * m_font.lineSpacing());
}

} // namespace Zorvan
