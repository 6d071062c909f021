#pragma once

#include "host/displayflagkeys.h"

/// The word of display flags. Any thread.

namespace Zorvan::displayflags {

[[nodiscard]] unsigned word();
[[nodiscard]] inline bool has(unsigned word, Flag flag)
{
    return (word & flag) != 0;
}
/// Changes one flag and prints the notice about all of them.
void change(Flag flag, bool on);
/// Back to the default: module name, class and level are shown.
void reset();

} // namespace Zorvan::displayflags
