// Painting the view: a whole repaint with all that it can show, and the column under the mouse.

#include "debugwindow/rowpainter.h"
#include "table.h"
#include "waits.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>

#include <benchmark/benchmark.h>

using namespace bench;
using namespace Zorvan;

namespace {

const QSize viewSize(1200, 800);
constexpr int rounds = 300;

const QStringList patterns = {QStringLiteral("level 1"), QStringLiteral("sweep"), QStringLiteral("error"),
                              QStringLiteral("MHz")};
const QString searched = QStringLiteral("settled");

/// 80 to 120 characters, every eighth line in a colour.
std::string lineOfSession(int number)
{
    const char *const colors[] = {"\x1B[1;31m", "\x1B[42m", "\x1B[34;47m"};
    std::string line = "[generator] " + std::to_string(number) + ": frequency 1" + std::to_string(number % 97)
        + ".250 MHz, level " + std::to_string(number % 23) + ".5 dBm, "
        + (number % 5 == 0 ? "output settled" : "waiting for the attenuator") + " after "
        + std::to_string(number * 7 % 40) + " us";
    line.resize(static_cast<std::size_t>(80 + number * 13 % 41), '.');
    return number % 8 == 0 ? colors[number / 8 % 3] + line + "\x1B[0m" : line;
}

QImage newPaper(int scale)
{
    QImage paper(viewSize * scale, QImage::Format_RGB32);
    paper.setDevicePixelRatio(scale);
    paper.fill(Qt::white);
    return paper;
}

/// What is painted, either way.
struct Scene
{
    explicit Scene(const QFont &viewFont)
        : paper(newPaper(1))
        , font(viewFont, &paper)
        , latinFont(font, &paper)
    {
        for (const QString &pattern : patterns)
            buffer.addPattern(pattern);
        for (int i = 0; i < 1000; ++i)
            buffer.appendLine(lineOfSession(i));
        rows = visibleRowsAt(500, buffer.rowCount(), viewSize.height() / latinFont.lineSpacing());
        selection.begin({rows.first + 3, 10});
        selection.extendTo({rows.first + 6, 40});
    }

    CFilteredTextBuffer buffer;
    QImage paper;
    QFont font;
    LatinFont latinFont;
    Selection selection;
    TextPattern searchText{searched};
    VisibleRows rows;
};

void paintByBytes(QPainter &painter, const Scene &scene)
{
    const RowsToPaint view{
        scene.buffer, scene.latinFont, scene.selection, &scene.searchText, 505, scene.rows, 5, true};
    paintRows(painter, view, QRect(QPoint(), viewSize));
}

/// Takes the colour sequences out of a text.
struct Colors
{
    explicit Colors(QString &text)
    {
        int begin = 0;
        while ((begin = text.indexOf(QLatin1String("\x1B["))) >= 0) {
            const int end = text.indexOf(QLatin1Char('m'), begin);
            if (end < 0)
                return;
            const QString parameters = text.mid(begin + 2, end - begin - 2);
            text.remove(begin, end + 1 - begin);
            const Qt::GlobalColor named[] = {Qt::black, Qt::red,     Qt::darkGreen, Qt::black,
                                             Qt::blue,  Qt::magenta, Qt::cyan,      Qt::white};
            for (const int i : {1, 2, 4, 5, 6, 7}) {
                if (parameters.contains(QString::number(40 + i)))
                    background = QColor(named[i]);
            }
            for (const int i : {0, 1, 2, 4, 5, 6, 7}) {
                if (parameters.contains(QString::number(30 + i)))
                    foreground = named[i];
            }
        }
    }

    QColor foreground = Qt::black;
    QColor background;
};

/// The straightforward way: a QString for each row, drawText() and QFontMetricsF.
class StringPainter
{
public:
    StringPainter(QPainter &painter, const Scene &scene)
        : m_painter(painter)
        , m_scene(scene)
        , m_metrics(scene.font, painter.device())
        , m_spacing(QFontMetrics(scene.font, painter.device()).lineSpacing())
    {
        m_painter.setFont(scene.font);
        const QString widest = QString::number(scene.buffer.rowCount()) + QLatin1Char(' ');
        m_numberWidth = qRound(m_metrics.horizontalAdvance(widest));
    }
    void paint()
    {
        for (m_place = 0; m_place < m_scene.rows.count; ++m_place) {
            const std::int64_t row = m_scene.rows.first + m_place;
            QString text = m_scene.buffer.text(row);
            const Colors colors(text);
            if (colors.background.isValid())
                fill(text, 0, text.size(), colors.background);
            const int hit = text.indexOf(searched);
            if (hit >= 0)
                fill(text, hit, hit + searched.size(), row == 505 ? Qt::cyan : Qt::yellow);
            if (const auto columns = m_scene.selection.columnsOf(row, text.size()))
                fill(text, static_cast<int>(columns->begin), static_cast<int>(columns->end), Qt::lightGray);
            drawText(text, colors.foreground);
        }
        for (m_place = 0; m_place < m_scene.rows.count; ++m_place) {
            m_painter.fillRect(0, top(), m_numberWidth, m_spacing, Qt::gray);
            draw(0, QString::number(m_scene.rows.first + m_place), Qt::black);
        }
    }

private:
    [[nodiscard]] int top() const { return m_place * m_spacing + m_spacing / 4; }
    [[nodiscard]] qreal xOf(const QString &text, int column) const
    {
        return m_numberWidth - 5 + m_metrics.horizontalAdvance(text.left(column));
    }
    void fill(const QString &text, int begin, int end, const QColor &color)
    {
        const qreal x = xOf(text, begin);
        m_painter.fillRect(QRectF(x, top(), xOf(text, end) - x, m_spacing), color);
    }
    void draw(qreal x, const QString &text, const QColor &color)
    {
        m_painter.setPen(color);
        m_painter.drawText(QPointF(x, (m_place + 1) * m_spacing), text);
    }
    void drawText(const QString &text, const QColor &foreground)
    {
        int done = 0;
        for (int hits = 0; hits < 3; ++hits) {
            int begin = -1;
            int pattern = 0;
            while (begin < 0 && pattern < patterns.size())
                begin = text.indexOf(patterns[pattern++], done);
            draw(xOf(text, done), text.mid(done, begin < 0 ? -1 : begin - done), foreground);
            if (begin < 0)
                return;
            const int length = patterns[pattern - 1].size();
            const Qt::GlobalColor colors[] = {Qt::darkGreen, Qt::blue, Qt::red, Qt::red};
            draw(xOf(text, begin), text.mid(begin, length), colors[pattern - 1]);
            done = begin + length;
        }
    }

    QPainter &m_painter;
    const Scene &m_scene;
    QFontMetricsF m_metrics;
    int m_spacing;
    int m_numberWidth = 0;
    int m_place = 0;
};

void paintByStrings(QPainter &painter, const Scene &scene)
{
    StringPainter(painter, scene).paint();
}

std::int64_t differingPixels(const Scene &scene, int scale)
{
    QImage ours = newPaper(scale);
    QImage theirs = newPaper(scale);
    QPainter ourPainter(&ours);
    QPainter theirPainter(&theirs);
    paintByBytes(ourPainter, scene);
    paintByStrings(theirPainter, scene);
    std::int64_t count = 0;
    for (int y = 0; y < ours.height(); ++y) {
        for (int x = 0; x < ours.width(); ++x)
            count += ours.pixel(x, y) != theirs.pixel(x, y) ? 1 : 0;
    }
    return count;
}

/// A view with the same rows, without colours and numbers; they are laid out.
std::unique_ptr<QPlainTextEdit> textEdit(const Scene &scene)
{
    auto edit = std::make_unique<QPlainTextEdit>();
    QStringList lines;
    for (std::int64_t row = 0; row < scene.buffer.rowCount(); ++row) {
        QString text = scene.buffer.text(row);
        const Colors colors(text);
        lines.append(text);
    }
    edit->setFont(scene.font);
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    edit->setFrameShape(QFrame::NoFrame);
    edit->setPlainText(lines.join(QLatin1Char('\n')));
    edit->resize(viewSize
                 + QSize(edit->verticalScrollBar()->sizeHint().width(),
                         edit->horizontalScrollBar()->sizeHint().height()));
    edit->show();
    edit->verticalScrollBar()->setValue(static_cast<int>(scene.rows.first));
    return edit;
}

enum class Way {
    Glyphs, ///< the one that has to be fast
    Strings,
};

void measureRepaint(const char *title, Scene &scene, Way way)
{
    const auto edit = textEdit(scene);
    const auto painted = [&scene](void (*paint)(QPainter &, const Scene &)) {
        return [&scene, paint](int) {
            QPainter painter(&scene.paper);
            paint(painter, scene);
        };
    };
    const std::vector<Result> results = measureProcessorTime(
        rounds,
        {{"drawText() and QString", painted(paintByStrings)},
         {"QPlainTextEdit, plain text",
          [&](int) { edit->viewport()->render(&scene.paper, QPoint(), QRegion(), QWidget::DrawChildren); }},
         {"rows painted from their bytes", painted(paintByBytes)}});
    Table table(title, Table::Unit::Microseconds);
    table.row(results[0]);
    table.row(results[1], results[0]);
    const bool isFast = way == Way::Glyphs;
    isFast ? table.row(results[2], results[0], 0.65) : table.row(results[2], results[0]);
    isFast ? table.row(results[2], results[1], 1.0) : table.row(results[2], results[1]);
    std::string pixels = "Pixels that differ between the first way and the last:";
    for (const int scale : {1, 2})
        pixels += ' ' + std::to_string(differingPixels(scene, scale)) + " at scale " + std::to_string(scale)
            + (scale == 1 ? "," : ".");
    table.note(pixels);
}

int columnByPrefixes(const QString &text, const QFontMetricsF &metrics, qreal x)
{
    int column = 0;
    while (column < text.size() && metrics.horizontalAdvance(text.left(column)) < x)
        ++column;
    return column;
}

void measureColumn(const Scene &scene, const LatinFont &proportional)
{
    const std::string line = lineOfSession(41);
    const QString text = QString::fromStdString(line);
    const QFontMetricsF metrics(scene.font);
    qreal x = 0;
    const auto nextX = [&x] { return x = x > 700 ? 1 : x + 7; };
    const std::vector<Subject> ways = {
        {"growing prefixes",
         repeated([&] { benchmark::DoNotOptimize(columnByPrefixes(text, metrics, nextX())); })},
        {"columnAt()", repeated([&] { benchmark::DoNotOptimize(scene.latinFont.columnAt(line, nextX())); })},
        {"columnAt(), proportional font",
         repeated([&] { benchmark::DoNotOptimize(proportional.columnAt(line, nextX())); })}};
    const Result prefixes = measure({2, 30, false, false}, {ways[0]}).front();
    Table table("The column under the mouse, in a line of 80 characters", Table::Unit::Nanoseconds);
    table.row(prefixes);
    const Result fast = measure({10'000, 200, false, false}, {ways[1]}).front();
    table.row(fast, prefixes, 1000 / prefixes.figures.call);
    table.row(measure({20, 30, false, false}, {ways[2]}).front(), prefixes);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Scene fixed(QFont(QStringLiteral("DejaVu Sans Mono"), 9));
    Scene proportional(QFont(QStringLiteral("DejaVu Sans"), 9));
    measureRepaint("A repaint of 1200x800: processor time", fixed, Way::Glyphs);
    measureRepaint("The same in a proportional font", proportional, Way::Strings);
    measureColumn(fixed, proportional.latinFont);
}
