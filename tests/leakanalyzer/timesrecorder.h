#pragma once

#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/methodtiming.h"
#include "platform/clock.h"
#include "platform/lock.h"

#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <vector>

namespace Zorvan::test {

struct Text
{
    std::string source;
    int line;
    std::string text;

    bool operator==(const Text &other) const
    {
        return source == other.source && line == other.line && text == other.text;
    }
};

struct Row
{
    int number;
    std::string method;
    quint64 thread;
    int calls;
    quint64 stamp;
    qint64 total;
    qint64 overhead;
};

struct Summary
{
    int records;
    qint64 total;
    qint64 reserved;
    qint64 calls;
    quint64 earliest;
    quint64 latest;
};

/// The installed output handler: keeps everything in the order in which it came.
class TimesRecorder : public IAnalysisOutputInterface
{
public:
    TimesRecorder() { analysis::setOutputHandler(this); }
    ~TimesRecorder() override { analysis::setOutputHandler(nullptr); }
    TimesRecorder(const TimesRecorder &) = delete;
    TimesRecorder &operator=(const TimesRecorder &) = delete;

    void textOutput(const char *source, int line, const char *text) override
    {
        called('t');
        const std::lock_guard guard(m_mutex);
        texts.push_back({source == nullptr ? "" : source, line, text});
    }
    void summary(int records, qint64 total, qint64 reserved, qint64 calls, quint64 earliest,
                 quint64 latest) override
    {
        called('s');
        summaries.push_back({records, total, reserved, calls, earliest, latest});
    }
    void tableRow(int number, const char *method, quint64 thread, int calls, quint64 stamp, qint64 total,
                  qint64 overhead) override
    {
        called('r');
        rows.push_back({number, method, thread, calls, stamp, total, overhead});
    }
    void tableComplete() override { called('c'); }

    /// A fresh report alone.
    void dump(const char *sourceFilter = nullptr, const char *methodFilter = nullptr)
    {
        forget();
        analysis::dumpTimes(sourceFilter, methodFilter);
    }
    void forget()
    {
        const std::lock_guard guard(m_mutex);
        texts.clear();
        rows.clear();
        summaries.clear();
        order.clear();
    }
    /// The rows of a method, by thread number.
    [[nodiscard]] std::vector<Row> rowsOf(const std::string &method) const
    {
        std::vector<Row> found;
        for (const Row &row : rows)
            if (row.method == method)
                found.push_back(row);
        return found;
    }
    /// The only row of a method.
    [[nodiscard]] Row row(const std::string &method) const
    {
        const std::vector<Row> found = rowsOf(method);
        EXPECT_EQ(found.size(), 1U) << method;
        return found.size() == 1 ? found.front() : Row{};
    }

    std::vector<Text> texts;
    std::vector<Row> rows;
    std::vector<Summary> summaries;
    std::string order; ///< t: text, s: summary, r: row, c: table complete
    std::function<void(char)> onCall;

private:
    void called(char sign)
    {
        {
            const std::lock_guard guard(m_mutex);
            order += sign;
        }
        if (onCall)
            onCall(sign);
    }

    std::mutex m_mutex; // texts come from all threads
};

/// A running analyzer, not calibrated.
class TimingTest : public testing::Test
{
protected:
    TimingTest()
    {
        analysis::toolsEnabled(1);
        analysis::startupAnalysis(0);
        analysis::start();
    }
};

inline void startMethod(int id, const char *file, const char *name, int line = 1)
{
    analysis::startMethod(static_cast<unsigned>(id), file, line, name);
}

inline void endMethod(int id)
{
    analysis::endMethod(static_cast<unsigned>(id));
}

inline void work(quint64 cycles)
{
    const quint64 start = platform::cycleCounter();
    while (platform::cycleCounter() - start < cycles) {}
}

constexpr quint64 workCycles = 1'000'000;

} // namespace Zorvan::test
