// Texts of callers that become printf formats: none may read what was not passed, or grow without bound.

#include "fuzzcheck.h"
#include "lowlevelfunctions/argumentlessformat.h"

#include <algorithm>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string format(reinterpret_cast<const char *>(data), size);
    const std::string text = Zorvan::formatWithoutArguments(format.c_str());
    const std::string visible = format.c_str(); // up to the first NUL
    const auto percents = static_cast<std::size_t>(std::count(visible.begin(), visible.end(), '%'));
    require(percents > 0 || text == visible);
    require(text.size() <= visible.size() + percents * 8300); // the widest single conversion
    return 0;
}
