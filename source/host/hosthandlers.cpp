#include "host/hosthandlers.h"

#include <atomic>

namespace Zorvan::host {

namespace {

std::atomic<IUtilityInterface *> s_utility{nullptr};
std::atomic<IThraedInterface *> s_thread{nullptr};
std::atomic<IKeyInterface *> s_key{nullptr};
std::atomic<IMessageBoxInterface *> s_messageBox{nullptr};

} // namespace

const char *const settingsGroup = "DebugServer";

void setUtilityHandler(IUtilityInterface *handler)
{
    s_utility.store(handler);
}

IUtilityInterface *utilityHandler()
{
    return s_utility.load();
}

void setThreadHandler(IThraedInterface *handler)
{
    s_thread.store(handler);
}

IThraedInterface *threadHandler()
{
    return s_thread.load();
}

void setKeyHandler(IKeyInterface *handler)
{
    s_key.store(handler);
}

IKeyInterface *keyHandler()
{
    return s_key.load();
}

void setMessageBoxHandler(IMessageBoxInterface *handler)
{
    s_messageBox.store(handler);
}

IMessageBoxInterface *messageBoxHandler()
{
    return s_messageBox.load();
}

int readInteger(const QString &key, int defaultValue)
{
    return readInteger(settingsGroup, key, defaultValue);
}

int readInteger(const char *group, const QString &key, int defaultValue)
{
    IUtilityInterface *const handler = s_utility.load();
    return handler ? handler->readIntegerSetting(group, key, defaultValue) : defaultValue;
}

QString readString(const QString &key, const QString &defaultValue)
{
    IUtilityInterface *const handler = s_utility.load();
    return handler ? handler->readStringSetting(settingsGroup, key, defaultValue) : defaultValue;
}

void writeString(const QString &key, const QString &value)
{
    if (IUtilityInterface *const handler = s_utility.load())
        handler->writeStringSetting(settingsGroup, key, value);
}

quint64 readCount()
{
    IUtilityInterface *const handler = s_utility.load();
    return handler ? handler->readCounter() : 0;
}

CounterReading readCounter()
{
    IUtilityInterface *const handler = s_utility.load();
    return handler ? CounterReading{handler->readCounter(), handler->counterFrequency()} : CounterReading{};
}

} // namespace Zorvan::host
