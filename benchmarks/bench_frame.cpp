// One frame of a live window: ten new lines, and the view shows them. By how many lines are held already.

#include "table.h"
#include "views.h"
#include "waits.h"

#include <QApplication>

using namespace bench;

namespace {

constexpr int linesPerFrame = 10;
constexpr int rounds = 100;
constexpr int heldByOthers = 1'000'000;

/// Frames of a view that holds so many lines.
template <typename View>
Result frames(const std::string &name, int held, int kept = 0)
{
    View view;
    view.keep(kept);
    view.show();
    fill(held, [&view](const std::string &part) { view.append(part); });
    QCoreApplication::processEvents();
    return measureProcessorTime(rounds,
                                {{name,
                                  [&view, lines = linesFrom(0, linesPerFrame)](int) {
                                      view.append(lines);
                                      view.follow();
                                      QCoreApplication::processEvents();
                                  }}})
        .front();
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const Result edit = frames<TextView>("QPlainTextEdit, 1,000,000 lines", heldByOthers);
    const Result list = frames<ListView>("QListView, 1,000,000 lines", heldByOthers);
    Table table("A frame of 1200x800 with ten new lines: processor time", Table::Unit::Microseconds);
    table.row(edit);
    table.row(list, edit);
    table.row(frames<MessageView>("message view, 1,000 lines", 1000), edit);
    table.row(frames<MessageView>("message view, 100,000 lines", 100'000), edit);
    table.row(frames<MessageView>("message view, 1,000,000 lines", heldByOthers), edit, 0.3);
    table.row(frames<MessageView>("message view, 10,000,000 lines", 10'000'000), edit);
    // Each line takes the place of the oldest: the lines move under their rows, and all are painted.
    table.row(
        frames<MessageView>("message view, full ring of 1,000,000 lines", heldByOthers + 1000, heldByOthers),
        edit);
}
