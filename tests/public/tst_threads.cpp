// Many threads at once: every line arrives whole, once, in its thread's order, whatever the others do.

#include "support/crew.h"
#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <map>

using Zorvan::Debug;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

constexpr int printers = 8;
constexpr int linesPerPrinter = 300;
constexpr int kernel = 2;

void receive(Zorvan::hookData *) {}

/// Prints numbered two-line messages; at level 0 no switch of a class stops them.
void printNumbered(int printer, int module, int level)
{
    for (int number = 0; number < linesPerPrinter; number += 2) {
        Debug::println(module, 0,
                       QStringLiteral("#%1:%2:first\n#%1:%3:second").arg(printer).arg(number).arg(number + 1),
                       level);
    }
}

/// Runs the printers beside \a other, which is called again and again until they have finished.
template <typename Other>
void printBeside(Other other, int level = 0)
{
    const Crew crew(printers, [level](int printer) {
        printNumbered(printer, printer + 1, level); // module 0 has a '#' in its name
    });
    while (crew.isBusy())
        other();
}

/// The numbers of each printer in the order of their lines; fails on a damaged line or a torn message.
std::map<int, std::vector<int>> numbersIn(const Lines &lines)
{
    std::map<int, std::vector<int>> numbers;
    std::string awaited;
    for (const std::string &line : lines) {
        const std::size_t mark = line.find('#');
        if (mark == std::string::npos)
            continue;
        int printer = -1;
        int number = -1;
        char part[8] = "";
        EXPECT_EQ(std::sscanf(line.c_str() + mark, "#%d:%d:%7s", &printer, &number, part), 3) << line;
        numbers[printer].push_back(number);
        const bool first = std::string(part) == "first";
        const std::string expected = awaited.empty() ? line.substr(mark) : awaited;
        EXPECT_EQ(line.substr(mark), expected) << "lines of two messages are mixed";
        awaited = first ? "#" + std::to_string(printer) + ":" + std::to_string(number + 1) + ":second" : "";
    }
    return numbers;
}

void expectEveryLineOnceInOrder(const Lines &lines)
{
    const std::map<int, std::vector<int>> numbers = numbersIn(lines);
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(printers));
    for (const auto &[printer, sequence] : numbers) {
        ASSERT_EQ(sequence.size(), static_cast<std::size_t>(linesPerPrinter)) << "printer " << printer;
        for (int i = 0; i < linesPerPrinter; ++i)
            ASSERT_EQ(sequence[static_cast<std::size_t>(i)], i) << "printer " << printer;
    }
}

class Threads : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host.store("DebugServerFileOutput", "on");
        host.store("DebugServerShowTimestamp", "on");
        host.store("DebugServerShowThreadID", "on");
        Debug::initDebug();
    }
    Lines fileLines() const { return linesOf(readFile(libraryFile("GYX_Debug_Output.log"))); }

    MapHost host;
};

TEST_F(Threads, CriticalLinesArriveWhileModulesAreMadeAndSwitched)
{
    int round = 0;
    printBeside([&round] {
        const int module = 1 + round++ % printers;
        if (round < 400) {
            const std::string name = "Module" + std::to_string(round);
            Debug::getModuleName(Debug::createModule(name.c_str(), name.c_str()));
        }
        Debug::enableClasses(module, round % 3 ? QStringLiteral("time") : QStringLiteral("all"));
        Debug::enableMessageClassType(module, 70); // beyond the classes that have a bit
        Debug::isActive(module, 1, 70);
        Debug::setClippingLevel(module, round % 5);
        Debug::getActiveLevel(module, 1);
        const char *levels[] = {"<critical>: ", "<error>: ", "<more>: "};
        Debug::setMessageLevelDescriptions(module, 3, levels);
        Debug::setLevelFilter(round % 2 ? QStringLiteral("|#") : QString());
        Debug::getEnabledSettings();
        Debug::getEnabledMessageClasses(module);
    });
    expectEveryLineOnceInOrder(fileLines());
    expectEveryLineOnceInOrder(host.takeLines());
    Debug::exitDebug();
}

TEST_F(Threads, LinesArriveWhileReceiversAndFilesChange)
{
    int round = 0;
    const std::string other = libraryFile("other.log");
    const std::string usual = libraryFile("GYX_Debug_Output.log");
    printBeside([&] {
        ++round;
        Debug::setOutputReceiver(1 + round % printers, round % 2 ? receive : nullptr);
        Debug::setOutputFileName(round % 4 < 2 ? other.c_str() : usual.c_str());
        Debug::getOutputFileName();
        Debug::setMaxOutputFileSize(1000000000 + round);
    });
    std::size_t total = 0;
    for (const std::string &path : {other, usual}) {
        for (const auto &[printer, sequence] : numbersIn(linesOf(readFile(path)))) {
            EXPECT_TRUE(std::is_sorted(sequence.begin(), sequence.end())) << "printer " << printer;
            total += sequence.size();
        }
    }
    EXPECT_EQ(total, static_cast<std::size_t>(printers * linesPerPrinter));
    Debug::exitDebug();
}

TEST_F(Threads, NoLineIsLostWhenTheLibraryStopsAndStartsUnderItsPrinters)
{
    // While the library is up the line tap sees a line, otherwise the system log has it.
    for (const char *module :
         {"Startup", "Kernel", "Gui", "Database", "OrgLayer", "Unicod1", "Unicod2", "Unicod3"})
        host.store((std::string(module) + "DebugLevel").c_str(), "full");
    Debug::exitDebug();
    Debug::initDebug();
    const auto restart = [restarts = 0]() mutable {
        if (++restarts % 2)
            Debug::exitDebug();
        else
            Debug::initDebug();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    };
    printBeside(restart, 3);
    Debug::exitDebug();
    std::map<int, std::vector<int>> numbers = numbersIn(host.takeLines());
    for (const auto &[printer, sequence] : numbersIn(linesOf(readFile(libraryFile("GYX-syslog-0.log")))))
        numbers[printer].insert(numbers[printer].end(), sequence.begin(), sequence.end());
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(printers));
    for (auto &[printer, sequence] : numbers) {
        std::sort(sequence.begin(), sequence.end());
        EXPECT_EQ(std::unique(sequence.begin(), sequence.end()), sequence.end()) << "a line came twice";
        EXPECT_EQ(sequence.size(), static_cast<std::size_t>(linesPerPrinter)) << "printer " << printer;
    }
}

TEST_F(Threads, MessagesDuringAStartWaitUntilTheirModuleIsKnown)
{
    Debug::exitDebug();
    host.takeLines();
    std::thread printer;
    host.store("KernelDebugLevel", "full");
    host.store("DebugServerFileOutput", "On");
    host.onRead = [&](const QString &key) {
        if (key != QLatin1String("DebugServerDebugClasses"))
            return;
        printer = std::thread([] { Debug::println(kernel, 0, QStringLiteral("at info"), 3); });
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // long enough for the printer to ask
    };
    Debug::initDebug();
    printer.join();
    EXPECT_EQ(host.takeLines().size(), 1U);
    Debug::exitDebug();
}

TEST_F(Threads, AResetIsNoEndForThosePrinting)
{
    constexpr int lines = 2'000;
    Debug::initDebug();
    Crew printer(1, [](int) {
        for (int i = 0; i < lines; ++i)
            Debug::println(kernel, 0, QStringLiteral("line %1").arg(i), 0);
    });
    while (printer.isBusy())
        Debug::createModule("DebugServerClient", "Client");
    printer.join();
    EXPECT_EQ(host.takeLines().size(), static_cast<std::size_t>(lines)) << "the rest is in the system log";
    Debug::exitDebug();
}

TEST_F(Threads, QuestionsAreAnsweredWhileTheTableComesAndGoes)
{
    std::atomic<bool> done{false};
    Crew askers(3, [&done](int) {
        while (!done) {
            for (int module = -1; module < 60; ++module) {
                Debug::isActive(module, 1, module);
                Debug::getActiveLevel(module, 0);
                Debug::getClippingLevel(module);
                Debug::getEnabledMessageLevel(module);
            }
            int count = 0;
            int *ids = nullptr;
            const char **const names = Debug::getModuleNames(&count, &ids);
            Debug::releaseModuleNames(names, count, ids);
        }
    });
    for (int round = 0; round < 20; ++round) {
        Debug::createModule("DebugServerClient", "Client");
        for (int module = 0; module < 30; ++module)
            Debug::createModule("More", "More");
        Debug::exitDebug();
        Debug::initDebug();
    }
    done = true;
    askers.join();
    Debug::exitDebug();
    EXPECT_TRUE(Debug::isActive(kernel, 99, 99)) << "as before the first start";
}

} // namespace
