// Draws the settings dialog, without its frame, into PNG files, for people to look at: looks_settings FOLDER
// QT_SCALE_FACTOR=2 in the environment draws it for a display of double density.

#include "settingsdialog/settingsdialog.h"

#include "debugwindow/icons.h"
#include "settingsdialog/dialogmenu.h"

#include <QApplication>
#include <QDir>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>

#include <cstdio>

namespace {

using namespace Zorvan;

void makeModule(const char *name)
{
    const char *classes[] = {"<debug message>, ", "<init>, ",     "<hardware access>, ",
                             "<scpi command>, ",  "<database>, ", "<timer>, "};
    const char *levels[] = {"<critical>: ", "<error>: ", "<warning>: ", "<detailed info>: "};
    const moduleId id = Debug::createModule(name, name);
    Debug::setMessageClassDescriptions(id, 6, classes);
    Debug::setMessageLevelDescriptions(id, 4, levels);
    Debug::disableMessageClassType(id, 2);
    Debug::setClippingLevel(id, 2);
    static_cast<void>(Debug::isActive(id, 0, 0)); // modules that nobody asked about are not shown
}

void showIcons(const SettingsDialog &dialog)
{
    dialog.filterButton()->setIcon(icon("filter"));
    dialog.openButton()->setIcon(icon("fileopen"));
    dialog.saveButton()->setIcon(icon("filesave"));
    dialog.closeButton()->setIcon(icon("closedialog"));
}

struct Sample
{
    const char *name;
    int backgroundLightness;
    bool isSmall;
    int pointSize;
};

bool save(QWidget &widget, const QString &path)
{
    std::printf("%-28s %4d x %4d\n", qPrintable(path.section(QLatin1Char('/'), -1)), widget.width(),
                widget.height());
    return widget.grab().save(path);
}

bool draw(const Sample &sample, const QString &path)
{
    QApplication::setPalette(QColor::fromHsv(0, 0, sample.backgroundLightness));
    SettingsDialog dialog(nullptr);
    QFont font = dialog.font();
    font.setPointSize(sample.pointSize);
    dialog.setFont(font);
    showIcons(dialog);
    if (sample.isSmall)
        dialog.command(static_cast<int>(DialogCommand::SwitchDisplay));
    dialog.show();
    auto *const modules = dialog.findChild<QListWidget *>(QStringLiteral("moduleList"));
    modules->setCurrentRow(modules->count() - 2);
    QApplication::processEvents();
    return save(dialog, path);
}

bool drawMenu(const QString &path)
{
    QMenu menu;
    DialogMenuState state;
    state.hasFilter = true;
    fillDialogMenu(menu, state);
    menu.ensurePolished();
    menu.resize(menu.sizeHint());
    return save(menu, path);
}

} // namespace

int main(int argc, char **argv)
{
    Debug::initDebug(); // before the application: the library then has no window of its own
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 || !QDir().mkpath(arguments.at(1))) {
        std::fprintf(stderr, "usage: looks_settings FOLDER\n");
        return 2;
    }
    QApplication::setStyle(QStringLiteral("fusion")); // the same on every desktop
    const IconResource icons;
    for (const char *const name : {"RfPath", "Scpi", "Database", "Calibration", "Hardware timing", "Display"})
        makeModule(name);
    const Sample samples[] = {
        {"settings.png", 239, false, 9},
        {"settings-dark.png", 53, false, 9},
        {"settings-small.png", 239, true, 9},
        {"settings-small-dark.png", 53, true, 9},
        {"settings-large-font.png", 239, false, 15},
    };
    const QDir folder(arguments.at(1));
    bool isComplete = true;
    for (const Sample &sample : samples)
        isComplete = draw(sample, folder.filePath(QLatin1String(sample.name))) && isComplete;
    isComplete = drawMenu(folder.filePath(QStringLiteral("settings-menu.png"))) && isComplete;
    return isComplete ? 0 : 1;
}
