#include "debugwindow/rowcopy.h"

#include "debugwindow/paintedline.h"
#include "platform/memory.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace Zorvan {

namespace {

using Rows = CFilteredTextBuffer::Rows;

constexpr std::size_t largePageBytes = 2 << 20; // a smaller copy would not fill a single one

/// Texts of one row or several, which stay where they are until all is known about the copy: then it takes
/// one block of exactly the right size.
class Pieces
{
public:
    explicit Pieces(std::size_t mostCharacters)
        : m_mostCharacters(mostCharacters)
    {}

    /// Zero bytes are between rows. Empty rows before the first text are left out. What does not fit is left
    /// out from the first row on that does not fit whole.
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
            const std::size_t end =
                room >= separator ? rows.rfind('\0', room - separator) : std::string_view::npos;
            if (end == std::string_view::npos)
                return;
            rows = rows.substr(0, end);
        }
        m_texts.push_back(rows);
        m_size += rows.size() + separator;
    }

    void addRows(const CFilteredTextBuffer &buffer, std::int64_t row, std::int64_t end)
    {
        while (row < end && !m_isFull) {
            const Stretch stretch = buffer.stretchToCopy(Rows::Shown, row, end);
            add(stretch.text);
            row += stretch.rowCount;
        }
    }

    /// In one block of the right size.
    [[nodiscard]] QString joined() const
    {
        using Unit = char16_t;
        QString text(static_cast<int>(m_size), Qt::Uninitialized);
        if (m_size * sizeof(Unit) >= largePageBytes)
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
    }

private:
    std::size_t m_mostCharacters;
    std::size_t m_size = 0;
    bool m_isSkipping = true;
    bool m_isFull = false;
    std::vector<std::string_view> m_texts;
};

/// Gathers whole lines until they make a piece.
class LinePieces
{
public:
    using Take = std::function<bool(QByteArray piece)>;

    LinePieces(std::size_t mostBytes, const Take &take)
        : m_mostBytes(std::min(mostBytes, mostBytesOfArray))
        , m_take(take)
    {}

    /// Zero bytes are between lines. False: no more are wanted.
    bool add(std::string_view lines)
    {
        while (sizeBefore() + lines.size() > m_mostBytes) {
            const std::size_t room = m_mostBytes - std::min(m_mostBytes, sizeBefore());
            std::size_t end = sizeBefore() <= m_mostBytes ? lines.rfind('\0', room) : std::string_view::npos;
            if (end == std::string_view::npos && m_hasLine) {
                if (!finish())
                    return false;
                continue;
            }
            if (end == std::string_view::npos)
                end = lines.find('\0'); // the line is a piece of its own
            append(lines.substr(0, end));
            if (!finish())
                return false;
            if (end == std::string_view::npos)
                return true;
            lines.remove_prefix(end + 1);
        }
        append(lines);
        return true;
    }

    /// Hands over what is left.
    bool finish()
    {
        const bool hadLine = std::exchange(m_hasLine, false);
        return !hadLine || m_take(std::exchange(m_piece, QByteArray()));
    }

private:
    /// With the separator.
    [[nodiscard]] std::size_t sizeBefore() const
    {
        return static_cast<std::size_t>(m_piece.size()) + (m_hasLine ? 1 : 0);
    }

    void append(std::string_view lines)
    {
        if (m_hasLine)
            m_piece += '\n';
        m_hasLine = true;
        const int begin = m_piece.size();
        m_piece.append(lines.data(), static_cast<int>(std::min(lines.size(), mostBytesOfArray)));
        std::replace(m_piece.begin() + begin, m_piece.end(), '\0', '\n');
    }

    std::size_t m_mostBytes;
    const Take &m_take;
    QByteArray m_piece;
    bool m_hasLine = false; // it may be empty
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
    pieces.addRows(buffer, first + 1, last);
    if (first < last)
        pieces.add(selectedPart(buffer.line(last), last, selection));
}

} // namespace

QString copiedText(const CFilteredTextBuffer &buffer, const Selection &selection, std::size_t mostCharacters)
try {
    Pieces pieces(mostCharacters);
    if (selection.isActive())
        addSelected(pieces, buffer, selection);
    else
        pieces.addRows(buffer, 0, buffer.rowCount());
    return pieces.joined();
} catch (const std::bad_alloc &) {
    return {};
}

void forEachPiece(const CFilteredTextBuffer &buffer, std::size_t mostBytes,
                  const std::function<bool(QByteArray piece)> &take)
try {
    LinePieces pieces(mostBytes, take);
    const std::int64_t end = buffer.lineCount();
    for (std::int64_t row = 0; row < end;) {
        const Stretch stretch = buffer.stretchToCopy(Rows::Stored, row, end);
        if (!pieces.add(stretch.text))
            return;
        row += stretch.rowCount;
    }
    pieces.finish();
} catch (const std::bad_alloc &) { // the caller gets what there was memory for
}

} // namespace Zorvan
