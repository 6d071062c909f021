#include "platform/text_windows_p.h"

#include <windows.h>

namespace Zorvan::platform {

std::wstring wideText(std::string_view utf8)
{
    const int bytes = static_cast<int>(utf8.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), length);
    return wide;
}

std::string utf8Text(std::wstring_view wide)
{
    const int units = static_cast<int>(wide.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), length, nullptr, nullptr);
    return utf8;
}

WidePath::WidePath(const char *utf8)
{
    const int capacity = static_cast<int>(m_text.size());
    if (utf8 == nullptr
        || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, m_text.data(), capacity) == 0)
        m_text.front() = L'\0';
}

} // namespace Zorvan::platform
