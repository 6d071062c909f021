#pragma once

#include <QtGlobal>

/// How large and how slow the machine is that QRegExp makes of an expression. The machine has one place for
/// each character of a line, which knows where to go on, so that the number of ways is the number of ends of
/// one part times the number of beginnings of the next. It takes all ways at once, from each character of the
/// line anew.
namespace Zorvan::patternmachine {

/// What has to hold between two characters: "^", "\b", look-aheads. QRegExp keeps alternatives as a tree:
/// what holds beside them is noted with each of its leaves.
struct Conditions
{
    qint64 leaves = 0; ///< 0: nothing; 1: all of it; more: one of the leaves of the tree
    qint64 lookAheads = 0; ///< what they cost
};

struct Part
{
    qint64 size = 0; ///< of all that is read, what makes no place, too
    qint64 places = 0;
    qint64 beginnings = 0;
    qint64 ends = 0;
    qint64 ways = 0; ///< from a place to a place
    bool mayBeEmpty = true;
    qint64 openEnds = 0; ///< "*", "+", "{2,}"
    qint64 longestClass = 0; ///< "[...]"
    qint64 backReferences = 0;
    qint64 lookAheads = 0; ///< their number
    qint64 lookAheadCost = 0; ///< of all, once each
    qint64 lookAheadsOfWays = 0; ///< the cost of those of all ways
    Conditions ifEmpty;
    Conditions before; ///< the most of a beginning
    Conditions behind; ///< the most of an end
    qint64 leavesWithin = 0; ///< the most of a way
};

[[nodiscard]] Part nothing(); ///< that is read all the same
[[nodiscard]] Part anchor();
[[nodiscard]] Part place();
[[nodiscard]] Part characterClass(qint64 length);
[[nodiscard]] Part backReference(qint64 number);

/// \a a or \a b
[[nodiscard]] Part alternativeOf(const Part &a, const Part &b);
/// \a b behind \a a
[[nodiscard]] Part sequenceOf(const Part &a, const Part &b);
[[nodiscard]] Part repeatedOften(Part part);
[[nodiscard]] Part optional(Part part);
[[nodiscard]] Part groupOf(Part part);
[[nodiscard]] Part lookAheadOf(const Part &part);

/// The leaves of its largest conditions.
[[nodiscard]] qint64 leavesOf(const Part &part);
/// About proportional to the time for a line. What is greater than any number of interest is some great
/// number.
[[nodiscard]] qint64 costOf(const Part &part, qint64 captures);

} // namespace Zorvan::patternmachine
