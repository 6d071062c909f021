#include "host/patternmachine.h"

#include <algorithm>

namespace Zorvan::patternmachine {

namespace {

constexpr qint64 uncountable = 1'000'000; // products of three do not overflow

// In ways that are tried instead. Measured.
constexpr qint64 backReferenceCost = 60; // keeps ways apart that would become one
constexpr qint64 throughTheLine = 20; // an open end within a look-ahead
constexpr qint64 leavesPerWay = 2;
constexpr qint64 capturesPerWay = 16; // each way has a copy of all
constexpr qint64 characterRangesPerWay = 64;

constexpr qint64 charactersPerPlace = 16; // of a class, which is read again with each copy of it
constexpr qint64 greatestBackReference = 14; // QRegExp takes no greater one, and takes 65,536 for 0

qint64 counted(qint64 value)
{
    return std::min(value, uncountable);
}

qint64 sum(qint64 a, qint64 b)
{
    return counted(a + b);
}

Conditions bothOf(const Conditions &a, const Conditions &b)
{
    const bool isTree = a.leaves > 1 || b.leaves > 1;
    return {isTree ? counted(std::max<qint64>(a.leaves, 1) * std::max<qint64>(b.leaves, 1))
                   : std::max(a.leaves, b.leaves),
            sum(a.lookAheads, b.lookAheads)};
}

/// Nothing at all takes the place of a single condition, but not that of a tree.
Conditions oneOf(const Conditions &a, const Conditions &b)
{
    const bool isTree = a.leaves > 1 || b.leaves > 1 || (a.leaves == 1 && b.leaves == 1);
    return {isTree ? sum(std::max<qint64>(a.leaves, 1), std::max<qint64>(b.leaves, 1)) : 0,
            sum(a.lookAheads, b.lookAheads)};
}

Conditions mostOf(const Conditions &a, const Conditions &b)
{
    return {std::max(a.leaves, b.leaves), std::max(a.lookAheads, b.lookAheads)};
}

/// From the ends of \a from to the beginnings of \a to, which may be the same part.
void addWays(Part &part, const Part &from, const Part &to)
{
    const Conditions between = bothOf(from.behind, to.before);
    const qint64 ways = counted(from.ends * to.beginnings);
    part.ways = sum(part.ways, ways);
    part.lookAheadsOfWays = sum(part.lookAheadsOfWays, ways * between.lookAheads);
    part.leavesWithin = std::max(part.leavesWithin, between.leaves);
}

/// A row of places has none, however long: only one of them is looked at for each character.
qint64 branchesOf(const Part &part)
{
    return std::max<qint64>(part.beginnings + part.ways - part.places, 0);
}

} // namespace

Part nothing()
{
    Part part;
    part.size = 1;
    return part;
}

Part anchor()
{
    Part part = nothing();
    part.ifEmpty.leaves = 1;
    return part;
}

Part place()
{
    Part part = nothing();
    part.places = part.beginnings = part.ends = 1;
    part.mayBeEmpty = false;
    return part;
}

Part characterClass(qint64 length)
{
    Part part = place();
    part.size = sum(1, length / charactersPerPlace);
    part.longestClass = length;
    return part;
}

Part backReference(qint64 number)
{
    Part part = place();
    part.mayBeEmpty = true;
    part.ifEmpty.leaves = 1;
    part.backReferences = number > greatestBackReference ? uncountable : 1;
    return part;
}

Part alternativeOf(const Part &a, const Part &b)
{
    Part part;
    part.size = sum(a.size, b.size);
    part.places = sum(a.places, b.places);
    part.beginnings = sum(a.beginnings, b.beginnings);
    part.ends = sum(a.ends, b.ends);
    part.ways = sum(a.ways, b.ways);
    part.mayBeEmpty = a.mayBeEmpty || b.mayBeEmpty;
    part.openEnds = sum(a.openEnds, b.openEnds);
    part.longestClass = std::max(a.longestClass, b.longestClass);
    part.backReferences = sum(a.backReferences, b.backReferences);
    part.lookAheads = sum(a.lookAheads, b.lookAheads);
    part.lookAheadCost = sum(a.lookAheadCost, b.lookAheadCost);
    part.lookAheadsOfWays = sum(a.lookAheadsOfWays, b.lookAheadsOfWays);
    part.ifEmpty = a.mayBeEmpty && b.mayBeEmpty ? oneOf(a.ifEmpty, b.ifEmpty) : mostOf(a.ifEmpty, b.ifEmpty);
    part.before = mostOf(a.before, b.before);
    part.behind = mostOf(a.behind, b.behind);
    part.leavesWithin = std::max(a.leavesWithin, b.leavesWithin);
    return part;
}

Part sequenceOf(const Part &a, const Part &b)
{
    Part part = alternativeOf(a, b);
    addWays(part, a, b);
    part.mayBeEmpty = a.mayBeEmpty && b.mayBeEmpty;
    part.ifEmpty = part.mayBeEmpty ? bothOf(a.ifEmpty, b.ifEmpty) : Conditions();
    part.beginnings = a.mayBeEmpty ? part.beginnings : a.beginnings;
    part.before = a.mayBeEmpty ? mostOf(a.before, bothOf(a.ifEmpty, b.before)) : a.before;
    part.ends = b.mayBeEmpty ? part.ends : b.ends;
    part.behind = b.mayBeEmpty ? mostOf(b.behind, bothOf(a.behind, b.ifEmpty)) : b.behind;
    return part;
}

Part repeatedOften(Part part)
{
    const Part once = part;
    addWays(part, once, once);
    part.openEnds = sum(part.openEnds, 1);
    return part;
}

Part optional(Part part)
{
    part.mayBeEmpty = true;
    part.ifEmpty = {};
    return part;
}

Part groupOf(Part part)
{
    part.size = sum(part.size, 1);
    return part;
}

Part lookAheadOf(const Part &part)
{
    const qint64 open = part.openEnds > 0 ? std::max(part.openEnds, branchesOf(part) / 8) : 0;
    const qint64 steps = counted(part.places + part.ways + throughTheLine * open);
    Part condition;
    condition.size = part.size;
    condition.longestClass = part.longestClass;
    condition.backReferences = part.backReferences;
    condition.lookAheads = sum(part.lookAheads, 1);
    condition.lookAheadCost = counted(steps * (1 + part.lookAheadCost));
    condition.ifEmpty = {1, condition.lookAheadCost};
    return condition;
}

qint64 leavesOf(const Part &part)
{
    return std::max({part.ifEmpty.leaves, part.before.leaves, part.behind.leaves, part.leavesWithin});
}

qint64 costOf(const Part &part, qint64 captures)
{
    const qint64 leaves = leavesOf(part);
    const qint64 ways = counted((1 + branchesOf(part)) * (1 + leaves / leavesPerWay));
    // Behind the last character each end asks; at the first one it is once for each character of the line.
    const qint64 asked = counted(part.lookAheadsOfWays + part.ends * part.behind.lookAheads
                                 + (part.beginnings * part.before.lookAheads + part.ifEmpty.lookAheads) / 2);
    const qint64 each = 1 + counted(captures) / capturesPerWay + part.longestClass / characterRangesPerWay;
    return counted(counted(ways + std::max<qint64>(leaves, 1) * asked) * each)
        + backReferenceCost * part.backReferences;
}

} // namespace Zorvan::patternmachine
