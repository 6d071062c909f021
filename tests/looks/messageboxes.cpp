#include "album.h"
#include "debugserverqueue/debugmessagedialog.h"

#include <QApplication>
#include <QPalette>

namespace Zorvan::looks {

namespace {

constexpr QSize desktop{1024, 768};
constexpr QSize small{320, 240};

struct Sample
{
    const char *name;
    BoxContent content;
    QSize display = desktop;
};

DisplaySettings settingsFor(QSize display)
{
    DisplaySettings settings;
    settings.area.size = display;
    const bool wide = isWide(settings.area);
    settings.fontFamily = wide ? QStringLiteral("Arial") : QStringLiteral("Lucinda Sans Unicode");
    settings.fontSizePt = wide ? 10 : 7;
    settings.fontWeight = QFont::Normal;
    return settings;
}

QString words(int count)
{
    QString text = QStringLiteral("The output stage was switched off");
    for (int number = 6; number < count; ++number)
        text += number % 12 ? QStringLiteral(" again") : QStringLiteral(", and checked");
    return text + QLatin1Char('.');
}

QString readings()
{
    return QStringLiteral("Channel   Level    Limit\n"
                          "    1     -3.2 dBm  < 0 dBm\n"
                          "    2     +1.7 dBm  < 0 dBm & rising\n"
                          "\n"
                          "Reduce the level of channel 2, or raise its limit.");
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

QString symbol()
{
    return QStringLiteral("std::map<std::string,std::vector<std::pair<int,std::unique_ptr<Generator>>>>")
               .repeated(3)
        + QStringLiteral("::find");
}

BoxContent box(const QString &heading, const QString &message, int icon, std::array<int, 3> buttons)
{
    return {QStringLiteral("Signal generator"), heading, message, true, icon, buttons};
}

std::vector<Sample> samples()
{
    const QString title = QStringLiteral("Level too high");
    const QString question = QStringLiteral("Switch the output stage off & on again?");
    BoxContent open = box({}, QStringLiteral("Self test is running ..."), 1, {0, 0, 0});
    open.modal = false;
    return {
        {"plain", box({}, QStringLiteral("The self test has passed."), 0, {1, 0, 0})},
        {"plain-lines", box({}, readings(), 2, {1, 0, 0})},
        {"heading-and-body", box(title, readings(), 2, {1, 2 + 16, 0})},
        {"own-heading", box({}, QStringLiteral("<h1>Great</h1>All <b>channels</b> are fine."), 1, {1, 0, 0})},
        {"own-heading-only", box({}, QStringLiteral("<h2>All channels are fine</h2>"), 1, {1, 0, 0})},
        {"information", box({}, QStringLiteral("Calibrated."), 1, {1, 0, 0})},
        {"warning", box({}, QStringLiteral("The reference is warm."), 2, {1, 0, 0})},
        {"critical", box({}, QStringLiteral("The synthesizer has lost its lock."), 3, {5, 6 + 16, 7})},
        {"question", box({}, question, 4, {3, 4, 0})},
        {"three-buttons", box(title, question, 4, {3, 4 + 16, 2})},
        {"long-line", box({}, words(90), 2, {1, 0, 0})},
        {"long-body-line", box(title, words(120), 2, {1, 0, 0})},
        {"long-word", box({}, symbol(), 3, {5, 6, 7})},
        {"long-word-in-body", box(title, symbol(), 3, {5, 6, 7})},
        {"rich-scrolls", box({}, article(), 1, {1, 2, 0})},
        {"rich-with-heading", box(title, QStringLiteral("<p>") + words(60), 0, {1, 2, 0})},
        {"long-heading", box({}, words(5000), 2, {1, 2, 0})},
        {"open", open},
        {"small-plain", box({}, QStringLiteral("The self test has passed."), 1, {1, 0, 0}), small},
        {"small-body", box(title, readings(), 2, {1, 2, 0}), small},
        {"small-buttons", box(title, question, 4, {5, 6, 7}), small},
        {"small-scrolls", box({}, article(), 1, {3, 4, 2}), small},
        {"small-long-line", box({}, words(50), 2, {1, 0, 0}), small},
        {"small-long-heading", box({}, words(200), 2, {1, 0, 0}), small},
        {"small-word", box({}, symbol(), 3, {5, 6, 7}), small},
    };
}

void addSamples(Album &album, const QPalette &palette, const QString &suffix)
{
    QApplication::setPalette(palette);
    for (const Sample &sample : samples()) {
        debugMessageDialog dialog(sample.content, settingsFor(sample.display));
        album.add(dialog, QLatin1String(sample.name) + suffix);
    }
}

} // namespace

void addMessageBoxes(Album &album)
{
    addSamples(album, lightPalette(), QString());
    addSamples(album, darkPalette(), QStringLiteral("-dark"));
}

} // namespace Zorvan::looks
