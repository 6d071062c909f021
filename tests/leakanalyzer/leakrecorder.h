#pragma once

#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/leaktracker.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Zorvan::test {

/// The installed output handler, for reports of one thread: keeps the texts without their line ends.
class LeakRecorder : public IAnalysisOutputInterface
{
public:
    LeakRecorder() { analysis::setOutputHandler(this); }
    ~LeakRecorder() override { analysis::setOutputHandler(nullptr); }
    LeakRecorder(const LeakRecorder &) = delete;
    LeakRecorder &operator=(const LeakRecorder &) = delete;

    void textOutput(const char *source, int line, const char *text) override
    {
        m_texts.push_back(text);
        if (m_texts.back().find("memory leak with") != std::string::npos)
            m_leaks.push_back(std::string(source) + ':' + std::to_string(line) + ' ' + text);
        if (onText)
            onText();
    }
    void summary(int, qint64, qint64, qint64, quint64, quint64) override {}
    void tableRow(int, const char *, quint64, int, quint64, qint64, qint64) override {}
    void tableComplete() override {}

    std::vector<std::string> report(const char *filter = nullptr)
    {
        m_texts.clear();
        m_leaks.clear();
        analysis::dumpLeaks(filter);
        return m_texts;
    }
    /// "file:line bytes x times" of a fresh report, in its order.
    std::vector<std::string> leaks(const char *filter = nullptr)
    {
        report(filter);
        std::vector<std::string> shortened;
        for (const std::string &leak : m_leaks) {
            int bytes = 0;
            int times = 0;
            const std::string text = leak.substr(leak.find(' ') + 1);
            if (std::sscanf(text.c_str(),
                            "++++++++++++++++++++++++++++++ memory leak with %d bytes occurred %d times\n",
                            &bytes, &times)
                == 2)
                shortened.push_back(leak.substr(0, leak.find(' ')) + ' ' + std::to_string(bytes) + " x "
                                    + std::to_string(times));
        }
        return shortened;
    }

    std::function<void()> onText;

private:
    std::vector<std::string> m_texts;
    std::vector<std::string> m_leaks;
};

inline void startAnalyzer()
{
    analysis::toolsEnabled(1);
    analysis::startupAnalysis(0);
    analysis::start();
}

/// A running analyzer that tracks memory.
class LeakTest : public testing::Test
{
protected:
    LeakTest()
    {
        startAnalyzer();
        analysis::setMemoryTracking(1);
    }
};

inline void *allocate(std::size_t size, const char *file = "data.cpp", int line = 1)
{
    return analysis::allocate(size, file, line, false);
}

/// A block that stays for ever, in sight of the leak checkers that may watch the test.
inline void leak(std::size_t size, const char *file = "data.cpp", int line = 1)
{
    static std::array<void *, 100> blocks{};
    static std::size_t count = 0;
    blocks[count++ % blocks.size()] = allocate(size, file, line);
}

using Lines = std::vector<std::string>;

} // namespace Zorvan::test
