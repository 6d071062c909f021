// What a message costs that is not wanted: Debug::isActive() alone, and Debug::println() with its text ready.

#include "barefunction.h"
#include "host.h"
#include "peers.h"
#include "table.h"

#include <QLoggingCategory>
#include <QString>

#include <atomic>
#include <benchmark/benchmark.h>
#include <map>
#include <mutex>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

constexpr int clippingLevel = 2;
constexpr int refusedLevel = infoLevel;
constexpr int passingLevel = 2;
constexpr Setup setup{20000, 200, false, false};

std::atomic<int> s_inlineLevel{clippingLevel};

/// A lock and a map in front of every message.
class LockedLevels
{
public:
    LockedLevels()
    {
        for (int module = 0; module < 28; ++module)
            m_levels[module] = clippingLevel;
    }
    bool isActive(int module, int level)
    {
        const std::lock_guard<std::recursive_mutex> guard(m_mutex);
        const auto found = m_levels.find(module);
        return found != m_levels.end() && level <= found->second;
    }

private:
    std::recursive_mutex m_mutex;
    std::map<int, int> m_levels;
};

LockedLevels s_lockedLevels;

std::vector<Subject> subjects(moduleId module, const QString &text)
{
    static const QLoggingCategory category("bench.disabled", QtWarningMsg);
    const char *const qtText = messageText;
    return {
        {"inline load and compare", repeated([] {
             benchmark::DoNotOptimize(refusedLevel <= s_inlineLevel.load(std::memory_order_relaxed));
         })},
        {"bare isActive()",
         repeated([module] { benchmark::DoNotOptimize(bareIsActive(module, refusedLevel, enabledClass)); })},
        {"isActive(), by level", repeated([module] {
             benchmark::DoNotOptimize(Debug::isActive(module, refusedLevel, enabledClass));
         })},
        {"isActive(), by class", repeated([module] {
             benchmark::DoNotOptimize(Debug::isActive(module, passingLevel, disabledClass));
         })},
        {"bare println()",
         repeated([module, &text] { barePrintln(module, enabledClass, text, refusedLevel); })},
        {"println(), by level",
         repeated([module, &text] { Debug::println(module, enabledClass, text, refusedLevel); })},
        {"println(), by class",
         repeated([module, &text] { Debug::println(module, disabledClass, text, passingLevel); })},
        {"Qt, disabled category", repeated([qtText] { qCInfo(category, "%s", qtText); })},
        {"recursive lock and map",
         repeated([module] { benchmark::DoNotOptimize(s_lockedLevels.isActive(module, refusedLevel)); })},
    };
}

/// Rows of one number of threads; with \a oneThread, also against that.
void print(const std::vector<Result> &results, const std::vector<Result> *oneThread)
{
    constexpr std::size_t bareIsActiveRow = 1;
    constexpr std::size_t barePrintlnRow = 4;
    Table table(oneThread ? "Refused messages, 2 threads" : "Refused messages, 1 thread",
                Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < results.size(); ++i) {
        const bool byLevel = i == bareIsActiveRow + 1 || i == barePrintlnRow + 1;
        const bool byClass = i == bareIsActiveRow + 2 || i == barePrintlnRow + 2;
        const Result &bare = results[i < barePrintlnRow ? bareIsActiveRow : barePrintlnRow];
        if (byLevel || byClass)
            table.row(results[i], bare, byLevel ? 1.2 : 1.5);
        else
            table.row(results[i], results[bareIsActiveRow]);
        if (oneThread && (byLevel || byClass))
            table.row(results[i], (*oneThread)[i], 1.3);
    }
}

void printBesideWriter(moduleId module, const QString &text)
{
    const auto write = [module, &text] { Debug::println(module, enabledClass, text, 0); };
    const auto bare =
        repeated([module] { benchmark::DoNotOptimize(bareIsActive(module, refusedLevel, enabledClass)); });
    const auto byLevel =
        repeated([module] { benchmark::DoNotOptimize(Debug::isActive(module, refusedLevel, enabledClass)); });
    const auto byClass = repeated(
        [module] { benchmark::DoNotOptimize(Debug::isActive(module, passingLevel, disabledClass)); });
    const std::vector<Result> results =
        measure(setup,
                {{"bare isActive(), alone", bare},
                 {"isActive(), by level, alone", byLevel},
                 {"isActive(), by class, alone", byClass},
                 {"bare isActive(), beside a writer", bare, 1, write},
                 {"isActive(), by level, beside a writer", byLevel, 1, write},
                 {"isActive(), by class, beside a writer", byClass, 1, write}});
    Table table("Refused messages while another thread writes the file", Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < 3; ++i)
        table.row(results[i]);
    table.row(results[3], results[0]);
    table.row(results[4], results[1], 1.1);
    table.row(results[5], results[2], 1.1);
}

} // namespace

int main()
{
    startLibrary();
    setFlags("activateFileProtocol,displayModuleName");
    const moduleId module = makeModule("Measured");
    Debug::setOutputReceiver(module, ignoreLine);
    Debug::setClippingLevel(module, clippingLevel);
    const QString text = QString::fromLatin1(messageText);

    std::vector<Subject> all = subjects(module, text);
    for (Subject &peer : peerSubjects(&Peer::refused, {"spdlog"}))
        all.push_back(std::move(peer));
    const auto middle = static_cast<std::ptrdiff_t>(all.size());
    const std::vector<Result> results = measure(setup, onThreads({1, 2}, all));
    const std::vector<Result> oneThread(results.begin(), results.begin() + middle);
    print(oneThread, nullptr);
    print({results.begin() + middle, results.end()}, &oneThread);
    printBesideWriter(module, text);
}
