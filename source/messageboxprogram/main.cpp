/// Shows a box with the title and the text of its two arguments (Latin-1) until somebody answers, and prints
/// the answer: "abort", "retry", "ignore", or "closed" if the box was closed without one; nothing if it was
/// not shown. The exit code is 0 if it was.

#include "box.h"

#include <QApplication>
#include <QDialog>

#include <cstdio>

namespace {

constexpr int notShown = 2;

/// A host may run without a display of its own although there is one; nobody could answer then.
bool isUnseen(const QString &platform)
{
    return platform == QLatin1String("offscreen") || platform.startsWith(QLatin1String("minimal"));
}

} // namespace

int main(int count, char **arguments)
{
    if (count != 3) {
        std::fputs("usage: zorvan-messagebox TITLE TEXT\n", stderr);
        return notShown;
    }
    const QString title = QString::fromLatin1(arguments[1]);
    const QString text = QString::fromLatin1(arguments[2]);
    int ownCount = 1; // the texts are no options, whatever they look like
    const QApplication application(ownCount, arguments);
    if (isUnseen(QGuiApplication::platformName()))
        return notShown;
    std::puts(answerWord(makeBox(title, text)->exec()));
    return 0;
}
