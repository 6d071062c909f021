// Colour sequences in lines: programs of all kinds print through the library, and whoever prints may have got
// the text from elsewhere.

#include "debugwindow/paintedline.h"
#include "fuzzcheck.h"

using Zorvan::PaintedLine;

namespace {

/// What is to be painted, found in the plain way: the first sequence is taken out until there is none.
struct PlainLine
{
    explicit PlainLine(std::string_view stored)
        : text(stored)
    {
        for (;;) {
            const std::size_t begin = text.find("\x1B[");
            const std::size_t end = begin < text.size() ? text.find('m', begin) : std::string::npos;
            if (end == std::string::npos)
                return;
            useColors(text.substr(begin + 2, end - begin - 2));
            text.erase(begin, end + 1 - begin);
        }
    }
    void useColors(const std::string &parameters)
    {
        constexpr Qt::GlobalColor colors[] = {Qt::black, Qt::red,     Qt::darkGreen, Qt::yellow,
                                              Qt::blue,  Qt::magenta, Qt::cyan,      Qt::white};
        for (int i = 0; i < 8; ++i) {
            if (i != 3
                && parameters.find('3' + std::string(1, static_cast<char>('0' + i))) < parameters.size())
                foreground = colors[i];
            if (i != 3 && i != 0
                && parameters.find('4' + std::string(1, static_cast<char>('0' + i))) < parameters.size())
                background = colors[i];
        }
    }

    std::string text;
    Qt::GlobalColor foreground = Qt::black;
    std::optional<Qt::GlobalColor> background;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static PaintedLine line; // the same for all inputs, as the view has it
    const std::string_view stored = Input(data, size).rest;
    const PlainLine plain(stored);
    line.set(stored);
    require(line.text() == plain.text);
    require(line.foreground() == plain.foreground && line.background() == plain.background);
    require(line.storedColumn(0) == 0);
    std::int64_t last = -1;
    for (std::size_t column = 1; column <= plain.text.size(); ++column) {
        const std::int64_t place = line.storedColumn(static_cast<std::int64_t>(column));
        require(place > last && place <= static_cast<std::int64_t>(size));
        require(column == plain.text.size() || stored[static_cast<std::size_t>(place)] == plain.text[column]);
        last = place;
    }
    require(plain.text.empty() || last == static_cast<std::int64_t>(size));
    return 0;
}
