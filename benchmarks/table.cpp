#include "table.h"

#include <cstdio>
#include <unistd.h>

namespace bench {

namespace {

/// The standard output that the program was started with: some programs point theirs to /dev/null.
FILE *report()
{
    static FILE *const file = fdopen(dup(STDOUT_FILENO), "w");
    return file;
}

FILE *const s_report = report();

std::string titleOf(const Result &result)
{
    return result.threads == 1 ? result.name
                               : result.name + ", " + std::to_string(result.threads) + " threads";
}

std::string ratioText(const Result &result, const Result &baseline)
{
    if (result.kept == 0 || baseline.kept == 0)
        return "no undisturbed sample";
    return number(result.figures.call / baseline.figures.call, 2) + " x " + titleOf(baseline);
}

} // namespace

Table::Table(const char *title, Unit unit)
    : m_unit(unit)
{
    const char *const unitName = unit == Unit::Nanoseconds ? "ns" : "us";
    std::fprintf(report(), "\n### %s\n\n", title);
    std::fprintf(report(), "| %-52s | %8s | %7s | %-54s | %-9s | %-5s | %-8s | %-5s |\n", "", unitName,
                 "99.9 %", "times the baseline", "wanted", "", "kept", "slept");
    std::fprintf(report(), "|---|--:|--:|---|---|---|---|---|\n");
}

Table::~Table()
{
    say(m_notes);
}

void Table::row(const Result &result)
{
    print(result, "", "", "");
}

void Table::row(const Result &result, const Result &baseline)
{
    print(result, ratioText(result, baseline), "", "");
}

void Table::row(const Result &result, const Result &baseline, double wanted)
{
    const bool met = result.kept > 0 && baseline.kept > 0 && std::stod(ratioText(result, baseline)) <= wanted;
    print(result, ratioText(result, baseline), "<= " + number(wanted, 2), met ? "OK" : "ABOVE");
}

void Table::percentileRow(const Result &result, double wanted)
{
    const bool met = result.kept > 0 && result.figures.percentile999 < wanted;
    print(result, "99.9 % of the calls", "< " + scaled(wanted), met ? "OK" : "ABOVE");
}

void Table::note(const std::string &text)
{
    m_notes += '\n' + text + '\n';
}

void Table::print(const Result &result, const std::string &ratio, const std::string &wanted,
                  const char *verdict)
{
    const std::string tail = result.figures.percentile999 > 0 ? scaled(result.figures.percentile999) : "";
    const std::string kept = std::to_string(result.kept) + '/' + std::to_string(result.tries);
    const std::string slept = result.slept > 0 ? std::to_string(result.slept) : "";
    std::fprintf(report(), "| %-52s | %8s | %7s | %-54s | %-9s | %-5s | %-8s | %-5s |\n",
                 titleOf(result).c_str(), result.kept > 0 ? scaled(result.figures.call).c_str() : "none",
                 tail.c_str(), ratio.c_str(), wanted.c_str(), verdict, kept.c_str(), slept.c_str());
    std::fflush(report());
}

std::string Table::scaled(double value) const
{
    return m_unit == Unit::Nanoseconds ? number(value, 2) : number(value / 1000, 2);
}

std::string number(double value, int decimals)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

void say(const std::string &text)
{
    std::fputs(text.c_str(), report());
    std::fflush(report());
}

} // namespace bench
