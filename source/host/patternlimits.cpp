#include "host/patternlimits.h"

#include <algorithm>
#include <vector>

namespace Zorvan {

namespace {

constexpr std::size_t greatestDepth = 50;
constexpr int mostLookAheads = 13; // QRegExp takes no more in a row, and never frees the memory of those
constexpr qint64 greatestWeight = 1000;
constexpr qint64 greatestCheapWeight = 250;
// What may match in several ways weighs more: each of them is tried, from each character of the line.
constexpr qint64 openEnded = 60; // "*", "+", "{2,}", back references
constexpr qint64 optional = 20; // "?"
constexpr qint64 ranged = 10; // "{2,5}", for each of the five
constexpr qint64 lookAhead = 8;

/// Weighs an expression by the characters that it consists of when all counted repetitions are written out.
/// It need not be exact. A repetition without a count adds: it makes a loop of the machine that matches, and
/// what is in it is tried no oftener.
class Scale
{
public:
    Scale(const QString &pattern, qint64 limit)
        : m_pattern(pattern)
        , m_limit(limit)
    {}

    [[nodiscard]] bool isTooHeavy()
    {
        while (m_at < m_pattern.size() && !exceeds())
            weighNext();
        while (!m_outer.empty() && !exceeds()) // invalid, but to find that out costs as much
            closeGroup();
        return exceeds();
    }

private:
    struct Repetition
    {
        qint64 times;
        qint64 more;
    };

    struct Group
    {
        qint64 weightBefore;
        qint64 factor;
    };

    [[nodiscard]] bool exceeds() const
    {
        return m_weight > m_limit || m_outer.size() > greatestDepth || m_lookAheads > mostLookAheads;
    }

    void weighNext()
    {
        const QChar character = m_pattern[m_at++];
        if (character == QLatin1Char('(')) {
            const QStringView next = QStringView(m_pattern).mid(m_at, 2);
            const bool looksAhead = next == QLatin1String("?=") || next == QLatin1String("?!");
            m_outer.push_back({m_weight, looksAhead ? lookAhead : 1});
            m_weight = 0;
            m_lookAheads += looksAhead ? 1 : 0;
        } else if (character == QLatin1Char(')') && !m_outer.empty()) {
            closeGroup();
        } else {
            add(weightOf(character), m_weight);
        }
    }

    void closeGroup()
    {
        add(std::max<qint64>(m_weight, 1) * m_outer.back().factor, m_outer.back().weightBefore);
        m_outer.pop_back();
    }

    /// Goes behind an atom that begins with \a character.
    qint64 weightOf(QChar character)
    {
        if (character == QLatin1Char('['))
            skipBehind(QLatin1Char(']'));
        if (character != QLatin1Char('\\') || m_at >= m_pattern.size())
            return 1;
        return m_pattern[m_at++].isDigit() ? openEnded : 1;
    }

    /// An atom, with the repetition that follows it.
    void add(qint64 atom, qint64 before)
    {
        const Repetition repeated = repetition();
        m_weight = before + atom * repeated.times + repeated.more;
    }

    Repetition repetition()
    {
        const QChar next = m_at < m_pattern.size() ? m_pattern[m_at] : QChar();
        if (next == QLatin1Char('{'))
            return countedRepetition();
        if (next != QLatin1Char('*') && next != QLatin1Char('+') && next != QLatin1Char('?'))
            return {1, 0};
        ++m_at;
        return {1, next == QLatin1Char('?') ? optional : openEnded};
    }

    /// "{n}", "{n,}", "{,m}" or "{n,m}"
    Repetition countedRepetition()
    {
        const int begin = m_at + 1;
        skipBehind(QLatin1Char('}'));
        const QString counts = m_pattern.mid(begin, m_at - begin - 1);
        const qint64 least = std::max(counts.section(QLatin1Char(','), 0, 0).toInt(), 1);
        if (!counts.contains(QLatin1Char(',')))
            return {least, 0};
        const qint64 most = counts.section(QLatin1Char(','), 1).toInt();
        return most > 0 ? Repetition{ranged * std::max(least, most), 0} : Repetition{least, openEnded};
    }

    void skipBehind(QChar end)
    {
        const int found = m_pattern.indexOf(end, m_at);
        m_at = found < 0 ? m_pattern.size() : found + 1;
    }

    const QString &m_pattern;
    qint64 m_limit;
    int m_at = 0;
    int m_lookAheads = 0;
    qint64 m_weight = 0; ///< of the open group
    std::vector<Group> m_outer; ///< around it
};

} // namespace

bool isAffordable(const QString &pattern)
{
    return !Scale(pattern, greatestWeight).isTooHeavy();
}

bool isCheap(const QString &pattern)
{
    return !Scale(pattern, greatestCheapWeight).isTooHeavy();
}

} // namespace Zorvan
