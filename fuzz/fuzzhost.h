#pragma once

#include <zorvan/debug.h>

#include <QMap>

#include <cstdio>

/// Keeps the settings in memory, and the last line.
class Host final : public Zorvan::IUtilityInterface
{
public:
    /// Hands itself in. No file can be made: inputs may name one and switch it on.
    Host()
    {
        stdout = std::fopen("/dev/null", "w");
        qputenv("ZORVAN_PROGRAMDATA", "/dev/null");
        Zorvan::Debug::setUtilityCallbackHandler(this);
    }
    int readIntegerSetting(const char *, const QString &key, int defaultValue) override
    {
        return m_settings.contains(key) ? m_settings[key].toInt() : defaultValue;
    }
    QString readStringSetting(const char *, const QString &key, const QString &defaultValue) override
    {
        return m_settings.value(key, defaultValue);
    }
    void writeStringSetting(const char *, const QString &key, const QString &value) override
    {
        m_settings[key] = value;
    }
    void outputLine(const QString &line) override { m_lastLine = line; }

    [[nodiscard]] QMap<QString, QString> &settings() { return m_settings; }
    /// Whether the library prints, with the configuration of its start.
    bool prints(Zorvan::moduleId module)
    {
        using Zorvan::Debug;
        Debug::enableSettings({});
        Debug::setOutputFilter({});
        Debug::setLevelFilter({});
        Debug::enableLevel(module, QStringLiteral("full"));
        Debug::enableClasses(module, QStringLiteral("all"));
        m_lastLine.clear();
        Debug::println(module, 1, QStringLiteral("still here"), levels - 1);
        return m_lastLine.endsWith(QLatin1String("still here"));
    }

    static constexpr int levels = 3;

private:
    QMap<QString, QString> m_settings;
    QString m_lastLine;
};

inline void describe(Zorvan::moduleId module)
{
    const char *levelNames[Host::levels] = {"<Critical>: ", "<   Error>: ", "<    Info>: "};
    Zorvan::Debug::setMessageLevelDescriptions(module, Host::levels, levelNames);
    const char *classNames[] = {"<debug message>, ", "<  time, meas  >, ", "<note>, "};
    Zorvan::Debug::setMessageClassDescriptions(module, 3, classNames);
}

inline Zorvan::moduleId createDescribedModule(const char *name)
{
    const Zorvan::moduleId module = Zorvan::Debug::createModule(name, name);
    describe(module);
    return module;
}
