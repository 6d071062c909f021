#pragma once

#include "database.h"
#include "hardware.h"
#include "storage.h"
#include "workerthread.h"

#include <atomic>
#include <mutex>

namespace SignalGenerator {

/// Turns the settings of the database into settings of the boards, in the kernel thread.
///
/// Changes that come while a setting is being calculated are collected: the next one covers them all.
class Kernel
{
public:
    Kernel(const Database &database, const Storage &storage, Hardware &hardware);

    /// Sets the boards of these groups anew. Any thread; returns at once.
    void settingsChanged(GroupSet groups);
    /// Outputs one stop of a sweep in place of the database's frequency and level, and waits until it has
    /// settled.
    void settlePoint(const Point &point);
    /// Waits until everything that was changed so far is at the output.
    void waitUntilSettled();

    /// Has the next line of commands timed, from its beginning to its settled output. Called by the last
    /// command of a line, which ends as ever: a setting behind it, in the same line, would be taken for part
    /// of what is timed. A list or sweep that runs meanwhile gets into the times.
    void timeNextSetting();
    /// A line begins or ends. A line that is timed waits for its end until it is at the output.
    void beginLine();
    void endLine();

private:
    void setHardware();
    void handOver(GroupSet changed);
    void setSynthesizer(const Settings &settings, const Point &point);
    void setOutput(const Settings &settings, const Point &point);

    const Database &m_database;
    const Storage &m_storage;
    Hardware &m_hardware;
    std::mutex m_mutex; // guards m_changed
    GroupSet m_changed;
    std::atomic<bool> m_nextIsTimed{false};
    std::atomic<bool> m_isTimed{false};
    WorkerThread m_thread{"kernel"}; // last, so that it ends first
};

} // namespace SignalGenerator
