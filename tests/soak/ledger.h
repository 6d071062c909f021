#pragma once

#include "line.h"

#include <atomic>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Zorvan::soak {

/// A circumstance that a fault changes while others print.
class Circumstance
{
public:
    enum State : std::uint32_t { Good, Bad, Changing };
    /// By one thread only.
    void set(State state) { m_value = (m_value / 4 + 1) * 4 + state; }
    /// A function that tells what held from now until its call.
    [[nodiscard]] auto watch() const
    {
        return [this, before = m_value.load()] {
            return m_value == before ? static_cast<State>(before % 4) : Changing;
        };
    }

private:
    std::atomic<std::uint32_t> m_value{Good}; // times changed * 4 + state
};

/// One connection of a remote client.
struct Connection
{
    Stream stream;
    bool mayLackItsEnd = false; ///< the client left, or the server did not wait for it any longer
    std::int64_t firstPossible = 0; ///< lines printed when it was made
    std::int64_t lastPossible = 0; ///< lines printed when the server had certainly noticed its end
};

/// What the sinks have got in a round.
struct Sinks
{
    std::string file;
    std::string standardOutput;
    std::string systemLog;
    std::vector<std::string> windows; ///< what it showed before it was emptied or went
    std::vector<Connection> connections;
};

/// By which lines may be missing.
struct Rules
{
    bool isFiltering = false; ///< Tail::Filtered is refused
    bool diskGetsFull = false; ///< lines are torn there
    std::int64_t fileMaximum = -1; ///< bytes, at which the file begins anew; -1: none
};

/// Accounts for every line of a round.
///
/// Threads: the lines are noted by any thread; check() runs when nobody prints any more.
class Ledger
{
public:
    explicit Ledger(std::size_t producers)
        : m_lines(producers)
    {}

    /// A line that is about to be printed, and what held while it was.
    LineId produce(std::size_t thread, Tail tail);
    void printed(LineId id, Circumstance::State file, Circumstance::State library);
    /// A line that goes through the line tap or to the receiver of its module.
    void pass(std::string_view text, bool isTap);
    /// How many lines went through the tap so far, and as which of them a line did; -1 if it did not.
    [[nodiscard]] std::int64_t tappedLines();
    [[nodiscard]] std::int64_t tapOrderOf(LineId id);

    void check(const Sinks &sinks, const Rules &rules);

private:
    struct Line
    {
        Circumstance::State file = Circumstance::Good;
        Circumstance::State library = Circumstance::Good;
        std::int64_t order = -1; ///< of all lines with a tap or receiver
        std::int64_t tapOrder = -1;
        int passed = 0, logged = 0, inFile = 0, onScreen = 0, atClients = 0;
    };
    Line *find(LineId id);
    void take(const Stream &stream, const std::string &sink, int Line::*times, std::int64_t Line::*order);
    void takeSinks(const Sinks &sinks, const Rules &rules);
    void checkPrinting(LineId id, const Line &line, const Rules &rules) const;
    void checkFile(LineId id, const Line &line, const Rules &rules) const;
    void checkMaximum(std::int64_t size, std::int64_t maximum);
    void checkConnections(const Sinks &sinks);

    std::mutex m_lock;
    std::vector<std::vector<std::pair<LineId, Line>>> m_lines; // by producer; guarded by it, as are the next
    std::int64_t m_order = 0;
    std::vector<LineId> m_tapped;
    std::int64_t m_firstInFile = -1; ///< order of its first line
    std::int64_t m_bytes = 0; ///< of all lines that the file has got, the library's own too
};

} // namespace Zorvan::soak
