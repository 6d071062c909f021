// Draws the debug window, without its frame, into PNG files, for people to look at: looks_window FOLDER
// QT_SCALE_FACTOR=2 in the environment draws it for a display of double density.

#include "debugwindow/debugwindow.h"

#include "debugwindow/protocolwidget.h"
#include "debugwindow/viewcommands.h"

#include <QApplication>
#include <QDir>
#include <QInputDialog>
#include <QTimer>

#include <cstdio>

namespace {

using namespace Zorvan;

class NoHandler : public IHookInterface
{
public:
    void hookActivated(char *, char *) override {}
};

const char *const lines =
    "10:14:02.113 (         main thread) <   Kernel> info    : firmware 4.71.122 started\n"
    "10:14:02.140 (         main thread) < Database> debug   : 812 parameters loaded\n"
    "10:14:02.588 (     hardware thread) <  RfPath> \x1b[32mreference locked at 10 MHz\x1b[0m\n"
    "10:14:03.001 (     hardware thread) <  RfPath> info    : level -12.5 dBm, limit 0 dBm\n"
    "10:14:03.877 (         scpi thread) <    Scpi> command: FREQ 1.2 GHZ; LEVEL -3 dBm\n"
    "10:14:04.012 (     hardware thread) <  RfPath> \x1b[31mError: level too high\x1b[0m\n"
    "10:14:04.013 (         main thread) <   Kernel> \x1b[44;37mstate saved\x1b[0m\n"
    "10:14:04.019 (         scpi thread) <    Scpi> answer : 0,\"No error\"";

/// Answers the input dialog that the command opens.
void answer(QProtocolWidget &view, ViewCommand command, const QString &text)
{
    QTimer::singleShot(0, [text] {
        if (auto *const dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget())) {
            dialog->setTextValue(text);
            dialog->accept();
        }
    });
    view.command(static_cast<int>(command));
}

void fill(DebugWindow &window)
{
    window.refreshHooks();
    for (int i = 0; i < 40; ++i)
        window.appendOutput(lines);
    for (const char *const parameter : {"off", "level -3 dBm", "frequency 1.2 GHz"})
        window.enteredInput(QLatin1String(parameter));
    auto &view = *window.findChild<QProtocolWidget *>();
    view.command(static_cast<int>(ViewCommand::ShowLineNumbers));
    answer(view, ViewCommand::AddMarker, QStringLiteral("dBm"));
    answer(view, ViewCommand::AddMarker, QStringLiteral("Scpi"));
    answer(view, ViewCommand::Find, QStringLiteral("level"));
}

struct Sample
{
    const char *name;
    QSize size;
    int backgroundLightness;
    bool hasHooks = true;
    bool isServed = false;
};

bool draw(const Sample &sample, const QString &path)
{
    QApplication::setPalette(QColor::fromHsv(0, 0, sample.backgroundLightness));
    NoHandler handler;
    if (sample.hasHooks)
        Debug::installHook("CalibrateOutputLevel", &handler, true);
    DebugWindow window{QString()};
    window.resize(sample.size);
    window.show();
    fill(window);
    window.setClientsConnected(sample.isServed);
    QApplication::processEvents();
    const bool isSaved = window.grab().save(path);
    std::printf("%-24s %4d x %4d\n", qPrintable(path.section(QLatin1Char('/'), -1)), window.width(),
                window.height());
    Debug::removeHook("CalibrateOutputLevel", &handler);
    return isSaved;
}

} // namespace

int main(int argc, char **argv)
{
    Debug::initDebug(); // before the application: the library then has no window of its own
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 || !QDir().mkpath(arguments.at(1))) {
        std::fprintf(stderr, "usage: looks_window FOLDER\n");
        return 2;
    }
    QApplication::setStyle(QStringLiteral("fusion")); // the same on every desktop
    const Sample samples[] = {
        {"window.png", {1000, 400}, 239},
        {"window-dark.png", {1000, 400}, 53},
        {"window-narrow.png", {320, 400}, 239},
        {"window-no-hooks.png", {800, 200}, 239, false},
        {"window-served.png", {800, 200}, 53, true, true},
    };
    bool isComplete = true;
    for (const Sample &sample : samples)
        isComplete = draw(sample, QDir(arguments.at(1)).filePath(QLatin1String(sample.name))) && isComplete;
    return isComplete ? 0 : 1;
}
