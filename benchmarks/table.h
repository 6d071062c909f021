#pragma once

/// Results for people.

#include "measure.h"

#include <string>

namespace bench {

/// A Markdown table on the program's standard output as it was at the start.
class Table
{
public:
    enum class Unit {
        Nanoseconds,
        Microseconds,
    };

    Table(const char *title, Unit unit);
    ~Table();
    Table(const Table &) = delete;
    Table &operator=(const Table &) = delete;

    void row(const Result &result);
    void row(const Result &result, const Result &baseline);
    /// \a wanted: how many times the baseline the result may be.
    void row(const Result &result, const Result &baseline, double wanted);
    /// The percentile against an absolute limit in nanoseconds.
    void percentileRow(const Result &result, double wanted);
    /// A line of text behind the table.
    void note(const std::string &text);

private:
    void print(const Result &result, const std::string &ratio, const std::string &wanted,
               const char *verdict);
    [[nodiscard]] std::string scaled(double nanoseconds) const;

    Unit m_unit;
    std::string m_notes;
};

/// "x" with the given number of decimals.
std::string number(double value, int decimals);

/// Text for people, on the same stream as the tables.
void say(const std::string &text);

} // namespace bench
