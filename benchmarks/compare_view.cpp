// The view of the debug window beside those that Qt has for lines. Without an argument: rows of the
// comparison; "growth": how the library's own figures grow with lines and markers.

#include "comparison.h"
#include "views.h"
#include "waits.h"

#include <QApplication>
#include <QScrollBar>

#include <array>
#include <malloc.h>

using namespace bench;
using Zorvan::CFilteredTextBuffer;
using Zorvan::TextPattern;

namespace {

constexpr int rounds = 100;

using Views = std::array<std::unique_ptr<LineView>, 3>;

/// The library's first.
Views newViews()
{
    return {std::make_unique<MessageView>(), std::make_unique<TextView>(), std::make_unique<ListView>()};
}

void rowOf(const std::string &what, const Views &views, const std::array<double, 3> &figures,
           Quantity kind = Quantity::Time)
{
    comparisonRow(what, figures[0], {{views[1]->name(), figures[1]}, {views[2]->name(), figures[2]}}, kind);
}

/// Processor time for each line.
double timeFill(LineView &view, int lines)
{
    const double start = processorTime();
    fill(lines, [&view](const std::string &part) { view.append(part); });
    return (processorTime() - start) / lines;
}

/// Processor time until everything is painted.
double timeFrame(LineView &view, int times, const std::function<void()> &change)
{
    const Subject frame{view.name(), [&change](int) {
                            change();
                            QCoreApplication::processEvents();
                        }};
    return measureProcessorTime(times, {frame}).front().figures.call;
}

double timeNewLines(LineView &view, int times = rounds)
{
    return timeFrame(view, times, [&view, lines = linesFrom(0, 10)] {
        view.append(lines);
        view.follow();
    });
}

double timeScroll(LineView &view, int rows)
{
    QScrollBar *const bar = view.widget().verticalScrollBar();
    bar->setValue((bar->minimum() + bar->maximum()) / 2);
    QCoreApplication::processEvents();
    return timeFrame(view, rounds, [bar, rows, step = 0]() mutable {
        bar->setValue(bar->value() + (++step % 20 < 10 ? rows : -rows));
    });
}

double timeRepaint(LineView &view)
{
    return timeFrame(view, rounds, [&view] { view.widget().viewport()->update(); });
}

/// All of them stay: memory that is given back would hide what the next one takes.
void compareMemory(const Views &views)
{
    constexpr int lines = 300'000;
    std::array<double, 3> figures{};
    for (std::size_t i = 0; i < views.size(); ++i) {
        const double before = residentBytes();
        timeFill(*views[i], lines);
        figures[i] = (residentBytes() - before) / lines;
    }
    rowOf("Resident memory for a line of 100 characters", views, figures, Quantity::Bytes);
}

void compareAppending()
{
    constexpr int lines = 100'000;
    constexpr int times = 3;
    std::array<std::vector<double>, 3> growing;
    std::array<std::vector<double>, 3> full;
    const Views names = newViews();
    for (int time = 0; time < times; ++time) {
        const Views views = newViews();
        for (std::size_t i = 0; i < views.size(); ++i) {
            malloc_trim(0); // each takes new memory from the system, none what another gave back
            growing[i].push_back(timeFill(*views[i], lines));
        }
        const Views rings = newViews();
        for (std::size_t i = 0; i < rings.size(); ++i) {
            rings[i]->keep(lines);
            timeFill(*rings[i], 2 * lines);
            full[i].push_back(timeFill(*rings[i], lines));
        }
    }
    rowOf("Line appended in a batch of 1,000, up to 100,000 lines", names,
          {median(growing[0]), median(growing[1]), median(growing[2])});
    rowOf("The same, the oldest of 100,000 makes room", names,
          {median(full[0]), median(full[1]), median(full[2])});
}

void comparePainting(const Views &views, const std::string &held)
{
    const auto row = [&](const std::string &what, const auto &time) {
        std::array<double, 3> figures{};
        for (std::size_t i = 0; i < views.size(); ++i)
            figures[i] = time(*views[i]);
        rowOf(what + ", " + held + " lines held", views, figures);
    };
    row("Frame of 1200x800 with 10 new lines", [](LineView &view) { return timeNewLines(view); });
    row("Scrolled by 3 rows", [](LineView &view) { return timeScroll(view, 3); });
    row("Scrolled by 40 rows", [](LineView &view) { return timeScroll(view, 40); });
    row("Repainted, nothing new", timeRepaint);
}

void compare()
{
    {
        const Views views = newViews();
        compareMemory(views); // while no memory has been given back yet
        for (const auto &view : views)
            view->show();
        comparePainting(views, "300,000");
    }
    const Views views = newViews();
    for (const auto &view : views) {
        view->show();
        fill(10'000, [&view](const std::string &part) { view->append(part); });
        view->follow();
        QCoreApplication::processEvents();
    }
    comparePainting(views, "10,000");
    compareAppending();
}

/// A walk through all lines, for each of them.
double timeFind(const CFilteredTextBuffer &buffer)
{
    const TextPattern pattern(QStringLiteral("no such text"));
    std::vector<double> times;
    while (times.size() < 5) {
        const double start = processorTime();
        if (buffer.findDown(pattern, 0) >= 0)
            std::abort();
        times.push_back((processorTime() - start) / buffer.lineCount());
    }
    return median(times);
}

void showGrowthWithLines()
{
    const GrowthTable table("Lines", {1e3, 1e4, 1e5, 1e6, 1e7});
    std::vector<double> append;
    std::vector<double> find;
    std::vector<double> frame;
    std::vector<double> scroll;
    for (const double lines : table.numbers()) {
        MessageView view;
        append.push_back(timeFill(view, static_cast<int>(lines)));
        find.push_back(timeFind(view.widget().buffer()));
        view.show();
        frame.push_back(timeNewLines(view));
        scroll.push_back(timeScroll(view, 40));
    }
    table.row("Line appended, batches of 1,000", append);
    table.row("Text searched in all lines, for each line", find);
    table.row("Frame with 10 new lines", frame);
    table.row("Scrolled by 40 rows", scroll);
}

double timeMarking(CFilteredTextBuffer &buffer)
{
    std::vector<double> times;
    while (times.size() < 3) {
        buffer.setMarkedOutputOnly(false);
        const double start = processorTime();
        buffer.setMarkedOutputOnly(true);
        times.push_back((processorTime() - start) / buffer.lineCount());
    }
    return median(times);
}

void showGrowthWithMarkers()
{
    constexpr int lines = 300'000;
    const GrowthTable table("Markers", {0, 1, 4, 8, 64});
    std::vector<double> marking;
    std::vector<double> append;
    std::vector<double> frame;
    std::vector<double> scroll;
    for (const double markers : table.numbers()) {
        MessageView view;
        CFilteredTextBuffer &buffer = view.widget().buffer();
        fill(lines, [&view](const std::string &part) { view.append(part); });
        for (int i = 0; i < static_cast<int>(markers); ++i)
            buffer.addPattern(QStringLiteral("step %1").arg(i * 31337 % 100'000));
        view.show();
        frame.push_back(timeNewLines(view));
        scroll.push_back(timeScroll(view, 40));
        marking.push_back(timeMarking(buffer));
        append.push_back(timeFill(view, lines));
    }
    table.row("Marked lines looked for, for each line", marking);
    table.row("Line appended, only marked ones shown", append);
    table.row("Frame with 10 new lines", frame);
    table.row("Scrolled by 40 rows", scroll);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    fill(1000, [](const std::string &) {}); // the lines are made now, in no figure
    if (argc > 1) {
        showGrowthWithLines();
        showGrowthWithMarkers();
    } else {
        compare();
    }
}
