#include "debugwindow/textpattern.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace Zorvan {

namespace {

/// Bytes that the processor compares at once; in a result, 255 stands for true and 0 for false.
using Bytes = unsigned char __attribute__((vector_size(16)));
using Word = std::uint64_t;
using Words = std::array<Word, 2>;
constexpr std::size_t step = sizeof(Bytes); // places that are looked at together
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first byte of a word is its lowest");

Bytes bytesAt(const char *place)
{
    Bytes bytes;
    std::memcpy(&bytes, place, sizeof bytes);
    return bytes;
}

Bytes repeated(char byte)
{
    return Bytes{} + static_cast<unsigned char>(byte);
}

Words whereBoth(const char *place, Bytes byte, const char *otherPlace, Bytes otherByte)
{
    const auto both = (bytesAt(place) == byte) & (bytesAt(otherPlace) == otherByte);
    Words words;
    std::memcpy(words.data(), &both, sizeof both);
    return words;
}

bool isStored(QChar character)
{
    return character.unicode() > 0 && character.unicode() < 256;
}

} // namespace

TextPattern::TextPattern(const QString &text)
    : m_text(text)
    , m_bytes(text.toLatin1().toStdString())
    , m_canOccur(std::all_of(text.begin(), text.end(), isStored))
{}

/// The first of eight places where the text is, if it is a candidate; 8: none.
std::size_t TextPattern::findAmong(std::uint64_t candidates, const char *places) const
{
    for (Word left = candidates; left != 0;) {
        const auto bit = static_cast<unsigned>(__builtin_ctzll(left)) & ~7U;
        if (std::memcmp(places + bit / 8, m_bytes.data(), m_bytes.size()) == 0)
            return bit / 8;
        left &= ~(Word(255) << bit);
    }
    return sizeof(Word);
}

/// Looks at many places at once: only where the first and the last byte are right is it worth comparing.
std::size_t TextPattern::findIn(std::string_view bytes) const
{
    const std::size_t length = m_bytes.size();
    if (!m_canOccur || length > bytes.size())
        return notFound;
    const std::size_t places = bytes.size() - length + 1;
    if (length < 2 || places < step)
        return bytes.find(m_bytes);
    const Bytes first = repeated(m_bytes.front());
    const Bytes last = repeated(m_bytes.back());
    for (std::size_t next = 0; next < places; next += step) {
        const std::size_t place = std::min(next, places - step); // the last stretch overlaps
        const char *const here = bytes.data() + place;
        const Words candidates = whereBoth(here, first, here + length - 1, last);
        if ((candidates[0] | candidates[1]) == 0)
            continue;
        std::size_t i = findAmong(candidates[0], here);
        if (i == sizeof(Word))
            i += findAmong(candidates[1], here + i);
        if (i < step)
            return place + i;
    }
    return notFound;
}

} // namespace Zorvan
