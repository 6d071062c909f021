#include "lowlevelfunctions/loglines.h"
#include "lowlevelfunctions/tracefile.h"

#include <zorvan/debug.h>

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

const std::string fillers = std::string(70, 'a') + std::string(70, 'b');

/// The end of each line, of another length each time.
std::string_view filler(char writer, int number)
{
    return std::string_view(fillers).substr(writer == 'a' ? 0 : 70, static_cast<std::size_t>(number % 70));
}

/// Two threads that note line after line, until the end of the scope. They allocate nothing:
/// ThreadSanitizer's allocator would hang in the child of a fork() amid that.
class Writers
{
public:
    explicit Writers(TraceHistory &history)
    {
        for (const char name : {'a', 'b'}) {
            m_threads.emplace_back([&history, name, this] {
                for (int number = 0; !m_enough; ++number)
                    note(history, nullptr, 0, "<%c %d %.*s>", name, number,
                         static_cast<int>(filler(name, number).size()), filler(name, number).data());
            });
        }
    }
    ~Writers()
    {
        m_enough = true;
        for (std::thread &thread : m_threads)
            thread.join();
    }
    Writers(const Writers &) = delete;
    Writers &operator=(const Writers &) = delete;

private:
    std::atomic<bool> m_enough{false};
    std::vector<std::thread> m_threads;
};

/// Each writer's lines follow each other, and none is torn.
void checkOrder(const std::string &text)
{
    std::map<char, int> next;
    for (const std::string &line : linesOf(text)) {
        if (line.empty())
            continue; // what is left of the last line dropped
        const std::size_t message = line.find('<');
        ASSERT_NE(message, std::string::npos) << line;
        const char name = line.at(message + 1);
        const int number = std::atoi(line.c_str() + message + 3);
        EXPECT_EQ(line.substr(message),
                  std::string("<") + name + ' ' + std::to_string(number) + ' '
                      + std::string(filler(name, number)) + '>');
        EXPECT_TRUE(next.count(name) == 0 || next[name] == number) << line;
        next[name] = number + 1;
    }
}

TEST(TraceHistoryThreads, LinesOfAllThreadsStayWholeAndInOrder)
{
    TraceHistory history;
    const Writers writers(history);
    for (int dump = 0; dump < 10; ++dump)
        checkOrder(textOf(history));
}

TEST(TraceHistoryThreads, AChildOfAForkNotesAndDumpsOn)
{
    const Writers writers(traceHistory());
    for (int child = 0; child < 10; ++child) {
        const pid_t id = fork();
        if (id == 0) {
            alarm(60); // ends a child that hangs
            logHistory(nullptr, 0, "<c %d >", 0);
            const std::string text = textOf(traceHistory());
            _exit(text.find("<c 0 >") != std::string::npos && !testing::Test::HasFailure() ? 0 : 1);
        }
        int status = -1;
        EXPECT_EQ(waitpid(id, &status, 0), id);
        EXPECT_EQ(status, 0);
    }
    checkOrder(textOf(traceHistory()));
}

} // namespace
