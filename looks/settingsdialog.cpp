// Draws the settings dialog, without its frame, into PNG files, for people to look at: looks_settings FOLDER

#include "settingsdialog/settingsdialog.h"

#include "debugwindow/icons.h"
#include "pictures.h"
#include "settingsdialog/dialogmenu.h"

#include <QListWidget>
#include <QMenu>
#include <QPushButton>

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
    int lightness;
    bool isSmall;
    int pointSize;
};

bool draw(const Sample &sample, const QDir &folder)
{
    looks::setGround(sample.lightness);
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
    return looks::save(dialog, folder, QLatin1String(sample.name));
}

bool drawMenu(const QDir &folder)
{
    QMenu menu;
    DialogMenuState state;
    state.hasFilter = true;
    fillDialogMenu(menu, state);
    menu.ensurePolished();
    menu.resize(menu.sizeHint());
    return looks::save(menu, folder, QStringLiteral("settings-menu.png"));
}

} // namespace

int main(int argc, char **argv)
{
    Debug::initDebug(); // before the application: the library then has no window of its own
    for (const char *const name : {"RfPath", "Scpi", "Database", "Calibration", "Hardware timing", "Display"})
        makeModule(name);
    const Sample samples[] = {
        {"settings.png", looks::light, false, 9},
        {"settings-dark.png", looks::dark, false, 9},
        {"settings-small.png", looks::light, true, 9},
        {"settings-small-dark.png", looks::dark, true, 9},
        {"settings-large-font.png", looks::light, false, 15},
    };
    return looks::drawInto(argc, argv, [&](const QDir &folder) {
        const IconResource icons;
        const bool isComplete =
            looks::drawAll(samples, [&](const Sample &sample) { return draw(sample, folder); });
        return drawMenu(folder) && isComplete;
    });
}
