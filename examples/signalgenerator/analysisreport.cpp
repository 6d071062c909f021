#include "analysisreport.h"

#include <zorvan/exports.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace SignalGenerator {

namespace {

const char *fileName(const char *path)
{
    const char *const slash = std::strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

ZORVAN_PRINTF_FORMAT(1, 2)
std::string formatted(const char *format, ...)
{
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

} // namespace

AnalysisReport::AnalysisReport()
{
    installanalysisMessageHandler(this);
}

AnalysisReport::~AnalysisReport()
{
    installanalysisMessageHandler(nullptr); // no thread is in here any more when it returns
}

void AnalysisReport::print()
{
    dumpLeaks(nullptr);
    dumpTimes(nullptr, nullptr);
}

void AnalysisReport::textOutput(const char *source, int line, const char *text)
{
    std::printf("analysis: %s(%d): %s", source == nullptr ? "" : fileName(source), line, text);
}

void AnalysisReport::summary(int records, qint64 totalCycles, qint64, qint64 calls, quint64, quint64)
{
    m_rows = {formatted("%d methods, %lld calls, %lld cycles", records, static_cast<long long>(calls),
                        static_cast<long long>(totalCycles)),
              formatted("%8s %8s %14s %14s  %s", "thread", "calls", "cycles", "measuring cost", "method")};
}

void AnalysisReport::tableRow(int, const char *methodName, quint64 reference, int calls, quint64,
                              qint64 totalCycles, qint64 overheadCycles)
{
    m_rows.push_back(formatted("%8llu %8d %14lld %14lld  %s", static_cast<unsigned long long>(reference),
                               calls, static_cast<long long>(totalCycles),
                               static_cast<long long>(overheadCycles),
                               methodName == nullptr ? "" : methodName));
}

// Every row comes with a text of its own: kept until now, the table stays in one piece.
void AnalysisReport::tableComplete()
{
    for (const std::string &row : m_rows)
        std::printf("analysis: %s\n", row.c_str());
    std::fflush(stdout);
    m_rows.clear();
}

void switchAnalysis(bool on)
{
    analyzingToolsEnabled(on ? 1 : 0);
    analyzingToolsOnStartup(on ? 1 : 0);
    std::printf("signalgenerator: the analysis tools are %s from the next start on\n", on ? "on" : "off");
}

} // namespace SignalGenerator
