#include "debugwindow/rowcopy.h"

#include "debugwindow/paintedline.h"
#include "platform/memory.h"

#include <algorithm>
#include <new>
#include <vector>

namespace Zorvan {

namespace {

using Rows = CFilteredTextBuffer::Rows;

/// Texts of one row or several, which stay where they are until all is known about the copy: then it takes
/// one block of exactly the right size.
class Pieces
{
public:
    explicit Pieces(std::size_t mostCharacters)
        : m_mostCharacters(mostCharacters)
    {}

    void skipEmptyRows() { m_isSkipping = true; }

    /// Zero bytes are between rows. What does not fit is left out from the first row on that does not fit
    /// whole.
    void add(std::string_view rows)
    {
        if (m_isSkipping)
            rows.remove_prefix(std::min(rows.find_first_not_of('\0'), rows.size()));
        if (m_isFull || (m_isSkipping && rows.empty()))
            return;
        m_isSkipping = false;
        const std::size_t separator = m_texts.empty() ? 0 : 1;
        const std::size_t room = m_mostCharacters - m_size;
        m_isFull = rows.size() + separator > room;
        if (m_isFull) {
            const std::size_t end = room >= separator ? rows.rfind('\0', room - separator) : rows.npos;
            if (end == rows.npos)
                return;
            rows = rows.substr(0, end);
        }
        m_texts.push_back(rows);
        m_size += rows.size() + separator;
    }

    void addRows(const CFilteredTextBuffer &buffer, Rows rows, std::int64_t row, std::int64_t end)
    {
        while (row < end && !m_isFull) {
            const Stretch stretch = buffer.stretch(rows, row, end);
            add(stretch.text);
            row += stretch.rowCount;
        }
    }

    /// In one block of the right size; Unit is what the text is made of. Empty if there is no memory for it.
    template <typename Text, typename Unit>
    [[nodiscard]] Text joined() const
    try {
        Text text(static_cast<int>(m_size), Qt::Uninitialized);
        platform::preferLargePages(text.data(), m_size * sizeof(Unit));
        auto *out = reinterpret_cast<Unit *>(text.data());
        for (std::size_t i = 0; i < m_texts.size(); ++i) {
            if (i > 0)
                *out++ = '\n';
            out = std::transform(m_texts[i].begin(), m_texts[i].end(), out, [](char byte) {
                return static_cast<Unit>(byte == '\0' ? '\n' : static_cast<unsigned char>(byte));
            });
        }
        return text;
    } catch (const std::bad_alloc &) {
        return {};
    }

private:
    std::size_t m_mostCharacters;
    std::size_t m_size = 0;
    bool m_isSkipping = false;
    bool m_isFull = false;
    std::vector<std::string_view> m_texts;
};

/// Of a row that the selection begins or ends in.
std::string_view selectedPart(std::string_view line, std::int64_t row, const Selection &selection)
{
    PaintedLine painted;
    painted.set(line);
    const auto length = static_cast<std::int64_t>(line.size());
    const auto storedColumn = [&](TextPosition edge) {
        return std::clamp<std::int64_t>(painted.storedColumn(edge.column), 0, length);
    };
    const std::int64_t begin = row == selection.first().row ? storedColumn(selection.first()) : 0;
    const std::int64_t end = row == selection.last().row ? storedColumn(selection.last()) : length;
    return line.substr(static_cast<std::size_t>(begin),
                       static_cast<std::size_t>(std::max(end - begin, INT64_C(0))));
}

void addSelected(Pieces &pieces, const CFilteredTextBuffer &buffer, const Selection &selection)
{
    const std::int64_t first = std::max<std::int64_t>(selection.first().row, 0);
    const std::int64_t last =
        std::min<std::int64_t>(selection.last().row, std::int64_t(buffer.rowCount()) - 1);
    if (first <= last)
        pieces.add(selectedPart(buffer.line(first), first, selection));
    pieces.addRows(buffer, Rows::Shown, first + 1, last);
    if (first < last)
        pieces.add(selectedPart(buffer.line(last), last, selection));
}

} // namespace

QString copiedText(const CFilteredTextBuffer &buffer, const Selection &selection, std::size_t mostCharacters)
{
    Pieces pieces(mostCharacters);
    pieces.skipEmptyRows();
    if (selection.isActive())
        addSelected(pieces, buffer, selection);
    else
        pieces.addRows(buffer, Rows::Shown, 0, buffer.rowCount());
    return pieces.joined<QString, char16_t>();
}

QByteArray allLines(const CFilteredTextBuffer &buffer, std::size_t mostBytes)
{
    Pieces pieces(mostBytes);
    pieces.addRows(buffer, Rows::Stored, 0, buffer.lineCount());
    return pieces.joined<QByteArray, char>();
}

} // namespace Zorvan
