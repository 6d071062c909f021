#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QPointF>
#include <QRawFont>

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

class QPaintDevice;
class QPainter;

namespace Zorvan {

/// Measures and draws Latin-1 text in one font, as QPainter::drawText() would, but straight from the bytes.
///
/// That takes a font of fixed width that has a glyph for each character and never another one for it beside
/// certain neighbours: its glyphs are looked up once, which takes a few milliseconds. With any other font,
/// and for text with control characters, it goes the way over a QString.
class LatinFont
{
public:
    /// The font as it is resolved for \a device.
    LatinFont(const QFont &font, QPaintDevice *device);

    /// Pixels between two baselines; at least 1.
    [[nodiscard]] int lineSpacing() const { return m_lineSpacing; }
    /// In points, also of a font that was set in pixels; at least 1.
    [[nodiscard]] int pointSize() const { return m_pointSize; }
    /// Pixels. Tab stops count from the beginning of the text.
    [[nodiscard]] qreal width(std::string_view text) const;
    /// The smallest column whose prefix is at least \a x pixels wide; the end of the text if none is, or a
    /// later one than would be painted if thousands of characters have no width.
    [[nodiscard]] std::int64_t columnAt(std::string_view text, qreal x) const;
    /// The beginning of the text that is enough to fill \a width pixels, be the text as long as it may.
    [[nodiscard]] std::string_view beginningOf(std::string_view text, qreal width) const;

    /// In the painter's pen; \a baseline is where the first character stands. What ends left of \a left is
    /// not drawn. May leave its font with the painter.
    void draw(QPainter &painter, QPointF baseline, std::string_view text,
              qreal left = -std::numeric_limits<qreal>::infinity()) const;

private:
    void findGlyphs();
    [[nodiscard]] bool hasPlainLayout(const QString &text, qreal advance) const;
    [[nodiscard]] bool canDrawGlyphs(std::string_view text) const;
    void drawGlyphs(QPainter &painter, QPointF baseline, std::string_view text) const;

    QFont m_font;
    QFontMetricsF m_metrics;
    int m_lineSpacing = 1;
    int m_pointSize = 1;
    QRawFont m_glyphFont;
    std::array<quint32, 256> m_glyphs{}; // 0: none
    qreal m_advance = 0; // 0: not a font of fixed width
    std::vector<QPointF> m_places; // of the glyphs that are drawn at once
};

} // namespace Zorvan
