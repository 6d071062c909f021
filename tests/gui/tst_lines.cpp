// What arrives on the standard output of hosts with an event loop: every line once, in its thread's order.

#include "support/childprocess.h"
#include "support/programdata.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>

using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

/// What kind of application the host has. Without widgets there is no window for the lines.
class HostLines : public ::testing::TestWithParam<const char *>
{
protected:
    static Lines run(const std::string &mode)
    {
        const ChildResult result = runChild("'" GUIHOST "' " + mode + ' ' + GetParam());
        EXPECT_EQ(result.exitCode, 0) << "signal " << result.signal;
        EXPECT_TRUE(result.output.empty() || result.output.back() == '\n') << "the last line is not ended";
        return linesOf(result.output);
    }
};

/// Appends the numbers of each producer in the order of their lines.
void collectNumbers(const Lines &lines, std::map<int, std::vector<int>> &numbers)
{
    for (const std::string &line : lines) {
        int producer = -1;
        int number = -1;
        const std::size_t mark = line.find('#');
        if (mark != std::string::npos && std::sscanf(line.c_str() + mark, "#%d:%d", &producer, &number) == 2)
            numbers[producer].push_back(number);
    }
}

void expectCompleteAndInOrder(const std::map<int, std::vector<int>> &numbers, std::size_t producers,
                              std::size_t atLeast)
{
    EXPECT_EQ(numbers.size(), producers);
    for (const auto &[producer, sequence] : numbers) {
        EXPECT_GE(sequence.size(), atLeast);
        for (std::size_t i = 0; i < sequence.size(); ++i)
            ASSERT_EQ(sequence[i], static_cast<int>(i)) << "producer " << producer;
    }
}

std::ptrdiff_t placeOf(const Lines &lines, const std::string &text)
{
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string &line) {
        return line.size() >= text.size() && line.compare(line.size() - text.size(), text.size(), text) == 0;
    });
    return found == lines.end() ? -1 : found - lines.begin();
}

std::ptrdiff_t countOf(const Lines &lines, const std::string &text)
{
    return std::count_if(lines.begin(), lines.end(),
                         [&](const std::string &line) { return placeOf({line}, text) == 0; });
}

TEST_P(HostLines, OfEightThreadsArriveOnceWhileTheApplicationComesRunsQuitsAndGoes)
{
    std::map<int, std::vector<int>> numbers;
    collectNumbers(run("throughout"), numbers);
    // Without an application there is no library any more: what comes then is in the log.
    collectNumbers(linesOf(readFile(libraryFile("GYX-syslog-0.log"))), numbers);
    expectCompleteAndInOrder(numbers, 8, 1);
}

TEST_P(HostLines, OfEveryStageArriveInOrderAcrossThreads)
{
    std::map<int, std::vector<int>> numbers;
    collectNumbers(run("stages"), numbers);
    expectCompleteAndInOrder(numbers, 1, 20);
}

TEST_P(HostLines, OfTheParentAreNotPrintedByAForkedChild)
{
    const Lines lines = run("fork");
    for (const char *const child : {"of the main thread", "of a worker", "before the first line"})
        EXPECT_EQ(countOf(lines, std::string("child ") + child), 1) << child;
    EXPECT_EQ(countOf(lines, "child ended"), 3);
    EXPECT_EQ(countOf(lines, "waits in the parent"), 1);
}

TEST_P(HostLines, ArriveAtTheEndOfAProcessThatKeepsItsApplication)
{
    const Lines lines = run("leak");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(placeOf(lines, "one"), 0);
    EXPECT_EQ(placeOf(lines, "other"), 1);
}

INSTANTIATE_TEST_SUITE_P(Gui, HostLines, ::testing::Values("gui"));
INSTANTIATE_TEST_SUITE_P(Console, HostLines, ::testing::Values("core"));

class WidgetHostLines : public HostLines
{};

TEST_P(WidgetHostLines, AreDiscardedWithoutWindowOutput)
{
    EXPECT_EQ(run("nowindow"), Lines());
    EXPECT_EQ(run("nowindowatend"), Lines()) << "the end delivers what no batch has";
}

INSTANTIATE_TEST_SUITE_P(Gui, WidgetHostLines, ::testing::Values("widgets"));

} // namespace
