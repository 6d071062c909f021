#pragma once

#include <QString>

namespace bench {

/// Do nothing, with the arguments of Debug::isActive() and Debug::println(): the price of the call alone.
__attribute__((visibility("default"))) bool bareIsActive(int module, int level, int cls);
__attribute__((visibility("default"))) void barePrintln(int module, int cls, const QString &text, int level,
                                                        int reserved = 0, const char *file = nullptr,
                                                        int line = -1);

} // namespace bench
