#include "debugwindow/latinfont.h"

#include <QFontInfo>
#include <QGlyphRun>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace Zorvan {

namespace {

constexpr std::size_t glyphsAtOnce = 256;
constexpr qreal overhang = 2; // columns that a character may reach beyond its own
constexpr std::size_t mostMeasured = 16 * 1024; // characters, if they are less than a pixel wide each

QString toString(std::string_view text)
{
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

unsigned indexOf(char character)
{
    return static_cast<unsigned char>(character);
}

bool isPrintable(int character)
{
    const int softHyphen = 0xAD; // takes no room
    return (character >= 0x20 && character < 0x7F) || (character >= 0xA0 && character != softHyphen);
}

/// Each ASCII character beside each, and three times in a row, where fonts for programmers have ligatures.
QString neighbours()
{
    QString text;
    for (char first = ' '; first <= '~'; ++first) {
        text += QString(2, QLatin1Char(first));
        for (char second = first; second <= '~'; ++second) {
            text += QLatin1Char(first);
            text += QLatin1Char(second);
        }
    }
    return text;
}

} // namespace

LatinFont::LatinFont(const QFont &font, QPaintDevice *device)
    : m_font(font, device)
    , m_metrics(m_font, device)
    , m_lineSpacing(std::max(QFontMetrics(m_font, device).lineSpacing(), 1))
    , m_pointSize(std::max(QFontInfo(m_font).pointSize(), 1))
    , m_glyphFont(QRawFont::fromFont(m_font))
{
    const bool hasLines = font.underline() || font.overline() || font.strikeOut();
    if (m_glyphFont.isValid() && !hasLines)
        findGlyphs();
}

void LatinFont::findGlyphs()
{
    const qreal advance = m_metrics.horizontalAdvance(QLatin1Char('x'));
    QString text;
    for (int i = 0; i < 256; ++i) {
        const QChar character(i);
        const bool isLikeOthers = isPrintable(i) && m_glyphFont.supportsCharacter(character)
            && m_metrics.horizontalAdvance(character) == advance;
        if (!isLikeOthers && i >= ' ' && i <= '~')
            return;
        if (!isLikeOthers)
            continue;
        m_glyphs[static_cast<std::size_t>(i)] = m_glyphFont.glyphIndexesForString(character).value(0);
        text += character;
    }
    if (!hasPlainLayout(text + neighbours(), advance))
        return;
    m_advance = advance;
    for (std::size_t i = 0; i < glyphsAtOnce; ++i)
        m_places.emplace_back(static_cast<qreal>(i) * advance, 0);
}

/// Whether Qt has for each character just the glyph that was looked up, at the place where it is expected.
bool LatinFont::hasPlainLayout(const QString &text, qreal advance) const
{
    QTextLayout layout(text, m_font);
    layout.beginLayout();
    layout.createLine().setLineWidth(text.size() * advance + 1);
    layout.endLayout();
    int column = 0;
    for (const QGlyphRun &run : layout.glyphRuns()) {
        const QVector<quint32> glyphs = run.glyphIndexes();
        const QVector<QPointF> places = run.positions();
        if (!(run.rawFont() == m_glyphFont) || column + glyphs.size() > text.size())
            return false;
        for (int i = 0; i < glyphs.size(); ++i, ++column) {
            if (glyphs[i] != m_glyphs[text[column].unicode()] || places[i].x() != column * advance)
                return false;
        }
    }
    return column == text.size();
}

bool LatinFont::canDrawGlyphs(std::string_view text) const
{
    const auto hasGlyph = [this](char character) { return m_glyphs[indexOf(character)] != 0; };
    return m_advance > 0 && std::all_of(text.begin(), text.end(), hasGlyph);
}

qreal LatinFont::width(std::string_view text) const
{
    if (canDrawGlyphs(text))
        return static_cast<qreal>(text.size()) * m_advance;
    return m_metrics.horizontalAdvance(toString(text));
}

std::string_view LatinFont::beginningOf(std::string_view text, qreal width) const
{
    const auto first = [text](qreal count) {
        const auto most = static_cast<qreal>(text.size());
        return text.substr(0, static_cast<std::size_t>(std::clamp<qreal>(std::ceil(count), 0, most)));
    };
    if (m_advance > 0) {
        const std::string_view beginning = first(width / m_advance + overhang);
        if (canDrawGlyphs(beginning))
            return beginning;
    }
    std::string_view beginning = first(width + overhang);
    const qreal wanted = width + overhang * m_lineSpacing; // in characters that are as wide as they are high
    while (beginning.size() < std::min(text.size(), mostMeasured) && this->width(beginning) < wanted)
        beginning = first(2 * static_cast<qreal>(beginning.size()) + 1); // also from none at all
    return beginning;
}

std::int64_t LatinFont::columnAt(std::string_view text, qreal x) const
{
    if (!(x > 0))
        return 0;
    const std::string_view beginning = beginningOf(text, x);
    if (canDrawGlyphs(beginning)) {
        const auto end = static_cast<qreal>(beginning.size());
        return static_cast<std::int64_t>(std::min(std::ceil(x / m_advance), end));
    }
    std::size_t below = 0; // a column whose prefix is not wide enough, unless it is 0
    std::size_t column = 64;
    while (column < beginning.size() && width(beginning.substr(0, column)) < x) {
        below = column;
        column *= 2;
    }
    column = std::min(column, beginning.size());
    while (column - below > 1) {
        const std::size_t middle = below + (column - below) / 2;
        (width(beginning.substr(0, middle)) < x ? below : column) = middle;
    }
    return static_cast<std::int64_t>(column);
}

void LatinFont::draw(QPainter &painter, QPointF baseline, std::string_view text, qreal left) const
{
    if (!canDrawGlyphs(text)) {
        painter.setFont(m_font);
        painter.drawText(baseline, toString(text));
        return;
    }
    const qreal columnsOutside = std::floor((left - baseline.x()) / m_advance - overhang);
    const auto outside =
        static_cast<std::size_t>(std::clamp<qreal>(columnsOutside, 0, static_cast<qreal>(text.size())));
    for (std::size_t next = outside; next < text.size(); next += glyphsAtOnce) {
        const QPointF start(baseline.x() + static_cast<qreal>(next) * m_advance, baseline.y());
        drawGlyphs(painter, start, text.substr(next, glyphsAtOnce));
    }
}

void LatinFont::drawGlyphs(QPainter &painter, QPointF baseline, std::string_view text) const
{
    std::array<quint32, glyphsAtOnce> glyphs;
    std::transform(text.begin(), text.end(), glyphs.begin(),
                   [this](char character) { return m_glyphs[indexOf(character)]; });
    QGlyphRun run;
    run.setRawFont(m_glyphFont);
    run.setRawData(glyphs.data(), m_places.data(), static_cast<int>(text.size()));
    painter.drawGlyphRun(baseline, run);
}

} // namespace Zorvan
