#include "comparison.h"

#include "table.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

std::string threeDigits(double value)
{
    const double size = std::abs(value);
    return number(value, size < 9.995 ? 2 : size < 99.95 ? 1 : 0);
}

std::string scaled(double value, double step, std::initializer_list<const char *> units)
{
    const auto *unit = units.begin();
    while (std::abs(value) >= 0.9995 * step && unit + 1 != units.end()) {
        value /= step;
        ++unit;
    }
    return threeDigits(value) + ' ' + *unit;
}

std::string shown(std::optional<double> figure, Quantity kind)
{
    return figure ? quantity(*figure, kind) : "not measured";
}

} // namespace

std::string quantity(double value, Quantity kind)
{
    return kind == Quantity::Time ? scaled(value, 1000, {"ns", "us", "ms", "s"})
                                  : scaled(value, 1024, {"B", "KiB", "MiB", "GiB"});
}

std::optional<double> figureOf(const Result &result)
{
    return result.kept > 0 ? std::optional<double>(result.figures.call) : std::nullopt;
}

void comparisonTitle()
{
    say("\n| | This library | Peers | Ratio to the best of them |\n|---|--:|---|---|\n");
}

void comparisonRow(const std::string &what, std::optional<double> own, const std::vector<PeerFigure> &peers,
                   Quantity kind)
{
    std::string all;
    const PeerFigure *best = nullptr;
    for (const PeerFigure &peer : peers) {
        all += (all.empty() ? "" : ", ") + peer.peer + ' ' + shown(peer.figure, kind);
        if (peer.figure && (best == nullptr || *peer.figure < *best->figure))
            best = &peer;
    }
    const std::string ratio =
        best == nullptr || !own ? "" : threeDigits(*own / *best->figure) + " x " + best->peer;
    say("| " + what + " | " + shown(own, kind) + " | " + all + " | " + ratio + " |\n");
}

void comparisonRows(const std::string &what, const std::vector<Result> &results,
                    const std::vector<std::string> &peers)
{
    const std::size_t group = peers.size() + 1;
    for (std::size_t first = 0; first < results.size(); first += group) {
        const Result &own = results[first];
        std::vector<PeerFigure> figures;
        for (std::size_t i = 0; i < peers.size(); ++i)
            figures.push_back({peers[i], figureOf(results[first + 1 + i])});
        const std::string threads = std::to_string(own.threads) + (own.threads == 1 ? " thread" : " threads");
        comparisonRow(what + ", " + threads, figureOf(own), figures);
    }
}

GrowthTable::GrowthTable(const char *things, std::vector<double> numbers, bool print)
    : m_numbers(std::move(numbers))
{
    if (!print)
        return;
    std::string head = std::string("\n| ") + things + " |";
    std::string line = "|---|";
    for (const double count : m_numbers) {
        head += ' ' + number(count, 0) + " |";
        line += "--:|";
    }
    say(head + " Exponent |\n" + line + "--:|\n");
}

void GrowthTable::row(const std::string &what, const std::vector<double> &figures) const
{
    std::string cells;
    for (const double figure : figures)
        cells += (figure > 0 ? ' ' + quantity(figure, Quantity::Time) : "") + " |";
    const std::size_t first = m_numbers.front() > 0 && figures.front() > 0 ? 0 : 1;
    const double exponent =
        std::log(figures.back() / figures[first]) / std::log(m_numbers.back() / m_numbers[first]);
    const double rounded = std::abs(exponent) < 0.005 ? 0 : exponent; // no "-0.00"
    const bool isKnown = figures[first] > 0 && figures.back() > 0; // else nothing was measured there
    say("| " + what + " |" + cells + (isKnown ? ' ' + number(rounded, 2) : "") + " |\n");
}

} // namespace bench
