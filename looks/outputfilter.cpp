// Draws the filter dialog, without its frame, into PNG files, for people to look at: looks_filter FOLDER

#include "pictures.h"
#include "settingsdialog/outputfilterdialog.h"

#include <zorvan/debug.h>

#include <QLineEdit>

namespace {

using namespace Zorvan;

struct Sample
{
    const char *name;
    const char *levels;
    const char *text;
    int lightness;
    double fontFactor = 1;
};

bool draw(const Sample &sample, const QDir &folder)
{
    looks::setGround(sample.lightness);
    Debug::setLevelFilter(QLatin1String(sample.levels));
    QWidget parent;
    QFont font = parent.font();
    font.setPointSizeF(font.pointSizeF() * sample.fontFactor);
    parent.setFont(font);
    OutputFilterDialog dialog(&parent);
    dialog.findChild<QLineEdit *>()->setText(QLatin1String(sample.text));
    dialog.show();
    return looks::save(dialog, folder, QLatin1String(sample.name));
}

} // namespace

int main(int argc, char **argv)
{
    Debug::initDebug(); // before the application: the library then has no window of its own
    static_cast<void>(Debug::isActive(2, 0, 0)); // in use
    const Sample samples[] = {
        {"filter.png", "", "", looks::light},
        {"filter-dark.png", "|<       Error>:;Scpi|command", "level -[0-9]+ dBm", looks::dark},
        {"filter-not-valid.png", "", "level (-[0-9]+", looks::light},
        {"filter-large.png", "|<       Error>:", "level", looks::dark, 1.8},
    };
    return looks::drawInto(argc, argv, [&](const QDir &folder) {
        return looks::drawAll(samples, [&](const Sample &sample) { return draw(sample, folder); });
    });
}
