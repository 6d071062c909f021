#include "hostservices.h"

#include <QStringList>

#include <chrono>

namespace SignalGenerator {

namespace {

using Nanoseconds = std::chrono::duration<quint64, std::nano>;

QString path(const char *group, const QString &key)
{
    return QString::fromLatin1(group) + QLatin1Char('/') + key;
}

} // namespace

HostServices::HostServices(const QString &settingsFile, MessageBoxes boxes, SyslogSender *collector)
    : m_messageBoxes(boxes)
    , m_collector(collector)
    , m_settings(settingsFile.isEmpty() ? nullptr
                                        : std::make_unique<QSettings>(settingsFile, QSettings::IniFormat))
{}

int HostServices::readIntegerSetting(const char *group, const QString &key, int defaultValue)
{
    bool isNumber = false;
    const int value = readStringSetting(group, key, QString()).toInt(&isNumber);
    return isNumber ? value : defaultValue;
}

QString HostServices::readStringSetting(const char *group, const QString &key, const QString &defaultValue)
{
    if (m_collector != nullptr && key == QLatin1String("DebugServerShowModule"))
        return QStringLiteral("On"); // the line is all that the tap gets: the module has to be in it
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!m_settings)
        return defaultValue;
    const QVariant value = m_settings->value(path(group, key));
    // QSettings takes "debug,time" without quotes for a list of two texts.
    return value.isValid() ? value.toStringList().join(QLatin1Char(',')) : defaultValue;
}

void HostServices::writeStringSetting(const char *group, const QString &key, const QString &value)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_settings)
        m_settings->setValue(path(group, key), value);
}

void HostServices::outputLine(const QString &line)
{
    ++m_tappedLines;
    if (m_collector == nullptr)
        return;
    const QByteArray latin1 = line.toLatin1();
    m_collector->forward({latin1.constData(), static_cast<std::size_t>(latin1.size())},
                         Zorvan::Debug::getDisplayFlags());
}

bool HostServices::messageBoxesAllowed()
{
    return m_messageBoxes == MessageBoxes::Allowed;
}

double HostServices::counterFrequency()
{
    return static_cast<double>(Nanoseconds::period::den);
}

quint64 HostServices::readCounter()
{
    return std::chrono::duration_cast<Nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace SignalGenerator
