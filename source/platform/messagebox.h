#pragma once

/// A message box that needs neither Qt nor an event loop of this process.

#include <string>

namespace Zorvan::platform {

enum class BoxAnswer {
    None = 0, ///< no display, no way to show the box, or closed without an answer
    Abort = 3,
    Retry = 4,
    Ignore = 5,
};

/// Shows \a text (Latin-1) under \a title with the buttons Abort, Retry and Ignore and waits for the answer,
/// without a time limit. Any thread; several boxes may be open at once.
///
/// POSIX: a helper program shows it (see boxHelperName); it gets title and text as two Latin-1 arguments and
/// answers on its standard output with one word, "abort", "retry", "ignore" or "closed"; of a text longer
/// than 100 KiB only the beginning is shown. Without a display or a helper the text goes to standard error,
/// whole, and the answer is None.
[[nodiscard]] BoxAnswer nativeMessageBox(const std::string &title, const std::string &text);

/// File name of the helper program: looked for in the folder of the environment's ZORVAN_HELPERS, then beside
/// the library, then in the subfolder "zorvandebug" there, where it is installed, then in the folder of the
/// executable; last, the system's "xmessage" is tried.
extern const char *const boxHelperName;

} // namespace Zorvan::platform
