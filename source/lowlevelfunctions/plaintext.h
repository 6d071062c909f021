#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Zorvan {

/// Logs are plain text: a null character, which a conversion can make, becomes a blank.
inline void blankNullCharacters(char *text, std::size_t length)
{
    if (std::memchr(text, '\0', length) != nullptr)
        std::replace(text, text + length, '\0', ' ');
}

} // namespace Zorvan
