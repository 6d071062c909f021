#pragma once

#include "debug/moduletable.h"

namespace Zorvan {

constexpr int noticeLevel = 3; // info

/// Prints something that the library has to say of itself, if its own module lets it through.
inline void printNotice(const QString &text)
{
    if (Debug::isActive(libraryModule, noticeLevel, 0))
        Debug::println(libraryModule, 0, text, noticeLevel);
}

} // namespace Zorvan
