#include "debugwindow/rowpainter.h"

#include "debugwindow/paintedline.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <string>

namespace Zorvan {

namespace {

constexpr int mostMarkersOfRow = 3; // the row ends with the third

/// In the colours of the patterns by their place in the list.
Qt::GlobalColor markerColor(std::int64_t place)
{
    return place == 0 ? Qt::darkGreen : place == 1 ? Qt::blue : Qt::red;
}

class RowPainter
{
public:
    RowPainter(QPainter &painter, const RowsToPaint &view, const QRect &exposed)
        : m_painter(painter)
        , m_view(view)
        , m_spacing(view.font.lineSpacing())
        , m_left(exposed.left())
        , m_numberWidth(numberColumnWidth(view))
        , m_textX(m_numberWidth - view.textOffset)
        , m_widthInSight(exposed.x() + exposed.width() - m_textX)
    {}

    void paintText(int place);
    void paintNumber(int place);

private:
    void fillSearchHit();
    void fillSelection(std::int64_t row);
    void drawWithMarkers();
    void fill(std::size_t begin, std::size_t end, Qt::GlobalColor color);
    void draw(std::size_t from, std::size_t to, Qt::GlobalColor color);

    [[nodiscard]] std::int64_t rowAt(int place) const { return m_view.rows.first + place; }
    [[nodiscard]] int fillY(int place) const { return place * m_spacing + m_spacing / 4; }
    [[nodiscard]] int baseline(int place) const { return (place + 1) * m_spacing; }
    [[nodiscard]] qreal xOf(std::size_t column) const;

    QPainter &m_painter;
    const RowsToPaint &m_view;
    const int m_spacing;
    const int m_left;
    const int m_numberWidth;
    const int m_textX;
    const qreal m_widthInSight; // of a text, with what is scrolled out at the left
    PaintedLine m_line;
    // Of the row that is painted:
    int m_place = 0;
    std::string_view m_text;
    std::string_view m_inSight; // its beginning; what is behind is neither measured nor drawn
};

void RowPainter::paintText(int place)
{
    m_place = place;
    m_line.set(m_view.buffer.line(rowAt(place)));
    m_text = m_line.text();
    m_inSight = m_view.font.beginningOf(m_text, m_widthInSight);
    if (m_inSight.empty())
        return;
    if (m_line.background())
        fill(0, m_text.size(), *m_line.background());
    fillSearchHit();
    fillSelection(rowAt(place));
    drawWithMarkers();
}

void RowPainter::fillSearchHit()
{
    if (m_view.searchText == nullptr)
        return;
    const auto length = static_cast<std::size_t>(m_view.searchText->text().size());
    const std::size_t begin = m_view.searchText->findIn(m_text.substr(0, m_inSight.size() + length));
    if (begin != TextPattern::notFound)
        fill(begin, begin + length, rowAt(m_place) == m_view.foundRow ? Qt::cyan : Qt::yellow);
}

void RowPainter::fillSelection(std::int64_t row)
{
    const auto length = static_cast<std::int64_t>(m_text.size());
    if (const auto columns = m_view.selection.columnsOf(row, length)) {
        const auto inText = [length](std::int64_t column) {
            return static_cast<std::size_t>(std::clamp<std::int64_t>(column, 0, length));
        };
        fill(inText(columns->begin), inText(columns->end), Qt::lightGray);
    }
}

void RowPainter::drawWithMarkers()
{
    std::size_t done = 0;
    for (int hits = 0; hits < mostMarkersOfRow && done < m_inSight.size(); ++hits) {
        const PatternMatch hit = m_view.buffer.match(m_text.substr(done));
        if (hit.position < 0 || hit.length <= 0) { // the empty pattern is everywhere, but takes no room
            draw(done, m_text.size(), m_line.foreground());
            return;
        }
        const std::size_t begin = done + static_cast<std::size_t>(hit.position);
        const std::size_t end = begin + static_cast<std::size_t>(hit.length);
        draw(done, begin, m_line.foreground());
        draw(begin, end, markerColor(hit.place));
        done = end;
    }
}

qreal RowPainter::xOf(std::size_t column) const
{
    return m_textX + m_view.font.width(m_inSight.substr(0, column));
}

void RowPainter::fill(std::size_t begin, std::size_t end, Qt::GlobalColor color)
{
    if (begin >= std::min(end, m_inSight.size()))
        return;
    const qreal x = xOf(begin);
    m_painter.fillRect(QRectF(x, fillY(m_place), xOf(end) - x, m_spacing), color);
}

/// Stretches between tabs one by one: tab stops count from the beginning of the row.
void RowPainter::draw(std::size_t from, std::size_t to, Qt::GlobalColor color)
{
    m_painter.setPen(color);
    to = std::min(to, m_inSight.size());
    while (from < to) {
        const std::size_t stop = std::min(m_inSight.find('\t', from), to);
        const std::string_view stretch = m_inSight.substr(from, stop - from);
        if (!stretch.empty())
            m_view.font.draw(m_painter, QPointF(xOf(from), baseline(m_place)), stretch, m_left);
        from = stop + 1;
    }
}

void RowPainter::paintNumber(int place)
{
    m_painter.fillRect(0, fillY(place), m_numberWidth, m_spacing, Qt::gray);
    m_painter.setPen(Qt::black);
    m_view.font.draw(m_painter, QPointF(0, baseline(place)), std::to_string(rowAt(place)));
}

} // namespace

int numberColumnWidth(const RowsToPaint &view)
{
    if (!view.lineNumbers)
        return 0;
    return static_cast<int>(std::lround(view.font.width(std::to_string(view.buffer.rowCount()) + ' ')));
}

RowRange rowsIn(const QRect &exposed, const RowsToPaint &view)
{
    const std::int64_t behindFirst = std::int64_t(view.buffer.rowCount()) - view.rows.first;
    const auto count = static_cast<int>(std::clamp<std::int64_t>(behindFirst, 0, view.rows.count));
    if (exposed.isEmpty())
        return {};
    const int spacing = view.font.lineSpacing();
    const int begin = std::clamp(exposed.top() / spacing - 1, 0, count);
    return {begin, std::clamp(exposed.bottom() / spacing + 2, begin, count)};
}

void paintRows(QPainter &painter, const RowsToPaint &view, const QRect &exposed)
{
    const RowRange range = rowsIn(exposed, view);
    painter.save();
    painter.setClipRect(exposed, Qt::IntersectClip);
    painter.setLayoutDirection(
        Qt::LeftToRight); // also where windows are mirrored: columns count from the left
    RowPainter rows(painter, view, exposed);
    for (int place = range.begin; place < range.end; ++place)
        rows.paintText(place);
    // Numbers last, over the text that is scrolled to the left.
    for (int place = range.begin; view.lineNumbers && place < range.end; ++place)
        rows.paintNumber(place);
    painter.restore();
}

} // namespace Zorvan
