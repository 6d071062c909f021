#include "views.h"

#include <QCoreApplication>
#include <QScrollBar>

namespace bench {

namespace {

constexpr int partLines = 1000;

QString toString(const std::string &text)
{
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

/// Making the lines takes longer than storing them.
const std::vector<std::string> &parts()
{
    static const auto all = [] {
        std::vector<std::string> made;
        for (int part = 0; part < 100; ++part)
            made.push_back(linesFrom(part * partLines, partLines));
        return made;
    }();
    return all;
}

} // namespace

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

void fill(int lines, const std::function<void(const std::string &part)> &append)
{
    for (int part = 0; part < lines / partLines; ++part)
        append(parts()[static_cast<std::size_t>(part) % parts().size()]);
}

void LineView::show()
{
    widget().setFont(QFont(QStringLiteral("DejaVu Sans Mono"), 9));
    widget().resize(QSize(1200, 800));
    widget().show();
    QCoreApplication::processEvents();
}

TextView::TextView()
{
    m_view.setReadOnly(true);
    m_view.setUndoRedoEnabled(false);
    m_view.setLineWrapMode(QPlainTextEdit::NoWrap);
}

void TextView::append(const std::string &lines)
{
    m_view.appendPlainText(toString(lines));
}

void TextView::follow()
{
    m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->maximum());
}

void StringsModel::append(const QStringList &lines)
{
    const int count = static_cast<int>(m_lines.size());
    beginInsertRows({}, count, count + static_cast<int>(lines.size()) - 1);
    m_lines += lines;
    endInsertRows();
}

void StringsModel::keepLast(int lines)
{
    const int surplus = static_cast<int>(m_lines.size()) - lines;
    if (surplus <= 0)
        return;
    beginRemoveRows({}, 0, surplus - 1);
    m_lines.erase(m_lines.begin(), m_lines.begin() + surplus);
    endRemoveRows();
}

ListView::ListView()
{
    m_view.setUniformItemSizes(true);
    m_view.setModel(&m_model);
}

void ListView::append(const std::string &lines)
{
    m_model.append(toString(lines).split(QLatin1Char('\n')));
    if (m_kept > 0)
        m_model.keepLast(m_kept);
}

void ListView::follow()
{
    m_view.scrollToBottom();
}

} // namespace bench
