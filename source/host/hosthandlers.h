#pragma once

/// What the host handed in, and the settings, clock and line tap reached through it.
///
/// Any thread. Each function reads the handler once, so that replacing a handler meanwhile is safe as long as
/// the host keeps the old object alive until calls in progress have returned. Without a handler: neutral
/// values.

#include <zorvan/debug.h>

namespace Zorvan::host {

/// The group of all settings that name no other one.
extern const char *const settingsGroup;

void setUtilityHandler(IUtilityInterface *handler);
[[nodiscard]] IUtilityInterface *utilityHandler();
void setThreadHandler(IThraedInterface *handler);
[[nodiscard]] IThraedInterface *threadHandler();
void setKeyHandler(IKeyInterface *handler);
[[nodiscard]] IKeyInterface *keyHandler();
void setMessageBoxHandler(IMessageBoxInterface *handler);
[[nodiscard]] IMessageBoxInterface *messageBoxHandler();

[[nodiscard]] int readInteger(const QString &key, int defaultValue);
[[nodiscard]] int readInteger(const char *group, const QString &key, int defaultValue);
[[nodiscard]] QString readString(const QString &key, const QString &defaultValue);
void writeString(const QString &key, const QString &value);

/// One reading of the host's high-resolution counter with its frequency in counts per second.
struct CounterReading
{
    quint64 count = 0;
    double frequency = 3902.0;
};
[[nodiscard]] CounterReading readCounter();
/// The count alone: what asking for the frequency takes is not measured.
[[nodiscard]] quint64 readCount();

} // namespace Zorvan::host
