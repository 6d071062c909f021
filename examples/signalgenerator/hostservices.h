#pragma once

#include "syslogsender.h"

#include <zorvan/debug.h>

#include <QSettings>

#include <atomic>
#include <memory>
#include <mutex>

namespace SignalGenerator {

/// Whether somebody sits before the instrument who could answer a message box.
enum class MessageBoxes { Refused, Allowed };

/// What this host lends to the library: settings in an ini file, a clock and a line tap.
///
/// The library calls it from every printing thread while the module table is locked. So nothing in here
/// prints or waits for a thread that does; the mutex is held for the access to the file alone.
class HostServices : public Zorvan::IUtilityInterface
{
public:
    /// Without a file name every setting has its default and changes are forgotten. \a collector gets every
    /// line of the line tap; null: nobody does.
    explicit HostServices(const QString &settingsFile, MessageBoxes boxes = MessageBoxes::Refused,
                          SyslogSender *collector = nullptr);

    int readIntegerSetting(const char *group, const QString &key, int defaultValue) override;
    QString readStringSetting(const char *group, const QString &key, const QString &defaultValue) override;
    void writeStringSetting(const char *group, const QString &key, const QString &value) override;
    void outputLine(const QString &line) override;
    bool messageBoxesAllowed() override;
    double counterFrequency() override;
    quint64 readCounter() override;

    /// How many lines came through the line tap so far.
    [[nodiscard]] quint64 tappedLines() const { return m_tappedLines; }

private:
    const MessageBoxes m_messageBoxes;
    SyslogSender *const m_collector;
    std::mutex m_mutex; // guards m_settings
    std::unique_ptr<QSettings> m_settings;
    std::atomic<quint64> m_tappedLines{0};
};

} // namespace SignalGenerator
