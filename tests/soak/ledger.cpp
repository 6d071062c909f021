#include "ledger.h"

#include "supervisor.h"

#include <algorithm>
#include <cstdio>

namespace Zorvan::soak {

namespace {

constexpr std::int64_t longestLine = 2000; // bytes, with its header

void fault(const std::string &name, LineId id)
{
    count('!' + name);
    if (faults() <= 10)
        std::fprintf(stderr, "FAILED: %s: thread %zu, line %zu\n", name.c_str(), id.thread, id.number);
}

} // namespace

LineId Ledger::produce(std::size_t thread, Tail tail)
{
    const std::lock_guard guard(m_lock);
    auto &lines = m_lines[thread];
    const LineId id{thread, lines.size(), tail};
    lines.emplace_back(id, Line());
    return id;
}

void Ledger::printed(LineId id, Circumstance::State file, Circumstance::State library)
{
    const std::lock_guard guard(m_lock);
    find(id)->file = file;
    find(id)->library = library;
}

void Ledger::pass(std::string_view text, bool isTap)
{
    Stream stream;
    stream.take(text);
    const std::lock_guard guard(m_lock);
    m_bytes += static_cast<std::int64_t>(text.size()) + 2; // its line end
    Line *const line = stream.lines.empty() ? nullptr : find(stream.lines.front());
    if (stream.torn + stream.glued > 0)
        fault("torn at the tap or receiver", {});
    if (line == nullptr)
        return; // of the library itself
    ++line->passed;
    line->order = m_order++;
    if (!isTap)
        return;
    line->tapOrder = static_cast<std::int64_t>(m_tapped.size());
    m_tapped.push_back(stream.lines.front());
}

std::int64_t Ledger::tappedLines()
{
    const std::lock_guard guard(m_lock);
    return static_cast<std::int64_t>(m_tapped.size());
}

std::int64_t Ledger::tapOrderOf(LineId id)
{
    const std::lock_guard guard(m_lock);
    const Line *const line = find(id);
    return line == nullptr ? -1 : line->tapOrder;
}

/// Null if it was never printed.
Ledger::Line *Ledger::find(LineId id)
{
    const bool exists = id.thread < m_lines.size() && id.number < m_lines[id.thread].size();
    return exists ? &m_lines[id.thread][id.number].second : nullptr;
}

/// Counts what a sink has got, each line behind those that were printed before it.
void Ledger::take(const Stream &stream, const std::string &sink, int Line::*times, std::int64_t Line::*order)
{
    count("at the " + sink, stream.lines.size());
    for (std::size_t i = 0; i < stream.glued; ++i)
        fault("behind a piece of another line at the " + sink, {});
    std::int64_t last = -1;
    for (const LineId id : stream.lines) {
        Line *const line = find(id);
        if (line == nullptr || line->*order < 0) {
            fault("never printed, but at the " + sink, id);
            continue;
        }
        ++(line->*times);
        if (line->*order <= last)
            fault((line->*order == last ? "doubled at the " : "reordered at the ") + sink, id);
        last = std::max(last, line->*order);
    }
}

void Ledger::takeSinks(const Sinks &sinks, const Rules &rules)
{
    const auto read = [](const std::string &text, const std::string &sink, bool mayBeTorn) {
        Stream stream;
        stream.takeText(text);
        for (std::size_t i = 0; i < stream.torn && !mayBeTorn; ++i)
            fault("torn at the " + sink, {});
        return stream;
    };
    const Stream log = read(sinks.systemLog, "system log", false);
    count("at the system log", log.lines.size());
    for (const LineId id : log.lines) {
        if (Line *const line = find(id))
            ++line->logged;
    }
    const Stream file = read(sinks.file, "file", rules.diskGetsFull);
    count("pieces of lines where the disk was full", file.torn);
    take(file, "file", &Line::inFile, &Line::order);
    m_firstInFile =
        file.lines.empty() || find(file.lines.front()) == nullptr ? -1 : find(file.lines.front())->order;
    take(read(sinks.standardOutput, "standard output", false), "standard output", &Line::onScreen,
         &Line::tapOrder);
    for (const std::string &window : sinks.windows)
        take(read(window, "window", false), "window", &Line::onScreen, &Line::tapOrder);
    for (const Connection &connection : sinks.connections) {
        take(connection.stream, "clients", &Line::atClients, &Line::tapOrder);
        if (connection.stream.torn > 0)
            fault("torn at the clients", {});
    }
}

/// Each line once at the tap, the receiver or in the system log; none that is refused.
void Ledger::checkPrinting(LineId id, const Line &line, const Rules &rules) const
{
    const bool isFiltered = id.tail == Tail::Filtered && rules.isFiltering;
    const bool isRefused = id.tail == Tail::AboveLevel || isFiltered;
    const int times = line.passed + line.logged;
    count("produced");
    if (line.passed > 0)
        count(line.tapOrder >= 0 ? "at the line tap" : "at the receiver");
    if (isRefused && times == 0)
        count(isFiltered ? "accounted: refused by the filter" : "accounted: refused by level");
    else if (times == 0)
        fault("lost", id);
    else if (times > 1)
        fault("doubled at the tap, receiver or log", id);
    const bool isUp = line.library == Circumstance::Good;
    const bool isDown = line.library == Circumstance::Bad;
    if ((isRefused && line.passed > 0) || (isUp && line.logged > 0) || (isDown && line.logged != 1))
        fault("at the wrong sink", id);
    if (line.order >= 0 && id.number > 0 && m_lines[id.thread][id.number - 1].second.order > line.order)
        fault("reordered within its thread", id);
}

/// What passed is in the file, unless that was not possible.
void Ledger::checkFile(LineId id, const Line &line, const Rules &rules) const
{
    if (line.inFile > 0 && line.file == Circumstance::Bad && !rules.diskGetsFull)
        fault("in a file without a folder", id);
    if (line.passed == 0 || line.inFile > 0)
        return;
    if (rules.fileMaximum > 0 && line.order < m_firstInFile) {
        count("accounted: file began anew at its maximum");
    } else if (line.file == Circumstance::Good) {
        fault("lost at the file", id);
    } else {
        const bool isBad = line.file == Circumstance::Bad;
        count(isBad ? "accounted: no folder or a full disk" : "accounted: while folder or disk changed");
    }
}

/// Each time the file began anew it had its maximum and at most one more line.
void Ledger::checkMaximum(std::int64_t size, std::int64_t maximum)
{
    const std::int64_t gone = m_bytes - size;
    const std::int64_t beginnings = (gone + maximum + longestLine - 1) / (maximum + longestLine);
    count("output file began anew", static_cast<std::uint64_t>(beginnings));
    if (size > maximum + longestLine)
        fault("larger than its maximum: the file", {});
    if (gone < beginnings * maximum)
        fault("began anew at another size than its maximum: the file", {});
}

/// What went through the tap is in the window, on the standard output, or at the clients of that moment.
void Ledger::checkConnections(const Sinks &sinks)
{
    std::vector<bool> wasOnItsWay(m_tapped.size()); // to a client that did not take it
    for (const Connection &connection : sinks.connections) {
        std::int64_t next = -1;
        for (const LineId id : connection.stream.lines) {
            const std::int64_t order = tapOrderOf(id);
            if (next >= 0 && order != next)
                fault("lost in the middle of a connection", id);
            next = order + 1;
        }
        const auto end = std::min(connection.lastPossible, static_cast<std::int64_t>(m_tapped.size()));
        for (std::int64_t i = next < 0 ? connection.firstPossible : next; i < end && connection.mayLackItsEnd;
             ++i)
            wasOnItsWay[static_cast<std::size_t>(i)] = true;
    }
    for (std::size_t i = 0; i < m_tapped.size(); ++i) {
        const LineId id = m_tapped[i];
        const Line &line = *find(id);
        if (line.onScreen > 1 || (line.onScreen > 0 && line.atClients > 0))
            fault("doubled between window, standard output and clients", id);
        if (line.onScreen + line.atClients > 0)
            continue;
        if (wasOnItsWay[i])
            count("accounted: on its way to a client that left");
        else
            fault("lost between window, standard output and clients", id);
    }
}

void Ledger::check(const Sinks &sinks, const Rules &rules)
{
    takeSinks(sinks, rules);
    for (const auto &lines : m_lines) {
        for (const auto &[id, line] : lines) {
            checkPrinting(id, line, rules);
            checkFile(id, line, rules);
        }
    }
    if (rules.fileMaximum > 0)
        checkMaximum(static_cast<std::int64_t>(sinks.file.size()) - 1, rules.fileMaximum);
    checkConnections(sinks);
}

} // namespace Zorvan::soak
