// Draws message boxes, without their frames, into PNG files, for people to look at: looks FOLDER

#include "debugserverqueue/debugmessagedialog.h"
#include "debugwindow/fontweight.h"
#include "pictures.h"

namespace {

using namespace Zorvan;

struct Sample
{
    const char *name;
    BoxContent content;
    bool isSmall = false;
};

DisplaySettings settingsFor(bool isSmall)
{
    DisplaySettings settings;
    settings.area.size = isSmall ? QSize(320, 240) : QSize(1024, 768);
    settings.fontFamily = isSmall ? QStringLiteral("Lucinda Sans Unicode") : QStringLiteral("Arial");
    settings.fontSizePt = isSmall ? 7 : 10;
    settings.fontWeight = fontweight::normal;
    return settings;
}

QString words(int count)
{
    return QStringLiteral("The output stage was switched off") + QStringLiteral(" again").repeated(count - 6);
}

QString article()
{
    QString text = QStringLiteral("<h2>Calibration report</h2>");
    for (int section = 1; section <= 12; ++section) {
        text += QStringLiteral("<p><b>Step %1.</b> ").arg(section) + words(60)
            + QStringLiteral("</p><ul><li>attenuator <i>A%1</i></li><li>reference</li></ul>").arg(section);
    }
    return text;
}

BoxContent box(const QString &heading, const QString &message, int icon, std::array<int, 3> buttons)
{
    return {QStringLiteral("Signal generator"), heading, message, true, icon, buttons};
}

std::vector<Sample> samples()
{
    const QString title = QStringLiteral("Level too high");
    const QString question = QStringLiteral("Switch the output stage off & on again?");
    const QString symbol =
        QStringLiteral("std::vector<std::pair<int,std::unique_ptr<Generator>>>").repeated(4);
    const QString readings = QStringLiteral("Channel   Level    Limit\n    1     -3.2 dBm  < 0 dBm\n\n"
                                            "Reduce the level of channel 2, or raise its limit.");
    return {
        {"plain", box({}, QStringLiteral("The self test has passed."), 0, {1, 0, 0})},
        {"heading-and-body", box(title, readings, 2, {1, 2 + 16, 0})},
        {"own-heading", box({}, QStringLiteral("<h1>Great</h1>All <b>channels</b> are fine."), 1, {1, 0, 0})},
        {"critical", box({}, QStringLiteral("The synthesizer has lost its lock."), 3, {5, 6 + 16, 7})},
        {"three-buttons", box(title, question, 4, {3, 4 + 16, 2})},
        {"long-line", box({}, words(90), 2, {1, 0, 0})},
        {"long-word-in-body", box(title, symbol, 3, {5, 6, 7})},
        {"rich-scrolls", box({}, article(), 1, {1, 2, 0})},
        {"long-heading", box({}, words(5000), 2, {1, 2, 0})},
        {"small-body", box(title, readings, 2, {1, 2, 0}), true},
        {"small-buttons", box(title, question, 4, {5, 6, 7}), true},
        {"small-scrolls", box({}, article(), 1, {3, 4, 2}), true},
        {"small-word", box({}, symbol, 3, {5, 6, 7}), true},
    };
}

} // namespace

int main(int argc, char **argv)
{
    return looks::drawInto(argc, argv, [](const QDir &folder) {
        bool isComplete = true;
        for (const bool isDark : {false, true}) {
            looks::setGround(isDark ? looks::dark : looks::light);
            for (const Sample &sample : samples()) {
                debugMessageDialog dialog(sample.content, settingsFor(sample.isSmall));
                dialog.show();
                const QString ending = QLatin1String(isDark ? "-dark.png" : ".png");
                isComplete = looks::save(dialog, folder, QLatin1String(sample.name) + ending) && isComplete;
            }
        }
        return isComplete;
    });
}
