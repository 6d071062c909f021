#pragma once

#include "hostservices.h"
#include "syslogsession.h"
#include "threadnames.h"

#include <zorvan/debug.h>

#include <memory>
#include <utility>

namespace SignalGenerator {

/// Runs the library for as long as it lives: make it first in main(), behind the application object if there
/// is one, and let all printing threads end before it.
class DebugSession
{
public:
    /// \a collector may be null.
    explicit DebugSession(const QString &settingsFile, MessageBoxes boxes = MessageBoxes::Refused,
                          std::unique_ptr<SyslogSender> collector = nullptr)
        : m_collector(std::move(collector))
        , m_services(settingsFile, boxes, m_collector.get())
    {
        Zorvan::Debug::setUtilityCallbackHandler(&m_services);
        Zorvan::Debug::setThreadCallbackHandler(&m_threadNames);
        Zorvan::Debug::initDebug();
    }
    ~DebugSession()
    {
        Zorvan::Debug::exitDebug();
        Zorvan::Debug::setThreadCallbackHandler(nullptr);
        Zorvan::Debug::setUtilityCallbackHandler(nullptr);
        if (m_collector)
            printReport(m_collector->close());
    }
    DebugSession(const DebugSession &) = delete;
    DebugSession &operator=(const DebugSession &) = delete;

    [[nodiscard]] const HostServices &services() const { return m_services; }

private:
    const std::unique_ptr<SyslogSender> m_collector;
    HostServices m_services;
    ThreadNames m_threadNames;
};

} // namespace SignalGenerator
