// Draws the filter dialog, without its frame, into PNG files, for people to look at: looks_filter FOLDER
// QT_SCALE_FACTOR=2 in the environment draws it for a display of double density.

#include "settingsdialog/outputfilterdialog.h"

#include <zorvan/debug.h>

#include <QApplication>
#include <QDir>
#include <QLineEdit>

#include <cstdio>

namespace {

using namespace Zorvan;

struct Sample
{
    const char *name;
    const char *levels;
    const char *text;
    int backgroundLightness;
    double fontFactor = 1;
};

bool draw(const Sample &sample, const QString &path)
{
    QApplication::setPalette(QColor::fromHsv(0, 0, sample.backgroundLightness));
    Debug::setLevelFilter(QLatin1String(sample.levels));
    QWidget parent;
    QFont font = parent.font();
    font.setPointSizeF(font.pointSizeF() * sample.fontFactor);
    parent.setFont(font);
    OutputFilterDialog dialog(&parent);
    dialog.findChild<QLineEdit *>()->setText(QLatin1String(sample.text));
    dialog.show();
    QApplication::processEvents();
    std::printf("%-24s %4d x %4d\n", qPrintable(path.section(QLatin1Char('/'), -1)), dialog.width(),
                dialog.height());
    return dialog.grab().save(path);
}

} // namespace

int main(int argc, char **argv)
{
    Debug::initDebug(); // before the application: the library then has no window of its own
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 || !QDir().mkpath(arguments.at(1))) {
        std::fprintf(stderr, "usage: looks_filter FOLDER\n");
        return 2;
    }
    QApplication::setStyle(QStringLiteral("fusion")); // the same on every desktop
    static_cast<void>(Debug::isActive(2, 0, 0)); // in use
    const Sample samples[] = {
        {"filter.png", "", "", 239},
        {"filter-dark.png", "|<       Error>:;Scpi|command", "level -[0-9]+ dBm", 53},
        {"filter-not-valid.png", "", "level (-[0-9]+", 239},
        {"filter-large.png", "|<       Error>:", "level", 53, 1.8},
    };
    bool isComplete = true;
    for (const Sample &sample : samples)
        isComplete = draw(sample, QDir(arguments.at(1)).filePath(QLatin1String(sample.name))) && isComplete;
    return isComplete ? 0 : 1;
}
