#include "debugwindow/textpattern.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace Zorvan {

namespace {

/// Bytes that the processor compares at once; in a result, 255 stands for true and 0 for false.
using Bytes = unsigned char __attribute__((vector_size(16)));
using Word = std::uint64_t;
using Words = std::array<Word, 2>;
constexpr std::size_t step = sizeof(Bytes); // places that are looked at together
constexpr std::size_t stride = 4 * step;
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

Words wordsOf(Bytes bytes)
{
    Words words;
    std::memcpy(words.data(), &bytes, sizeof bytes);
    return words;
}

bool isAny(Bytes bytes)
{
    const Words words = wordsOf(bytes);
    return (words[0] | words[1]) != 0;
}

bool isStored(QChar character)
{
    return character.unicode() > 0 && character.unicode() < 256;
}

/// How much of a log a character makes up, roughly; 0: hardly anything.
std::size_t frequency(char byte)
{
    constexpr std::string_view rarestFirst =
        "zqjZYVWGHKUjkvbFBPMLNDROxIACTSE/()[]=wyg_h\"'-fpucml98d7s6n5a4i3o2r:,t1.0e ";
    const std::size_t place = rarestFirst.find(byte);
    return place == std::string_view::npos ? 0 : place + 1;
}

/// Looks at many places at once: only where two bytes of the pattern are right is it worth comparing all.
class Search
{
public:
    Search(std::string_view pattern, std::size_t one, std::size_t other)
        : m_pattern(pattern)
        , m_one(one)
        , m_other(other)
        , m_oneByte(repeated(pattern[one]))
        , m_otherByte(repeated(pattern[other]))
    {}

    /// Of the places from here on.
    [[nodiscard]] Bytes candidates(const char *here) const
    {
        return (bytesAt(here + m_one) == m_oneByte) & (bytesAt(here + m_other) == m_otherByte);
    }

    /// The first of the places from here on where the pattern is; step: none.
    [[nodiscard]] std::size_t findAmong(Bytes candidates, const char *here) const
    {
        const Words words = wordsOf(candidates);
        for (std::size_t word = 0; word < words.size(); ++word) {
            for (Word left = words[word]; left != 0;) {
                const auto bit = static_cast<unsigned>(__builtin_ctzll(left)) & ~7U;
                const std::size_t place = word * sizeof(Word) + bit / 8;
                if (std::memcmp(here + place, m_pattern.data(), m_pattern.size()) == 0)
                    return place;
                left &= ~(Word(255) << bit);
            }
        }
        return step;
    }

private:
    std::string_view m_pattern;
    std::size_t m_one;
    std::size_t m_other;
    Bytes m_oneByte;
    Bytes m_otherByte;
};

} // namespace

TextPattern::TextPattern(const QString &text)
    : m_text(text)
    , m_bytes(text.toLatin1().toStdString())
    , m_canOccur(std::all_of(text.begin(), text.end(), isStored))
{
    const auto isRarer = [this](std::size_t a, std::size_t b) {
        return frequency(m_bytes[a]) < frequency(m_bytes[b]);
    };
    for (std::size_t i = 1; i < m_bytes.size(); ++i) {
        if (isRarer(i, m_rarest))
            m_secondRarest = std::exchange(m_rarest, i);
        else if (m_secondRarest == m_rarest || isRarer(i, m_secondRarest))
            m_secondRarest = i;
    }
}

std::size_t TextPattern::findIn(std::string_view bytes) const
{
    const std::size_t length = m_bytes.size();
    if (!m_canOccur || length > bytes.size())
        return notFound;
    const std::size_t places = bytes.size() - length + 1;
    if (length < 2 || places < step)
        return bytes.find(m_bytes);
    const Search search(m_bytes, m_rarest, m_secondRarest);
    std::size_t next = 0;
    while (next < places) {
        const char *here = bytes.data() + next;
        if (places - next >= stride
            && !isAny(search.candidates(here) | search.candidates(here + step)
                      | search.candidates(here + 2 * step) | search.candidates(here + 3 * step))) {
            next += stride;
            continue;
        }
        const std::size_t place = std::min(next, places - step); // the last ones overlap
        here = bytes.data() + place;
        const std::size_t found = search.findAmong(search.candidates(here), here);
        if (found < step)
            return place + found;
        next += step;
    }
    return notFound;
}

std::size_t RepeatedSearch::findIn(std::string_view text)
{
    const char *const begin = text.data();
    const bool isSameEnd =
        !m_searched.empty() && begin + text.size() == m_searched.data() + m_searched.size();
    if (isSameEnd && begin >= m_searched.data()) {
        const auto skipped = static_cast<std::size_t>(begin - m_searched.data());
        if (m_found == TextPattern::notFound || skipped <= m_found)
            return m_found == TextPattern::notFound ? m_found : m_found - skipped;
    }
    m_found = isSameEnd && begin < m_searched.data() ? findInLonger(text) : m_pattern->findIn(text);
    m_searched = text;
    return m_found;
}

/// What was searched is the end of the text.
std::size_t RepeatedSearch::findInLonger(std::string_view text) const
{
    const auto before = static_cast<std::size_t>(m_searched.data() - text.data());
    const auto overlap = static_cast<std::size_t>(m_pattern->text().size());
    const std::size_t found = m_pattern->findIn(text.substr(0, before + overlap));
    if (found != TextPattern::notFound || m_found == TextPattern::notFound)
        return found;
    return before + m_found;
}

} // namespace Zorvan
