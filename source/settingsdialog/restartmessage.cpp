#include "settingsdialog/restartmessage.h"

#include <zorvan/debug.h>

#include <QCoreApplication>

namespace Zorvan {

namespace {

constexpr int informationIcon = 1;
constexpr int okButton = 1;

} // namespace

void showRestartMessage()
{
    const auto translated = [](const char *text) {
        return QCoreApplication::translate("Zorvan::RestartMessage", text);
    };
    Debug::debugMessageBox(translated("restart message"),
                           translated("Your changes will take effect after new firmware startup"), true,
                           informationIcon, okButton, 0, 0);
}

} // namespace Zorvan
