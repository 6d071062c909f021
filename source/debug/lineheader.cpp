#include "debug/lineheader.h"

#include "debug/displayflags.h"
#include "host/hosthandlers.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace Zorvan {

namespace {

constexpr int allClasses = -1;
constexpr int microsPerSecond = 1'000'000;
constexpr double longestElapsed = 1e11; // seconds; keeps a broken counter inside the range of dates

StampClock &stampClock()
{
    static auto *clock = new StampClock; // never destroyed: static objects of the host may print
    return *clock;
}

void appendThread(std::string &line)
{
    char piece[48];
    if (!host::hasThreadHandler()) {
        line.append(piece, static_cast<std::size_t>(std::snprintf(piece, sizeof piece, "(thread %p) ",
                                                                  platform::currentThreadId())));
        return;
    }
    constexpr std::size_t nameWidth = 15; // shorter names are right-aligned, longer ones never cut
    const char *const given = host::threadName();
    const std::string_view name = given ? given : "";
    line += '(';
    line.append(nameWidth - std::min(nameWidth, name.size()), ' ');
    line += name;
    line += " thread) ";
}

} // namespace

void StampClock::start()
{
    m_startTime = QDateTime::currentDateTime();
    m_startCount = host::readCounter().count;
    m_started = true;
}

double StampClock::elapsedSeconds() const
{
    const host::CounterReading now = host::readCounter();
    if (!(now.frequency > 0.0))
        return 0.0;
    // The difference is signed: a counter may step back.
    const double elapsed = static_cast<double>(static_cast<qint64>(now.count - m_startCount)) / now.frequency;
    return std::clamp(elapsed, -longestElapsed, longestElapsed);
}

void StampClock::append(std::string &line)
{
    if (!m_started)
        start();
    const double elapsed = elapsedSeconds();
    const auto whole = static_cast<qint64>(elapsed);
    const double fraction = elapsed - static_cast<double>(whole);
    const int micros = std::clamp(static_cast<int>(fraction * microsPerSecond), 0, microsPerSecond - 1);
    if (whole != m_textSecond || m_text.empty()) {
        m_text = m_startTime.addSecs(whole).toString(QStringLiteral("hh:mm:ss")).toStdString();
        m_textSecond = whole;
    }
    char piece[24];
    line += m_text;
    line.append(piece, static_cast<std::size_t>(std::snprintf(piece, sizeof piece, ".%03d.%03d: ", micros / 1000,
                                                              micros % 1000)));
}

void appendLineHeader(std::string &line, moduleId id, int cls, int level, unsigned flags)
{
    using namespace displayflags;
    if (has(flags, timeStamp))
        stampClock().append(line);
    if (has(flags, threadId))
        appendThread(line);
    ModuleTable &table = moduleTable();
    const Module *const module = id < table.count() ? table.find(id) : nullptr;
    if (has(flags, moduleName))
        line += module ? std::string_view(module->prefix) : "<given module ID out of range>";
    if (module == nullptr)
        return;
    if (has(flags, classDescription))
        line += cls == allClasses ? "<all classes>" : module->classes->text(cls);
    if (has(flags, levelDescription))
        line += module->levels->text(level);
}

} // namespace Zorvan
