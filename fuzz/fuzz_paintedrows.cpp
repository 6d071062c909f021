// Any bytes as lines of the debug window, with markers, a search and a selection: a view that is painted in
// parts looks like one that is painted at once.

#include "debugwindow/rowpainter.h"
#include "fuzzapplication.h"
#include "fuzzcheck.h"

#include <QPainter>

using namespace Zorvan;

namespace {

constexpr QRect view(0, 0, 160, 64);

QImage newPaper()
{
    QImage paper(view.size(), QImage::Format_RGB32);
    paper.fill(Qt::white);
    return paper;
}

QImage paintedInParts(const RowsToPaint &rows, const QPoint &corner)
{
    QImage paper = newPaper();
    for (const QRect &part :
         {QRect(QPoint(), corner), QRect(QPoint(corner.x() + 1, 0), QPoint(view.right(), corner.y())),
          QRect(QPoint(0, corner.y() + 1), view.bottomRight())}) {
        QPainter painter(&paper);
        painter.setClipRect(part);
        paintRows(painter, rows, part);
    }
    return paper;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    startApplication();
    static QImage device = newPaper();
    static const LatinFont fonts[] = {{QFont(QStringLiteral("DejaVu Sans Mono"), 8), &device},
                                      {QFont(QStringLiteral("DejaVu Sans"), 8), &device}};
    Input input(data, size);
    const QPoint corner(static_cast<int>(input.byte() % view.width()),
                        static_cast<int>(input.byte() % view.height()));
    const unsigned flags = input.byte();
    const LatinFont &font = fonts[flags / 4 % 2];
    const auto offset = static_cast<int>(input.byte());
    Selection selection;
    const auto position = [&] { return TextPosition{input.byte() % 8, input.byte()}; };
    selection.begin(position());
    selection.extendTo(position());
    const auto text = [&] {
        return QString::fromLatin1(QByteArray::fromStdString(std::string(input.line())));
    };
    const TextPattern search(text());
    CFilteredTextBuffer buffer;
    for (unsigned i = 0; i < flags % 4; ++i)
        buffer.addPattern(text());
    for (int rows = 0; rows < 8 && !input.rest.empty(); ++rows)
        buffer.appendLine(input.line());
    const RowsToPaint rows{buffer,    font,
                           selection, (flags & 8) != 0 ? &search : nullptr,
                           1,         {4, 0, (flags / 16) % 4},
                           offset,    (flags & 64) != 0};
    require(paintedInParts(rows, view.bottomRight()) == paintedInParts(rows, corner));
    return 0;
}
