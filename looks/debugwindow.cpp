// Draws the debug window, without its frame, into PNG files, for people to look at: looks_window FOLDER

#include "debugwindow/debugwindow.h"

#include "debugwindow/protocolwidget.h"
#include "debugwindow/viewcommands.h"
#include "pictures.h"

#include <QInputDialog>
#include <QTimer>

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
    int lightness;
    bool hasHooks = true;
    bool isServed = false;
};

bool draw(const Sample &sample, const QDir &folder)
{
    looks::setGround(sample.lightness);
    NoHandler handler;
    if (sample.hasHooks)
        Debug::installHook("CalibrateOutputLevel", &handler, true);
    DebugWindow window{QString()};
    window.resize(sample.size);
    window.show();
    fill(window);
    window.setClientsConnected(sample.isServed);
    const bool isSaved = looks::save(window, folder, QLatin1String(sample.name));
    Debug::removeHook("CalibrateOutputLevel", &handler);
    return isSaved;
}

} // namespace

int main(int argc, char **argv)
{
    Debug::initDebug(); // before the application: the library then has no window of its own
    const Sample samples[] = {
        {"window.png", {1000, 400}, looks::light},
        {"window-dark.png", {1000, 400}, looks::dark},
        {"window-narrow.png", {320, 400}, looks::light},
        {"window-no-hooks.png", {800, 200}, looks::light, false},
        {"window-served.png", {800, 200}, looks::dark, true, true},
    };
    return looks::drawInto(argc, argv, [&](const QDir &folder) {
        return looks::drawAll(samples, [&](const Sample &sample) { return draw(sample, folder); });
    });
}
