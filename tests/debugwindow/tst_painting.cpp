// What the view paints, pixel by pixel beside the same by drawText(), and how it measures and scrolls.

#include "debugwindow/paintedline.h"
#include "debugwindow/rowpainter.h"
#include "support/guiapplication.h"

#include <QPainter>

#include <cmath>
#include <gtest/gtest.h>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

constexpr int paperWidth = 500;
constexpr int shownRows = 6;

QImage newPaper(int scale, int height)
{
    QImage paper(QSize(paperWidth, height) * scale, QImage::Format_RGB32);
    paper.setDevicePixelRatio(scale);
    paper.fill(Qt::white);
    return paper;
}

QImage painted(int scale, int height, const std::function<void(QPainter &)> &paint)
{
    QImage paper = newPaper(scale, height);
    QPainter painter(&paper);
    paint(painter);
    return paper;
}

QFont fixedFont(qreal points = 10)
{
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setStyleHint(QFont::TypeWriter);
    font.setPointSizeF(points);
    return font;
}

QFont proportionalFont()
{
    return QFont(QStringLiteral("DejaVu Sans"), 10);
}

std::string latin1(int first, int last)
{
    std::string text;
    for (int i = first; i <= last; ++i)
        text += static_cast<char>(i);
    return text;
}

class Painting : public ::testing::Test
{
protected:
    using Columns = std::pair<int, int>;

    void useFont(const QFont &wanted)
    {
        font = wanted;
        latinFont = LatinFont(wanted, &device);
    }
    void append(const std::vector<std::string> &lines)
    {
        for (const std::string &line : lines)
            buffer.appendLine(line);
    }
    RowsToPaint view() const
    {
        const VisibleRows rows{shownRows, 0, firstRow};
        return {buffer, latinFont, selection, searchText.get(), 0, rows, textOffset, lineNumbers};
    }
    int spacing() const { return QFontMetrics(font, &device).lineSpacing(); }
    int height() const { return (shownRows + 1) * spacing(); }
    qreal xOf(const QString &text, int column) const
    {
        const int numbers = lineNumbers ? QFontMetrics(font, &device).horizontalAdvance(numberColumn) : 0;
        return numbers - textOffset + QFontMetricsF(font, &device).horizontalAdvance(text.left(column));
    }

    // What is expected, in the order of painting:
    void row(int place, const char *text)
    {
        m_place = place;
        m_text = QString::fromLatin1(text);
    }
    void filled(Columns columns, Qt::GlobalColor color)
    {
        const qreal x = xOf(m_text, columns.first);
        const QRectF area(x, m_place * spacing() + spacing() / 4, xOf(m_text, columns.second) - x, spacing());
        m_expected.push_back([=](QPainter &painter) { painter.fillRect(area, color); });
    }
    struct Piece
    {
        int end;
        Qt::GlobalColor color = Qt::black;
    };
    void drawn(std::initializer_list<Piece> pieces)
    {
        int begin = 0;
        for (const Piece &piece : pieces) {
            const QString text = m_text.mid(begin, piece.end - begin);
            const QPointF baseline(xOf(m_text, begin), (m_place + 1) * spacing());
            m_expected.push_back([=](QPainter &painter) {
                painter.setPen(piece.color);
                painter.drawText(baseline, text);
            });
            begin = piece.end;
        }
    }
    void numbered(int place, int number)
    {
        const QRect area(0, place * spacing() + spacing() / 4, int(xOf({}, 0)) + textOffset, spacing());
        const QPoint baseline(0, (place + 1) * spacing());
        m_expected.push_back([=](QPainter &painter) {
            painter.fillRect(area, Qt::gray);
            painter.setPen(Qt::black);
            painter.drawText(baseline, QString::number(number));
        });
    }
    /// Compares, and forgets what was expected.
    void expectPainted(const char *what)
    {
        for (const int scale : {1, 2}) {
            const QImage expected = painted(scale, height(), [this](QPainter &painter) {
                painter.setFont(font);
                for (const auto &step : m_expected)
                    step(painter);
            });
            EXPECT_TRUE(picture(scale) == expected) << what << ", scale " << scale;
        }
        m_expected.clear();
    }
    QImage picture(int scale) const
    {
        return painted(scale, height(), [this](QPainter &painter) {
            paintRows(painter, view(), QRect(0, 0, paperWidth, height()));
        });
    }

    TestApplication<QApplication> application;
    CFilteredTextBuffer buffer;
    Selection selection;
    std::unique_ptr<TextPattern> searchText;
    std::int64_t firstRow = 0;
    int textOffset = 0;
    bool lineNumbers = false;
    QString numberColumn;
    QImage device = newPaper(1, 1);
    QFont font = fixedFont();
    LatinFont latinFont{font, &device};

private:
    int m_place = 0;
    QString m_text;
    std::vector<std::function<void(QPainter &)>> m_expected;
};

TEST(ScrollValue, StandsForAPlaceInTheRows)
{
    struct
    {
        int value;
        std::int64_t rowCount;
        int fitting;
        int correction;
        std::int64_t first;
    } const places[] = {{0, 100, 10, 0, 0},   {100, 100, 10, 10, 90},
                        {50, 100, 10, 5, 45}, {24, 100, 10, 2, 22},
                        {25, 100, 10, 3, 22}, {5, 5, 10, 10, 0},
                        {3, 5, 10, 6, 0},     {200, 100, 10, 10, 90},
                        {7, 0, 10, 0, 0},     {2000000000, 4000000000, 5000, 2500, 1999997500}};
    for (const auto &place : places) {
        const VisibleRows rows = visibleRowsAt(place.value, place.rowCount, place.fitting);
        EXPECT_EQ(rows.correction, place.correction) << place.value << " of " << place.rowCount;
        EXPECT_EQ(rows.first, place.first) << place.value << " of " << place.rowCount;
        EXPECT_EQ(rows.count, place.fitting);
    }
    EXPECT_EQ(scrollValueFor(50, 100, 11), 50 - 5 + 6);
    EXPECT_EQ(scrollValueFor(3999999999, 4000000000, 1000), 3999999999 - 500 + 1000);
    EXPECT_EQ(scrollValueFor(INT64_MAX / 2, 0, 0), INT64_MAX / 2);
}

TEST(Sequences, ColourTheWholeLineAndAreNotInItsText)
{
    const std::optional<Qt::GlobalColor> none;
    struct
    {
        const char *stored;
        const char *text;
        Qt::GlobalColor foreground = Qt::black;
        std::optional<Qt::GlobalColor> background = {};
    } const lines[] = {
        {"\x1B[1;31mError\x1B[0m", "Error", Qt::red},
        {"a\x1B[32;44mb", "ab", Qt::darkGreen, Qt::blue},
        {"\x1B[31ma\x1B[35;41m\x1B[36;45m", "a", Qt::cyan, Qt::magenta},
        {"\x1B[37;31;46;47mx", "x", Qt::white, Qt::white},
        {"\x1B[141mx\x1B[38;5;42m", "x", Qt::black, Qt::darkGreen},
        {"\x1B[34m\x1B[33;40;43;39;49;3mx", "x", Qt::blue},
        {"\x1B[31ma\x1B[32", "a\x1B[32", Qt::red},
        {"\x1B[", "\x1B["},
        {"c\x1B\x1B[32mz[m\x1B", "c\x1Bz[m\x1B", Qt::darkGreen},
        {"\x1B\x1B[32m\x1B\x1B[44m[m[31mx", "x", Qt::red, Qt::blue},
        {"a\x1B[mz\x1B\x1B[32m[m!", "az!", Qt::darkGreen},
        {"\x1B[3\x1B[1mx", "x"},
    };
    PaintedLine line;
    for (const auto &expected : lines) {
        line.set(expected.stored);
        EXPECT_EQ(line.text(), expected.text);
        EXPECT_EQ(line.foreground(), expected.foreground) << expected.text;
        EXPECT_EQ(line.background(), expected.background) << expected.text;
    }
    const std::string_view plain = "no sequence";
    line.set(plain);
    EXPECT_EQ(line.text().data(), plain.data()) << "no copy";
    EXPECT_TRUE(line.foreground() == Qt::black && line.background() == none);
    line.set("\x1B[1mab\x1B[2m\x1B\x1B[m[mcd\x1B[m");
    const std::int64_t columns[] = {0, 0, 5, 16, 17, 21, 21};
    for (int i = -1; i <= 5; ++i)
        EXPECT_EQ(line.storedColumn(i), columns[i + 1]) << i;
}

TEST_F(Painting, DrawsEachCharacterAsDrawTextWould)
{
    QFont underlined = fixedFont();
    underlined.setUnderline(true);
    QFont spaced = fixedFont();
    spaced.setLetterSpacing(QFont::AbsoluteSpacing, 1.3);
    QFont bold = fixedFont();
    bold.setBold(true);
    bold.setItalic(true);
    const QFont fonts[] = {fixedFont(8), fixedFont(10.5), fixedFont(70),     bold,
                           underlined,   spaced,          proportionalFont()};
    const std::string texts[] = {latin1(' ', '~'), latin1(0xA0, 0xFF), "fi ffl -> != www",
                                 "\t\x01 tab\t\x7F\x85\xAD.", std::string(300, '.') + "x"};
    for (const QFont &wanted : fonts) {
        useFont(wanted);
        for (const std::string &text : texts) {
            const QString string = QString::fromLatin1(text.c_str());
            EXPECT_EQ(latinFont.width(text), QFontMetricsF(font, &device).horizontalAdvance(string));
            for (const int scale : {1, 2}) {
                for (const int x : {3, 100 - int(latinFont.width(text))}) {
                    const QPointF baseline(x, 60);
                    const auto ours = [&](QPainter &painter) { latinFont.draw(painter, baseline, text, 0); };
                    const auto theirs = [&](QPainter &painter) {
                        painter.setFont(font);
                        painter.drawText(baseline, string);
                    };
                    EXPECT_TRUE(painted(scale, 80, ours) == painted(scale, 80, theirs))
                        << font.toString().toStdString() << ", scale " << scale << ": " << text;
                }
            }
        }
    }
}

TEST_F(Painting, FindsTheColumnWhosePrefixReachesAPixel)
{
    for (const QFont &wanted : {fixedFont(), proportionalFont()}) {
        useFont(wanted);
        for (const std::string &text :
             {"Some Words, " + latin1(0xA0, 0xFF), std::string("a\tbc\tdef\x01\x02ghi"), std::string(),
              std::string("x"), std::string(400, 'i'), std::string(200, '\r') + "wide"}) {
            const qreal end = latinFont.width(text);
            for (qreal x = 0.25; x <= end; x += 3.5) {
                const auto column = static_cast<std::size_t>(latinFont.columnAt(text, x));
                ASSERT_GE(latinFont.width(text.substr(0, column)), x) << text;
                ASSERT_LT(latinFont.width(text.substr(0, column - 1)), x) << text;
            }
            EXPECT_EQ(latinFont.columnAt(text, end + 1), text.size());
            EXPECT_EQ(latinFont.columnAt(text, HUGE_VAL), text.size());
            EXPECT_EQ(latinFont.columnAt(text, -1), 0);
            EXPECT_EQ(latinFont.columnAt(text, std::nan("")), 0);
        }
        EXPECT_EQ(latinFont.columnAt("abc", latinFont.width("ab")), 2) << "reached exactly";
    }
}

TEST_F(Painting, LaysHighlightsOverEachOtherAndTextOnTop)
{
    append({"\x1B[35mfind one, find \x1B[42mtwo\x1B[0m", "find too", "not here", "", "find"});
    searchText = std::make_unique<TextPattern>(QStringLiteral("find"));
    selection.begin({4, 1});
    selection.extendTo({0, 2}); // upwards
    for (const QFont &wanted : {fixedFont(), proportionalFont()}) {
        useFont(wanted);
        row(0, "find one, find two");
        filled({0, 18}, Qt::darkGreen);
        filled({0, 4}, Qt::cyan);
        filled({2, 18}, Qt::lightGray);
        drawn({{18, Qt::magenta}});
        row(1, "find too");
        filled({0, 4}, Qt::yellow);
        filled({0, 8}, Qt::lightGray);
        drawn({{8}});
        row(2, "not here");
        filled({0, 8}, Qt::lightGray);
        drawn({{8}});
        row(4, "find");
        filled({0, 4}, Qt::yellow);
        filled({0, 1}, Qt::lightGray);
        drawn({{4}});
        expectPainted("highlights");
    }
    searchText = std::make_unique<TextPattern>(QString());
    firstRow = 4;
    selection.begin({4, 2});
    selection.extendTo({4, Selection::lastColumnOfAll});
    row(0, "find");
    filled({2, 4}, Qt::lightGray);
    drawn({{4}});
    expectPainted("an empty search text, a column behind the end, rows behind the last");
}

TEST_F(Painting, EndsARowWithItsThirdMarker)
{
    for (const char *const pattern : {"1st", "2nd", "3rd", "4th"})
        buffer.addPattern(QLatin1String(pattern));
    append({"\x1B[31ma 2nd b 4th c 3rd d 1st e", "2nd 1st 2nd 4th", "2nd3rd4th2nd and no more", "a\t2nd b\tc",
            "4th 4th 4th 4th"});
    row(0, "a 2nd b 4th c 3rd d 1st e"); // the first pattern wins, and hides the others before it
    drawn({{20, Qt::red}, {23, Qt::darkGreen}, {25, Qt::red}});
    row(1, "2nd 1st 2nd 4th");
    drawn({{4}, {7, Qt::darkGreen}, {8}, {11, Qt::blue}, {12}, {15, Qt::red}});
    row(2, "2nd3rd4th2nd and no more");
    drawn({{3, Qt::blue}, {9}, {12, Qt::blue}, {24}});
    row(3, "a\t2nd b\tc");
    drawn({{2}, {5, Qt::blue}, {7}, {8}, {9}}); // the last one at the tab stop of the whole row
    row(4, "4th 4th 4th 4th");
    drawn({{3, Qt::red}, {4}, {7, Qt::red}, {8}, {11, Qt::red}});
    expectPainted("markers");
    buffer.clearPatterns();
    buffer.addPattern(QString());
    firstRow = 4;
    row(0, "4th 4th 4th 4th");
    drawn({{15}});
    expectPainted("the empty marker");
}

TEST_F(Painting, KeepsTheNumbersWhereTheyAre)
{
    for (int i = 0; i < 100; ++i)
        append({"jj\xC4 row " + std::to_string(i)});
    lineNumbers = true;
    numberColumn = QStringLiteral("100 ");
    firstRow = 95;
    for (const int offset : {0, 3, 60}) {
        textOffset = offset;
        for (int i = 0; i < 5; ++i) {
            row(i, ("jj\xC4 row " + std::to_string(firstRow + i)).c_str());
            drawn({{10}});
        }
        for (int i = 0; i < 5; ++i)
            numbered(i, 95 + i);
        expectPainted("numbers over the text scrolled away");
    }
}

TEST_F(Painting, OfAHugeLineIsThatOfItsBeginning)
{
    std::string line(20'000'000, '-');
    line.replace(0, 11, "[i] i found");
    append({"\x1B[42m" + line + "\x1B[31m", line.replace(20, 2, "\x01\xAD")});
    buffer.addPattern(QStringLiteral("found"));
    searchText = std::make_unique<TextPattern>(QStringLiteral("i"));
    selection.selectAll(2);
    for (const QFont &wanted : {fixedFont(), proportionalFont()}) {
        useFont(wanted);
        for (textOffset = 0; textOffset < 100; textOffset += 60) {
            row(0, line.substr(0, 1000).replace(20, 2, "--").c_str());
            filled({0, 1000}, Qt::darkGreen);
            filled({1, 2}, Qt::cyan);
            filled({0, 1000}, Qt::lightGray);
            drawn({{6, Qt::red}, {11, Qt::darkGreen}, {1000, Qt::red}});
            row(1, line.substr(0, 1000).c_str());
            filled({1, 2}, Qt::yellow);
            filled({0, 1000}, Qt::lightGray);
            drawn({{6}, {11, Qt::darkGreen}, {1000}});
            expectPainted("as if it were short");
        }
        EXPECT_LT(latinFont.columnAt(buffer.line(1), 300), 300);
    }
}

} // namespace
