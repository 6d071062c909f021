// One frame of a live window: ten new lines, and the view shows them. By how many lines are held already.

#include "debugwindow/protocolwidget.h"
#include "table.h"
#include "waits.h"

#include <QAbstractListModel>
#include <QApplication>
#include <QListView>
#include <QPlainTextEdit>
#include <QScrollBar>

#include <memory>

using namespace bench;
using namespace Zorvan;

namespace {

constexpr QSize viewSize(1200, 800);
constexpr int linesPerFrame = 10;
constexpr int rounds = 100;
constexpr int heldByOthers = 1'000'000;

QFont viewFont()
{
    return QFont(QStringLiteral("DejaVu Sans Mono"), 9);
}

/// Lines of 80 to 120 bytes with line feeds between them.
std::string linesFrom(int first, int count)
{
    std::string text;
    for (int i = first; i < first + count; ++i) {
        std::string line = "12:34:56.789 <    Info>: generator, step " + std::to_string(i);
        line.resize(static_cast<std::size_t>(80 + i * 13 % 41), static_cast<char>('a' + i % 26));
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

QString toString(const std::string &text)
{
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

template <typename View>
void show(View &view)
{
    view.setFont(viewFont());
    view.resize(viewSize);
    view.show();
    QCoreApplication::processEvents();
}

/// Calls \a append with parts of so many lines.
template <typename Append>
void fill(int lines, const Append &append)
{
    constexpr int part = 1000;
    for (int first = 0; first < lines; first += part)
        append(linesFrom(first, part));
    QCoreApplication::processEvents();
}

class ListModel : public QAbstractListModel
{
public:
    int rowCount(const QModelIndex &) const override { return static_cast<int>(m_lines.size()); }
    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(m_lines[index.row()]) : QVariant();
    }
    void append(const std::string &text)
    {
        const QStringList lines = toString(text).split(QLatin1Char('\n'));
        beginInsertRows({}, m_lines.size(), m_lines.size() + lines.size() - 1);
        m_lines += lines;
        endInsertRows();
    }

private:
    QStringList m_lines;
};

Result frames(const std::string &name, const std::function<void(const std::string &lines)> &append)
{
    const std::string lines = linesFrom(0, linesPerFrame);
    return measureProcessorTime(rounds,
                                {{name,
                                  [&](int) {
                                      append(lines);
                                      QCoreApplication::processEvents();
                                  }}})
        .front();
}

Result framesOfTextEdit()
{
    QPlainTextEdit edit;
    edit.setReadOnly(true);
    edit.setUndoRedoEnabled(false);
    edit.setLineWrapMode(QPlainTextEdit::NoWrap);
    show(edit);
    const auto append = [&edit](const std::string &lines) {
        edit.appendPlainText(toString(lines));
        edit.verticalScrollBar()->setValue(edit.verticalScrollBar()->maximum());
    };
    fill(heldByOthers, append);
    return frames("QPlainTextEdit, 1,000,000 lines", append);
}

Result framesOfList()
{
    ListModel model;
    fill(heldByOthers, [&model](const std::string &lines) { model.append(lines); });
    QListView list;
    list.setUniformItemSizes(true);
    list.setModel(&model);
    show(list);
    const auto append = [&](const std::string &lines) {
        model.append(lines);
        list.scrollToBottom();
    };
    return frames("QListView, 1,000,000 lines", append);
}

Result framesOfMessageView(const std::string &name, int held)
{
    QProtocolWidget view;
    view.buffer().setMaximumLineCount(0);
    show(view);
    const auto append = [&view](const std::string &lines) { view.appendText(lines); };
    fill(held, append);
    return frames(name, append);
}

/// Each line takes the place of the oldest: the lines move under their rows, and all are painted.
Result framesOfRing()
{
    QProtocolWidget view;
    view.buffer().setMaximumLineCount(heldByOthers);
    show(view);
    const auto append = [&view](const std::string &lines) { view.appendText(lines); };
    fill(heldByOthers + 1000, append);
    return frames("message view, full ring of 1,000,000 lines", append);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const Result edit = framesOfTextEdit();
    const Result list = framesOfList();
    Table table("A frame of 1200x800 with ten new lines: processor time", Table::Unit::Microseconds);
    table.row(edit);
    table.row(list, edit);
    table.row(framesOfMessageView("message view, 1,000 lines", 1000), edit);
    table.row(framesOfMessageView("message view, 100,000 lines", 100'000), edit);
    table.row(framesOfMessageView("message view, 1,000,000 lines", heldByOthers), edit, 0.3);
    table.row(framesOfMessageView("message view, 10,000,000 lines", 10'000'000), edit);
    table.row(framesOfRing(), edit);
}
