#include "platform/messagebox.h"

#include <windows.h>

namespace Zorvan::platform {
namespace {

// The first 256 characters of Unicode are those of Latin-1.
std::wstring fromLatin1(const std::string &text)
{
    std::wstring wide;
    wide.reserve(text.size());
    for (const char c : text)
        wide.push_back(static_cast<unsigned char>(c));
    return wide;
}

} // namespace

const char *const boxHelperName = "zorvan-messagebox.exe";

BoxAnswer nativeMessageBox(const std::string &title, const std::string &text)
{
    const int button = MessageBoxW(nullptr, fromLatin1(text).c_str(), fromLatin1(title).c_str(),
                                   MB_ABORTRETRYIGNORE | MB_ICONERROR | MB_TASKMODAL | MB_SETFOREGROUND);
    switch (button) {
    case IDABORT:
        return BoxAnswer::Abort;
    case IDRETRY:
        return BoxAnswer::Retry;
    case IDIGNORE:
        return BoxAnswer::Ignore;
    default:
        return BoxAnswer::None;
    }
}

} // namespace Zorvan::platform
