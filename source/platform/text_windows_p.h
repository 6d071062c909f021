#pragma once

/// Between the UTF-8 of this library and the UTF-16 of the system's functions.

#include <array>
#include <string>
#include <string_view>

namespace Zorvan::platform {

[[nodiscard]] std::wstring wideText(std::string_view utf8);
[[nodiscard]] std::string utf8Text(std::wstring_view wide);

/// A path for one call, on the stack: opening a file allocates nothing. What cannot be a path (null, not
/// UTF-8, too long) becomes the empty text, which names no file.
class WidePath
{
public:
    explicit WidePath(const char *utf8);
    [[nodiscard]] const wchar_t *get() const { return m_text.data(); }

private:
    std::array<wchar_t, 1024> m_text;
};

} // namespace Zorvan::platform
