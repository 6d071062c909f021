#pragma once

#include "hostservices.h"
#include "threadnames.h"

#include <zorvan/debug.h>

namespace SignalGenerator {

/// Runs the library for as long as it lives: make it first in main(), behind the application object if there
/// is one, and let all printing threads end before it.
class DebugSession
{
public:
    explicit DebugSession(const QString &settingsFile, MessageBoxes boxes = MessageBoxes::Refused)
        : m_services(settingsFile, boxes)
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
    }
    DebugSession(const DebugSession &) = delete;
    DebugSession &operator=(const DebugSession &) = delete;

    [[nodiscard]] const HostServices &services() const { return m_services; }

private:
    HostServices m_services;
    ThreadNames m_threadNames;
};

} // namespace SignalGenerator
