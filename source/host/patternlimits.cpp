#include "host/patternlimits.h"

#include "host/patternmachine.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Zorvan {

namespace {

using patternmachine::Part;

constexpr std::size_t greatestDepth = 50; // each takes some of the stack of the thread that sets or prints
constexpr qint64 greatestSize = 1000;
constexpr qint64 mostLookAheads = 13; // QRegExp takes no more in a row, and never frees the memory of those
constexpr qint64 mostLeaves = 20; // of alternatives of conditions, which are asked one by one
constexpr qint64 greatestCost = 250;
constexpr qint64 greatestCheapCost = 125;
constexpr qint64 greatestCostOfReading = 1000; // of the form without look-aheads: no line is searched with it

/// Reads an expression as QRegExp does, an invalid one, too: QRegExp reads it to the end.
class Scale
{
public:
    Scale(const QString &pattern, qint64 mostCost)
        : m_pattern(pattern)
        , m_mostCost(mostCost)
    {}

    [[nodiscard]] bool isTooHeavy()
    {
        while (m_at < m_pattern.size() && !exceeds())
            weighNext();
        while (!m_outer.empty() && !exceeds()) // invalid, but to find that out costs as much
            closeGroup();
        return exceeds() || exceeds(alternatives());
    }

private:
    /// What was read of the innermost open group: alternatives, and the sequence behind the last "|".
    struct Group
    {
        Part alternatives;
        Part sequence;
        bool hasAlternatives = false;
        bool looksAhead = false;
    };

    struct Range
    {
        qint64 least;
        qint64 most;
        bool isOpen;
    };

    [[nodiscard]] bool exceeds(const Part &part) const
    {
        return part.size > greatestSize || part.lookAheads > mostLookAheads || leavesOf(part) > mostLeaves
            || costOf(part, m_captures) > m_mostCost;
    }

    [[nodiscard]] bool exceeds() const
    {
        return m_outer.size() > greatestDepth || exceeds(m_group.sequence) || exceeds(m_group.alternatives);
    }

    [[nodiscard]] QChar next() const { return m_at < m_pattern.size() ? m_pattern[m_at] : QChar(); }

    [[nodiscard]] bool isAtDigit() const { return next() >= QLatin1Char('0') && next() <= QLatin1Char('9'); }

    bool skip(char character)
    {
        if (m_at >= m_pattern.size() || m_pattern[m_at] != QLatin1Char(character))
            return false;
        ++m_at;
        return true;
    }

    /// Whatever it is.
    void skipOne() { m_at = std::min(m_at + 1, static_cast<int>(m_pattern.size())); }

    void weighNext()
    {
        if (skip('('))
            openGroup();
        else if (!m_outer.empty() && skip(')'))
            closeGroup();
        else if (skip('|'))
            m_group = {alternatives(), {}, true, m_group.looksAhead};
        else
            add(atom());
    }

    /// Whatever character follows "(?" is passed over.
    void openGroup()
    {
        m_outer.push_back(std::exchange(m_group, Group()));
        if (!skip('?')) {
            ++m_captures;
            return;
        }
        m_group.looksAhead = next() == QLatin1Char('=') || next() == QLatin1Char('!');
        skipOne();
    }

    void closeGroup()
    {
        Part closed = groupOf(alternatives());
        if (m_group.looksAhead)
            closed = lookAheadOf(closed);
        m_group = m_outer.back();
        m_outer.pop_back();
        add(closed);
    }

    [[nodiscard]] Part alternatives() const
    {
        if (!m_group.hasAlternatives)
            return m_group.sequence;
        return groupOf(alternativeOf(m_group.alternatives, m_group.sequence));
    }

    Part atom()
    {
        if (skip('^') || skip('$'))
            return patternmachine::anchor();
        if (skip('['))
            return patternmachine::characterClass(lengthOfClass());
        if (skip('\\'))
            return escape();
        if (!skip('{')) {
            skipOne();
            return patternmachine::place();
        }
        range(); // repeats nothing, but is read to its end
        return patternmachine::nothing();
    }

    Part escape()
    {
        if (skip('b') || skip('B'))
            return patternmachine::anchor();
        if (isAtDigit() && next() != QLatin1Char('0'))
            return patternmachine::backReference(count());
        skipOne();
        return patternmachine::place();
    }

    /// Goes behind its end. A bracket that closes is one of its characters if it comes first, or behind "\".
    qint64 lengthOfClass()
    {
        constexpr int longestEscape = 9; // ranges of "\W"
        const int begin = m_at;
        qint64 escapes = 0;
        skip('^');
        do {
            escapes += skip('\\') ? 1 : 0;
            skipOne();
        } while (m_at < m_pattern.size() && next() != QLatin1Char(']'));
        skipOne();
        return m_at - begin + longestEscape * escapes;
    }

    /// An atom, with the repetition that follows it.
    void add(const Part &atom)
    {
        Part repeated = atom;
        if (skip('*'))
            repeated = optional(repeatedOften(atom));
        else if (skip('+'))
            repeated = repeatedOften(atom);
        else if (skip('?'))
            repeated = optional(atom);
        else if (skip('{'))
            repeated = repeatedAsCounted(atom);
        m_group.sequence = sequenceOf(m_group.sequence, repeated);
    }

    /// Written out: "x{2,4}" is "xx(x(x)?)?".
    Part repeatedAsCounted(const Part &atom)
    {
        const Range times = range();
        const qint64 copies = std::max<qint64>(times.least, 1); // that must be there
        Part tail;
        for (qint64 i = copies; i < times.most && tail.size <= greatestSize; ++i)
            tail = optional(sequenceOf(atom, tail));
        for (qint64 i = 1; i < copies && tail.size <= greatestSize; ++i)
            tail = sequenceOf(atom, tail);
        const Part first = times.isOpen ? repeatedOften(atom) : atom;
        return sequenceOf(times.least == 0 ? optional(first) : first, tail);
    }

    /// "{n}", "{n,}", "{,m}" or "{n,m}". What is there instead of the closing bracket is passed over like it.
    Range range()
    {
        const qint64 least = count();
        const bool isRange = skip(',');
        const bool isOpen = isRange && !isAtDigit();
        const qint64 most = isRange ? count() : least;
        skipOne();
        return {least, most, isOpen};
    }

    /// 0 if there is none. More digits than anybody needs are much, too: they are read with each copy.
    qint64 count()
    {
        constexpr int mostDigits = 9;
        constexpr qint64 much = 999'999'999;
        const int begin = m_at;
        while (isAtDigit())
            ++m_at;
        return m_at - begin > mostDigits ? much : m_pattern.mid(begin, m_at - begin).toLongLong();
    }

    const QString &m_pattern;
    qint64 m_mostCost;
    int m_at = 0;
    qint64 m_captures = 0; // copies have none
    Group m_group;
    std::vector<Group> m_outer;
};

/// The same syntax.
QString withGroupsForLookAheads(QString pattern)
{
    pattern.replace(QLatin1String("(?="), QLatin1String("(?:"));
    pattern.replace(QLatin1String("(?!"), QLatin1String("(?:"));
    return pattern;
}

bool costsAtMost(const QString &pattern, qint64 cost)
{
    const QString readFirst = withGroupsForLookAheads(pattern);
    return !Scale(pattern, cost).isTooHeavy() && !Scale(readFirst, greatestCostOfReading).isTooHeavy();
}

} // namespace

bool isAffordable(const QString &pattern)
{
    return costsAtMost(pattern, greatestCost);
}

bool isCheap(const QString &pattern)
{
    return costsAtMost(pattern, greatestCheapCost);
}

QRegExp expressionOf(const QString &pattern)
{
    const QRegExp sameSyntax(withGroupsForLookAheads(pattern));
    return sameSyntax.isValid() ? QRegExp(pattern) : sameSyntax;
}

} // namespace Zorvan
