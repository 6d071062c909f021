#pragma once

#include "debug/moduletable.h"

#include <QDateTime>

#include <string>

namespace Zorvan {

/// The clock of the time stamps: the wall clock at the first stamped line of the process, moved on by the host's
/// high-resolution counter, so that later changes of the wall clock do not show. Guarded by the table's lock.
class StampClock
{
public:
    /// Appends "hh:mm:ss.mmm.uuu: ".
    void append(std::string &line);

private:
    void start();
    [[nodiscard]] double elapsedSeconds() const;

    bool m_started = false;
    quint64 m_startCount = 0;
    QDateTime m_startTime;
    qint64 m_textSecond = -1; // whole seconds since the start that m_text stands for
    std::string m_text;       // "hh:mm:ss": formatting a date costs more than writing a line
};

/// Appends the header of a line as the display flags want it: time stamp, thread, module, class, level.
void appendLineHeader(std::string &line, moduleId module, int cls, int level, unsigned displayFlags)
    ZORVAN_REQUIRES(moduleTable().lock());

} // namespace Zorvan
