#include "debug/lineheader.h"

#include "debug/displayflags.h"
#include "host/hosthandlers.h"

#include <QDateTime>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Zorvan {

namespace {

constexpr int allClasses = -1;
constexpr int microsPerSecond = 1'000'000;
constexpr double longestElapsed = 1e11; // seconds; keeps a broken counter inside the range of dates

/// The clock of the time stamps: the wall clock at the first stamped line of the process, moved on by the
/// host's high-resolution counter, so that later changes of the wall clock do not show. Guarded by the
/// table's lock.
class StampClock
{
public:
    /// Appends "hh:mm:ss.mmm.uuu: ".
    void append(std::string &line, HostCalls hostCalls);

private:
    void start(HostCalls hostCalls);
    [[nodiscard]] double elapsedSeconds(HostCalls hostCalls) const;

    bool m_started = false;
    quint64 m_startCount = 0;
    QDateTime m_startTime;
    qint64 m_textSecond = 0; // whole seconds since the start that m_text stands for
    std::string m_text; // "hh:mm:ss": formatting a date costs more than writing a line
};

/// Writes ".ddd"; returns the place behind it. A general formatter would take longer than all the rest of the
/// header.
char *writeThreeDigits(char *to, int number)
{
    *to++ = '.';
    *to++ = static_cast<char>('0' + number / 100);
    *to++ = static_cast<char>('0' + number / 10 % 10);
    *to++ = static_cast<char>('0' + number % 10);
    return to;
}

StampClock &stampClock()
{
    static auto *clock = new StampClock; // never destroyed: static objects of the host may print
    return *clock;
}

void StampClock::start(HostCalls hostCalls)
{
    m_started = true; // first: the host's counter may print
    m_startTime = QDateTime::currentDateTime();
    if (hostCalls == HostCalls::Allowed)
        m_startCount = host::readCount();
}

double StampClock::elapsedSeconds(HostCalls hostCalls) const
{
    if (hostCalls == HostCalls::Forbidden)
        return 0.0;
    const host::CounterReading now = host::readCounter();
    if (!(now.frequency > 0.0))
        return 0.0;
    // The difference is signed: a counter may step back.
    const double elapsed = static_cast<double>(static_cast<qint64>(now.count - m_startCount)) / now.frequency;
    return std::clamp(elapsed, -longestElapsed, longestElapsed);
}

void StampClock::append(std::string &line, HostCalls hostCalls)
{
    if (!m_started)
        start(hostCalls);
    const double elapsed = elapsedSeconds(hostCalls);
    const auto whole = static_cast<qint64>(elapsed);
    const double fraction = elapsed - static_cast<double>(whole);
    const int micros = std::clamp(static_cast<int>(fraction * microsPerSecond), 0, microsPerSecond - 1);
    if (whole != m_textSecond || m_text.empty()) {
        m_text = m_startTime.addSecs(whole).toString(QStringLiteral("hh:mm:ss")).toStdString();
        m_textSecond = whole;
    }
    line += m_text;
    char piece[] = ".mmm.uuu: ";
    writeThreeDigits(writeThreeDigits(piece, micros / 1000), micros % 1000);
    line.append(piece, sizeof piece - 1);
}

void appendThread(std::string &line, HostCalls hostCalls)
{
    char piece[48];
    IThraedInterface *const handler = host::threadHandler();
    if (handler == nullptr) {
        line.append(piece,
                    static_cast<std::size_t>(
                        std::snprintf(piece, sizeof piece, "(thread %p) ", platform::currentThreadId())));
        return;
    }
    const char *const given = hostCalls == HostCalls::Allowed ? handler->threadName() : nullptr;
    const std::string_view name = given ? given : "";
    constexpr std::size_t nameWidth = 15; // shorter names are right-aligned, longer ones never cut
    char frame[] = "(                thread) ";
    if (name.size() <= nameWidth) {
        std::memcpy(frame + 1 + nameWidth - name.size(), name.data(), name.size());
        line.append(frame, sizeof frame - 1);
        return;
    }
    line += '(';
    line += name;
    line += " thread) ";
}

} // namespace

void appendLineHeader(std::string &line, moduleId id, int cls, int level, unsigned flags, HostCalls hostCalls)
{
    using namespace displayflags;
    if (has(flags, timeStamp))
        stampClock().append(line, hostCalls);
    if (has(flags, threadId))
        appendThread(line, hostCalls);
    const Module *const module = id < moduleTable().count() ? moduleTable().find(id) : nullptr;
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
