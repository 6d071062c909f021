#include "host/patternlimits.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Zorvan {

namespace {

constexpr std::size_t greatestDepth = 50;
constexpr qint64 greatestSize = 1000;
constexpr qint64 mostLookAheads = 13; // QRegExp takes no more in a row, and never frees the memory of those
constexpr qint64 mostAnchors = 20; // of which one has to hold
constexpr qint64 greatestCost = 250;
constexpr qint64 greatestCheapCost = 125;

constexpr qint64 backReference = 60; // keeps ways apart that would become one
constexpr qint64 openEndInLookAhead = 20; // "*", "+", "{2,}": it goes through the line at each place
constexpr int classPiece = 16; // characters of "[...]" that are compared in the time of some others
constexpr qint64 uncountable = 1'000'000;

qint64 counted(qint64 value)
{
    return std::min(value, uncountable);
}

/// Conditions for going on ("^", "\\b", look-aheads) between two characters. QRegExp keeps alternatives as a
/// tree: what holds in front of them is noted with each of its leaves. 0: none; 1: all must hold; more: the
/// leaves of the tree.
using Anchors = qint64;

Anchors bothOf(Anchors a, Anchors b)
{
    return a <= 1 && b <= 1 ? std::max(a, b) : counted(std::max<Anchors>(a, 1) * std::max<Anchors>(b, 1));
}

Anchors oneOf(Anchors a, Anchors b)
{
    return a <= 1 && b <= 1 && a + b < 2 ? 0 : counted(std::max<Anchors>(a, 1) + std::max<Anchors>(b, 1));
}

/// The machine that QRegExp makes of a part of an expression: one place for each character of a line, which
/// knows where to go on, so that the number of ways is the number of ends of one part times the number of
/// beginnings of the next. It takes all ways at once, from each character of the line anew.
struct Part
{
    qint64 size = 0; ///< of all that is read, anchors and empty groups, too
    qint64 places = 0;
    qint64 beginnings = 0;
    qint64 ends = 0;
    qint64 ways = 0; ///< from a place to a place
    qint64 openEnds = 0;
    qint64 backReferences = 0;
    qint64 lookAheads = 0;
    qint64 lookAheadCost = 0; ///< of each way
    bool mayBeEmpty = true;
    Anchors anchorsIfEmpty = 0;
    Anchors anchorsBefore = 0; ///< the most of a beginning
    Anchors anchorsBehind = 0; ///< the most of an end
    Anchors anchorsWithin = 0; ///< the most of a way
};

/// \a a or \a b.
Part alternativeOf(const Part &a, const Part &b)
{
    Part sum;
    sum.anchorsIfEmpty = a.mayBeEmpty && b.mayBeEmpty ? oneOf(a.anchorsIfEmpty, b.anchorsIfEmpty)
                                                      : std::max(a.anchorsIfEmpty, b.anchorsIfEmpty);
    sum.anchorsBefore = std::max(a.anchorsBefore, b.anchorsBefore);
    sum.anchorsBehind = std::max(a.anchorsBehind, b.anchorsBehind);
    sum.anchorsWithin = std::max(a.anchorsWithin, b.anchorsWithin);
    sum.size = counted(a.size + b.size);
    sum.places = counted(a.places + b.places);
    sum.beginnings = counted(a.beginnings + b.beginnings);
    sum.ends = counted(a.ends + b.ends);
    sum.ways = counted(a.ways + b.ways);
    sum.openEnds = counted(a.openEnds + b.openEnds);
    sum.backReferences = counted(a.backReferences + b.backReferences);
    sum.lookAheads = counted(a.lookAheads + b.lookAheads);
    sum.lookAheadCost = counted(a.lookAheadCost + b.lookAheadCost);
    sum.mayBeEmpty = a.mayBeEmpty || b.mayBeEmpty;
    return sum;
}

/// \a b behind \a a.
Part sequenceOf(const Part &a, const Part &b)
{
    Part sequence = alternativeOf(a, b);
    sequence.ways = counted(sequence.ways + a.ends * b.beginnings);
    sequence.anchorsWithin = std::max(sequence.anchorsWithin, bothOf(a.anchorsBehind, b.anchorsBefore));
    sequence.anchorsBefore = std::max(a.anchorsBefore, bothOf(a.anchorsIfEmpty, b.anchorsBefore));
    sequence.anchorsBehind = std::max(b.anchorsBehind, bothOf(a.anchorsBehind, b.anchorsIfEmpty));
    sequence.anchorsIfEmpty = bothOf(a.anchorsIfEmpty, b.anchorsIfEmpty);
    sequence.mayBeEmpty = a.mayBeEmpty && b.mayBeEmpty;
    if (!a.mayBeEmpty) {
        sequence.beginnings = a.beginnings;
        sequence.anchorsBefore = a.anchorsBefore;
    }
    if (!b.mayBeEmpty) {
        sequence.ends = b.ends;
        sequence.anchorsBehind = b.anchorsBehind;
    }
    if (!sequence.mayBeEmpty)
        sequence.anchorsIfEmpty = 0;
    return sequence;
}

Part repeatedOften(Part part)
{
    part.ways = counted(part.ways + part.ends * part.beginnings);
    part.anchorsWithin = std::max(part.anchorsWithin, bothOf(part.anchorsBehind, part.anchorsBefore));
    ++part.openEnds;
    return part;
}

Part optional(Part part)
{
    part.mayBeEmpty = true;
    part.anchorsIfEmpty = 0;
    return part;
}

bool hasTooManyAnchors(const Part &part)
{
    return std::max({part.anchorsIfEmpty, part.anchorsBefore, part.anchorsBehind, part.anchorsWithin})
        > mostAnchors;
}

Part lookAheadOf(const Part &part)
{
    Part empty;
    empty.size = part.size;
    empty.anchorsIfEmpty = 1;
    empty.lookAheads = part.lookAheads + 1;
    const qint64 steps = part.places + part.ways + openEndInLookAhead * part.openEnds;
    empty.lookAheadCost = counted(counted(steps) * (1 + part.lookAheadCost));
    empty.backReferences = part.backReferences;
    return empty;
}

/// A row of places costs nothing, however long: only one of them is looked at for each character. What counts
/// are the ways that lead elsewhere.
qint64 costOf(const Part &part)
{
    const qint64 branches = std::max<qint64>(part.beginnings + part.ways - part.places, 0);
    return (1 + branches) * (1 + part.lookAheadCost) + backReference * part.backReferences;
}

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

    [[nodiscard]] bool exceeds(const Part &part) const
    {
        return part.size > greatestSize || part.lookAheads > mostLookAheads || hasTooManyAnchors(part)
            || costOf(part) > m_mostCost;
    }

    [[nodiscard]] bool exceeds() const
    {
        return m_outer.size() > greatestDepth || exceeds(m_group.sequence) || exceeds(m_group.alternatives);
    }

    [[nodiscard]] QChar next() const { return m_at < m_pattern.size() ? m_pattern[m_at] : QChar(); }

    bool skip(char character)
    {
        if (m_at >= m_pattern.size() || m_pattern[m_at] != QLatin1Char(character))
            return false;
        ++m_at;
        return true;
    }

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
        if (!skip('?') || m_at >= m_pattern.size())
            return;
        m_group.looksAhead = next() == QLatin1Char('=') || next() == QLatin1Char('!');
        ++m_at;
    }

    void closeGroup()
    {
        Part closed = alternatives();
        closed.size = std::max<qint64>(closed.size, 1);
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
        Part all = alternativeOf(m_group.alternatives, m_group.sequence);
        ++all.size; // the bar
        return all;
    }

    Part atom()
    {
        Part place{1, 1, 1, 1};
        place.mayBeEmpty = false;
        Part anchor;
        anchor.size = 1;
        anchor.anchorsIfEmpty = 1;
        if (skip('^') || skip('$'))
            return anchor;
        if (skip('[')) {
            place.size += lengthOfClass() / classPiece;
            return place;
        }
        if (!skip('\\')) {
            ++m_at;
            return place;
        }
        if (skip('b') || skip('B'))
            return anchor;
        if (next().isDigit() && next() != QLatin1Char('0')) {
            place.mayBeEmpty = true;
            place.backReferences = 1;
            static_cast<void>(count());
        } else if (m_at < m_pattern.size()) {
            ++m_at;
        }
        return place;
    }

    /// Goes behind its end. A bracket that closes is one of its characters if it comes first, or behind "\".
    int lengthOfClass()
    {
        const int begin = m_at;
        skip('^');
        do {
            skip('\\');
            ++m_at;
        } while (m_at < m_pattern.size() && next() != QLatin1Char(']'));
        m_at = std::min(m_at + 1, static_cast<int>(m_pattern.size()));
        return m_at - begin;
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

    /// "{n}", "{n,}", "{,m}" or "{n,m}", written out: "x{2,4}" is "xx(x(x)?)?". What is there instead of the
    /// closing bracket is passed over like it.
    Part repeatedAsCounted(const Part &atom)
    {
        const qint64 least = count();
        const bool isRange = skip(',');
        const bool isOpen = isRange && !next().isDigit();
        const qint64 most = isRange ? count() : least;
        m_at = std::min(m_at + 1, static_cast<int>(m_pattern.size()));
        const qint64 copies = std::max<qint64>(least, 1); // that must be there
        Part tail;
        for (qint64 i = copies; i < most && tail.size <= greatestSize; ++i)
            tail = optional(sequenceOf(atom, tail));
        for (qint64 i = 1; i < copies && tail.size <= greatestSize; ++i)
            tail = sequenceOf(atom, tail);
        const Part first = isOpen ? repeatedOften(atom) : atom;
        return sequenceOf(least == 0 ? optional(first) : first, tail);
    }

    /// 0 if there is none.
    qint64 count()
    {
        qint64 value = 0;
        for (; next() >= QLatin1Char('0') && next() <= QLatin1Char('9'); ++m_at)
            value = counted(10 * value + next().digitValue());
        return value;
    }

    const QString &m_pattern;
    qint64 m_mostCost;
    int m_at = 0;
    Group m_group;
    std::vector<Group> m_outer;
};

} // namespace

bool isAffordable(const QString &pattern)
{
    return !Scale(pattern, greatestCost).isTooHeavy();
}

bool isCheap(const QString &pattern)
{
    return !Scale(pattern, greatestCheapCost).isTooHeavy();
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
