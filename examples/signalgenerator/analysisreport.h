#pragma once

#include <zorvan/debug.h>

#include <string>
#include <vector>

namespace SignalGenerator {

/// Prints what the analysis tools have found on the standard output: leaks and pairing faults as they come,
/// measured methods as a table.
///
/// It takes their output for as long as it lives. Texts come on whichever thread has something to tell, rows
/// on the thread that calls print().
class AnalysisReport : public Zorvan::IAnalysisOutputInterface
{
public:
    AnalysisReport();
    ~AnalysisReport() override;
    AnalysisReport(const AnalysisReport &) = delete;
    AnalysisReport &operator=(const AnalysisReport &) = delete;

    /// Has the tools report; they say nothing if they were not on when the program was started.
    static void print();

    void textOutput(const char *source, int line, const char *text) override;
    void summary(int records, qint64 totalCycles, qint64 reserved, qint64 calls, quint64 earliestStamp,
                 quint64 latestStamp) override;
    void tableRow(int row, const char *methodName, quint64 reference, int calls, quint64 startStamp,
                  qint64 totalCycles, qint64 overheadCycles) override;
    void tableComplete() override;

private:
    std::vector<std::string> m_rows;
};

/// Switches the tools, and what they track from the start, on or off from the next start on.
void switchAnalysis(bool on);

} // namespace SignalGenerator
