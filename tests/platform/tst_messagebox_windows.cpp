#include "platform/lock.h"
#include "platform/messagebox.h"
#include "support.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace Zorvan::platform::tests {
namespace {

/// Presses a button as soon as the box is there; keeps the text it saw.
std::wstring press(const wchar_t *title, WORD button)
{
    std::wstring seen;
    eventually([&] {
        const HWND box = FindWindowW(L"#32770", title);
        if (box == nullptr)
            return false;
        constexpr int textControl = 0xFFFF;
        seen.resize(64);
        seen.resize(GetDlgItemTextW(box, textControl, seen.data(), 64));
        return !seen.empty() && PostMessageW(box, WM_COMMAND, button, 0) != 0;
    });
    return seen;
}

TEST(MessageBoxOnWindows, answersWithTheButton)
{
    for (const auto &[button, answer] : {std::pair{IDABORT, BoxAnswer::Abort},
                                         {IDRETRY, BoxAnswer::Retry},
                                         {IDIGNORE, BoxAnswer::Ignore},
                                         {IDCANCEL, BoxAnswer::None}}) {
        std::wstring seen;
        Thread user([&seen, id = button] { seen = press(L"Zorv\u00e4n", static_cast<WORD>(id)); });
        EXPECT_EQ(nativeMessageBox("Zorv\xe4n", "line 1\n\xfc"), answer);
        user.join();
        EXPECT_EQ(seen, L"line 1\n\u00fc");
    }
}

} // namespace
} // namespace Zorvan::platform::tests
