// Whole hosts: killed, sharing a file, forking, with static objects, loading the library at run time.

#include "support/childprocess.h"
#include "support/programdata.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

const char *const outputName = "GYX_Debug_Output.log";
const char *const logName = "GYX-syslog-0.log";

/// A running host with pipes to its standard input and output.
class Host
{
public:
    explicit Host(std::vector<const char *> arguments)
    {
        int in[2];
        int out[2];
        EXPECT_EQ(pipe(in) + pipe(out), 0);
        arguments.insert(arguments.begin(), PRINTER);
        arguments.push_back(nullptr);
        m_process = fork();
        if (m_process == 0) {
            dup2(in[0], 0);
            dup2(out[1], 1);
            close(in[1]);
            close(out[0]);
            execv(PRINTER, const_cast<char *const *>(arguments.data()));
            _exit(127);
        }
        close(in[0]);
        close(out[1]);
        m_input = fdopen(in[1], "w");
        m_output = fdopen(out[0], "r");
    }
    ~Host()
    {
        fclose(m_input);
        fclose(m_output);
    }

    std::string readLine()
    {
        char line[1024] = "";
        if (std::fgets(line, sizeof line, m_output) == nullptr)
            return "";
        return line;
    }
    void tell()
    {
        std::fputs("go\n", m_input);
        std::fflush(m_input);
    }
    void kill() { ::kill(m_process, SIGKILL); }
    /// Reads what is left of its output and waits for its end.
    Lines finish()
    {
        Lines rest;
        for (std::string line = readLine(); !line.empty(); line = readLine())
            rest.push_back(line);
        waitpid(m_process, &m_status, 0);
        return rest;
    }
    [[nodiscard]] bool endedWell() const { return WIFEXITED(m_status) && WEXITSTATUS(m_status) == 0; }

private:
    pid_t m_process = -1;
    int m_status = -1;
    std::FILE *m_input = nullptr;
    std::FILE *m_output = nullptr;
};

std::size_t countEnding(const Lines &lines, const std::string &text)
{
    return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const std::string &line) {
        return line.size() >= text.size() && line.compare(line.size() - text.size(), text.size(), text) == 0;
    }));
}

TEST(Hosts, AKilledHostLeavesEveryLineThatItPrinted)
{
    Host host({"endless"});
    Lines seen;
    for (int i = 0; i < 2000; ++i)
        seen.push_back(host.readLine());
    host.kill();
    const Lines rest = host.finish();
    seen.insert(seen.end(), rest.begin(), rest.end());
    if (!seen.empty() && seen.back().back() != '\n')
        seen.pop_back(); // killed in the middle of writing to the pipe
    const Lines file = linesOf(readFile(libraryFile(outputName)));
    ASSERT_GE(file.size(), seen.size());
    for (std::size_t i = 0; i < seen.size(); ++i)
        ASSERT_EQ(file[i] + '\n', seen[i]);
}

TEST(Hosts, TwoHostsShareAFileWithoutHurtingALine)
{
    constexpr int count = 1500;
    Host first({"told", "first", "1500"});
    first.readLine();
    Host second({"told", "second", "1500"});
    second.readLine(); // both have begun their run: from here on nobody deletes the file
    first.tell();
    second.tell();
    first.finish();
    second.finish();
    const Lines file = linesOf(readFile(libraryFile(outputName)));
    std::map<std::string, int> next;
    for (const std::string &line : file) {
        char name[16] = "";
        int number = -1;
        const std::size_t text = line.find(">: ") + 3;
        if (std::sscanf(line.c_str() + text, "%15s %d", name, &number) == 2) {
            ASSERT_EQ(number, next[name]++) << line;
        }
    }
    EXPECT_EQ(next["first"], count);
    EXPECT_EQ(next["second"], count);
    EXPECT_EQ(file.size(), 2U * count + 1U);
}

TEST(Hosts, ForkingWhileOthersPrintNeitherHangsNorLosesALine)
{
    constexpr int forks = 40;
    Host host({"forks", "40"});
    host.finish();
    EXPECT_TRUE(host.endedWell());
    const Lines file = linesOf(readFile(libraryFile(outputName)));
    const Lines log = linesOf(readFile(libraryFile(logName)));
    for (int i = 0; i < forks; ++i) {
        EXPECT_EQ(countEnding(file, ": child " + std::to_string(i)), 1U);
        EXPECT_EQ(countEnding(log, ": child " + std::to_string(i)), 1U);
    }
}

TEST(Hosts, StaticObjectsMayPrint)
{
    const ChildResult result = runChild("'" PRINTER "' statics");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.output.find("last words\n"), std::string::npos);
    // The destructor runs while the library is up: it prints as main() did.
    EXPECT_NE(result.output.find("static destructor\n"), std::string::npos);
    const Lines log = linesOf(readFile(libraryFile(logName)));
    EXPECT_EQ(countEnding(log, ": static constructor"), 1U);
    EXPECT_EQ(countEnding(log, ": Qt after main"), 1U);
}

TEST(Hosts, AClosedStandardOutputDoesNotStopTheFile)
{
    EXPECT_EQ(runChild("'" PRINTER "' closedpipe").exitCode, 0);
    EXPECT_EQ(linesOf(readFile(libraryFile(outputName))).size(), 3U);
}

TEST(Hosts, TheLibraryCanBeLoadedAndUnloadedAtRunTime)
{
    const ChildResult result = runChild("'" LOADER "' '" LIBRARY "'");
    EXPECT_EQ(result.exitCode, 0) << "signal " << result.signal;
    EXPECT_NE(result.output.find(": round 0\n"), std::string::npos);
    EXPECT_NE(result.output.find(": round 1\n"), std::string::npos);
    const Lines log = linesOf(readFile(libraryFile(logName)));
    EXPECT_EQ(countEnding(log, ": before"), 2U);
    EXPECT_EQ(countEnding(log, ": Qt after unloading"), 2U);
}

} // namespace
