#pragma once

#include "platform/lock.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Zorvan {

/// One method in one thread. All times are cycles of the processor's counter.
struct MethodRow
{
    std::string name;
    quint64 thread = 0; ///< the system's number
    int calls = 0;
    qint64 totalCycles = 0;
    qint64 overheadCycles = 0; ///< of the measurement itself
};

/// What is told of all methods at once.
struct AnalysisReport
{
    qint64 totalCycles = 0; ///< of all rows
    quint64 earliestStamp = 0; ///< of the counter
    quint64 latestStamp = 0;
    bool isAskedFor = false; ///< by the user of the window, who is waiting for it
    std::vector<MethodRow> rows{};
    unsigned ends = 0; ///< of the library when it began, see TableState
};

/// Puts reports together, which come piece by piece on any thread, and hands them to the thread of this
/// object. Each thread makes a report of its own. Only the latest complete one is handed over, or the latest
/// that was asked for.
///
/// Nothing throws: a report for which there is no memory is dropped.
class AnalysisReports : public QObject
{
public:
    using Take = std::function<void(AnalysisReport report)>;

    /// Calls \a take in the thread of this object, with no lock held; it may delete this object.
    AnalysisReports(QObject *parent, Take take);

    /// \name Any thread, as long as this object lives. Rows and ends without a beginning are ignored.
    /// @{
    void begin(AnalysisReport summary) noexcept;
    void add(const char *name, MethodRow row) noexcept;
    void complete() noexcept;
    /// Drops all reports that were not handed over, also those that are not complete.
    void drop() noexcept;
    /// @}

protected:
    bool event(QEvent *event) override;

private:
    [[nodiscard]] std::optional<AnalysisReport> takeComplete();

    const Take m_take;
    platform::Mutex m_lock; // also held to post
    std::map<std::uint64_t, AnalysisReport> m_open ZORVAN_GUARDED_BY(m_lock); // by the system's thread number
    std::optional<AnalysisReport> m_complete ZORVAN_GUARDED_BY(m_lock); // an event is on its way for it
};

} // namespace Zorvan
