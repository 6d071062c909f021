#pragma once

/// The tables of `benchmarks/compare`. Several programs print them, one row after the other: a row stands for
/// itself, and says in text what belongs to it.

#include "measure.h"

#include <optional>
#include <string>
#include <vector>

namespace bench {

enum class Quantity {
    Time, ///< in nanoseconds
    Bytes,
};

/// "3.7 ns", "12 us", "104 B": three digits and a unit.
std::string quantity(double value, Quantity kind);

struct PeerFigure
{
    std::string peer;
    std::optional<double> figure; ///< none: it could not be measured
};

/// Of the samples that nothing disturbed; none if all were.
std::optional<double> figureOf(const Result &result);

/// Begins the table of rows below.
void comparisonTitle();

/// The figure of this library beside those of all peers, and its ratio to the lowest of them.
void comparisonRow(const std::string &what, std::optional<double> own, const std::vector<PeerFigure> &peers,
                   Quantity kind = Quantity::Time);

/// A row for each number of threads in \a results, which stand in groups: this library first, then \a peers.
void comparisonRows(const std::string &what, const std::vector<Result> &results,
                    const std::vector<std::string> &peers);

/// How a cost grows with a number of things.
class GrowthTable
{
public:
    /// \a print: whether to begin a table; otherwise its rows come behind those of another program.
    GrowthTable(const char *things, std::vector<double> numbers, bool print = true);

    /// One figure for each number; 0: there is none for the first. The exponent behind them says how the cost
    /// grows from the first number above zero to the last: 0 not at all, 1 as the number does.
    void row(const std::string &what, const std::vector<double> &figures) const;

    [[nodiscard]] const std::vector<double> &numbers() const { return m_numbers; }

private:
    std::vector<double> m_numbers;
};

} // namespace bench
