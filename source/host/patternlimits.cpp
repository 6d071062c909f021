#include "host/patternlimits.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Zorvan {

namespace {

constexpr std::size_t greatestDepth = 50;
constexpr qint64 mostLookAheads = 13; // QRegExp takes no more in a row, and never frees the memory of those
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
    struct Load
    {
        qint64 weight = 0;
        qint64 lookAheads = 0;
    };

    struct Repetition
    {
        qint64 copies;
        qint64 weightOfEach;
        qint64 more;
    };

    struct Group
    {
        Load before;
        bool looksAhead;
    };

    [[nodiscard]] bool exceeds() const
    {
        return m_open.weight > m_limit || m_open.lookAheads > mostLookAheads
            || m_outer.size() > greatestDepth;
    }

    void weighNext()
    {
        const QChar character = m_pattern[m_at++];
        if (character == QLatin1Char('(')) {
            const QStringView next = QStringView(m_pattern).mid(m_at, 2);
            const bool looksAhead = next == QLatin1String("?=") || next == QLatin1String("?!");
            m_outer.push_back({std::exchange(m_open, Load()), looksAhead});
        } else if (character == QLatin1Char(')') && !m_outer.empty()) {
            closeGroup();
        } else {
            add({weightOf(character), 0}, m_open);
        }
    }

    void closeGroup()
    {
        const Group group = m_outer.back();
        m_outer.pop_back();
        Load closed{std::max<qint64>(m_open.weight, 1), m_open.lookAheads};
        if (group.looksAhead) {
            closed.weight *= lookAhead;
            ++closed.lookAheads;
        }
        add(closed, group.before);
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
    void add(Load atom, Load before)
    {
        const Repetition repeated = repetition();
        m_open.weight = before.weight + atom.weight * repeated.copies * repeated.weightOfEach + repeated.more;
        m_open.lookAheads = before.lookAheads + atom.lookAheads * repeated.copies;
    }

    Repetition repetition()
    {
        const QChar next = m_at < m_pattern.size() ? m_pattern[m_at] : QChar();
        if (next == QLatin1Char('{'))
            return countedRepetition();
        if (next != QLatin1Char('*') && next != QLatin1Char('+') && next != QLatin1Char('?'))
            return {1, 1, 0};
        ++m_at;
        return {1, 1, next == QLatin1Char('?') ? optional : openEnded};
    }

    /// "{n}", "{n,}", "{,m}" or "{n,m}". What is there instead of the closing bracket is passed over like it,
    /// as QRegExp does: it reads the rest of an invalid expression, too.
    Repetition countedRepetition()
    {
        ++m_at;
        const qint64 least = std::max<qint64>(count(), 1);
        const bool isRange = m_at < m_pattern.size() && m_pattern[m_at] == QLatin1Char(',');
        m_at += isRange ? 1 : 0;
        const qint64 most = isRange ? count() : least;
        m_at += m_at < m_pattern.size() ? 1 : 0;
        if (!isRange)
            return {least, 1, 0};
        return most > 0 ? Repetition{std::max(least, most), ranged, 0} : Repetition{least, 1, openEnded};
    }

    /// 0 if there is none.
    qint64 count()
    {
        const int begin = m_at;
        while (m_at < m_pattern.size() && m_pattern[m_at] >= QLatin1Char('0')
               && m_pattern[m_at] <= QLatin1Char('9'))
            ++m_at;
        constexpr int mostDigits = 9;
        return m_pattern.mid(begin, std::min(m_at - begin, mostDigits)).toLongLong();
    }

    void skipBehind(QChar end)
    {
        const int found = m_pattern.indexOf(end, m_at);
        m_at = found < 0 ? m_pattern.size() : found + 1;
    }

    const QString &m_pattern;
    qint64 m_limit;
    int m_at = 0;
    Load m_open; ///< the innermost open group
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

QRegExp expressionOf(const QString &pattern)
{
    QString withoutLookAheads = pattern;
    withoutLookAheads.replace(QLatin1String("(?="), QLatin1String("(?:"));
    withoutLookAheads.replace(QLatin1String("(?!"), QLatin1String("(?:"));
    const QRegExp sameSyntax(withoutLookAheads);
    return sameSyntax.isValid() ? QRegExp(pattern) : sameSyntax;
}

} // namespace Zorvan
