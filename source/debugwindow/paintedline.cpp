#include "debugwindow/paintedline.h"

#include <algorithm>
#include <vector>

namespace Zorvan {

namespace {

constexpr char escape = '\x1B';
constexpr std::string_view introducer = "\x1B[";
constexpr std::size_t mostMemoryKept = 1 << 20; // bytes; hardly any line is that long

using Color = std::optional<Qt::GlobalColor>;

/// Those that "30" to "37" name.
constexpr Color colors[] = {Qt::black, Qt::red,     Qt::darkGreen, std::nullopt,
                            Qt::blue,  Qt::magenta, Qt::cyan,      Qt::white};

/// What is left of a line, as a text: copied only if it is not in one piece.
struct TextLeft
{
    std::string_view line;
    std::string &memory;
    std::string_view text = {};

    [[nodiscard]] bool endsWithEscape() const { return !text.empty() && text.back() == escape; }
    void dropLast()
    {
        text.remove_suffix(1);
        if (!memory.empty())
            memory.pop_back();
    }
    void append(std::size_t from, std::size_t to)
    {
        const std::string_view piece = line.substr(from, to - from);
        if (text.empty() || piece.empty()) {
            text = text.empty() ? piece : text;
            return;
        }
        if (memory.empty()) {
            memory.reserve(line.size());
            memory = text;
        }
        text = memory.append(piece);
    }
};

/// What is left of a line, as the places of its pieces.
struct PiecesLeft
{
    struct Piece
    {
        std::size_t begin;
        std::size_t end;
    };
    std::string_view line;
    std::vector<Piece> pieces;

    [[nodiscard]] bool endsWithEscape() const
    {
        return !pieces.empty() && line[pieces.back().end - 1] == escape;
    }
    void dropLast()
    {
        if (--pieces.back().end == pieces.back().begin)
            pieces.pop_back();
    }
    void append(std::size_t from, std::size_t to)
    {
        if (from < to)
            pieces.push_back({from, to});
    }
};

/// Takes the sequences out of the line, each with its parameters to \a use; \a left gets the rest. The
/// characters before and behind a sequence may form another one.
template <typename Left, typename Use>
void cutSequences(std::string_view line, Left &left, Use use)
{
    std::size_t next = 0;
    for (;;) {
        const bool isAround = left.endsWithEscape() && next < line.size() && line[next] == introducer[1];
        const std::size_t begin = isAround ? next : line.find(introducer, next);
        if (begin == std::string_view::npos)
            break;
        const std::size_t parameters = begin + (isAround ? 1 : introducer.size());
        const std::size_t end = line.find('m', parameters);
        if (end == std::string_view::npos)
            break;
        if (isAround)
            left.dropLast();
        left.append(next, begin);
        use(line.substr(parameters, end - parameters));
        next = end + 1;
    }
    left.append(next, line.size());
}

} // namespace

void PaintedLine::set(std::string_view stored)
{
    m_stored = stored;
    m_text = stored;
    m_foreground = Qt::black;
    m_background.reset();
    m_memory.clear();
    if (m_memory.capacity() > mostMemoryKept)
        m_memory.shrink_to_fit();
    if (stored.find(introducer) == std::string_view::npos)
        return;
    TextLeft left{stored, m_memory, {}};
    cutSequences(stored, left, [this](std::string_view parameters) { applyColors(parameters); });
    m_text = left.text;
}

/// The numbers count wherever they stand, the "41" of "141" like any other; of several the highest does.
void PaintedLine::applyColors(std::string_view parameters)
{
    char foreground = 0;
    char background = 0;
    for (std::size_t i = 0; i + 1 < parameters.size(); ++i) {
        const char digit = parameters[i + 1];
        if (digit < '0' || digit > '7' || !colors[digit - '0'])
            continue;
        if (parameters[i] == '3')
            foreground = std::max(foreground, digit);
        else if (parameters[i] == '4' && digit != '0')
            background = std::max(background, digit);
    }
    if (foreground != 0)
        m_foreground = *colors[foreground - '0'];
    if (background != 0)
        m_background = colors[background - '0'];
}

std::int64_t PaintedLine::storedColumn(std::int64_t paintedColumn) const
{
    if (paintedColumn <= 0)
        return 0;
    PiecesLeft left{m_stored, {}};
    cutSequences(m_stored, left, [](std::string_view) {});
    auto column = static_cast<std::uint64_t>(paintedColumn);
    for (const PiecesLeft::Piece &piece : left.pieces) {
        if (column < piece.end - piece.begin)
            return static_cast<std::int64_t>(piece.begin + column);
        column -= piece.end - piece.begin;
    }
    return static_cast<std::int64_t>(m_stored.size());
}

} // namespace Zorvan
