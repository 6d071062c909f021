#include "settingsdialog/restartmessage.h"

#include "settingsdialog/questions.h"

#include <QCoreApplication>

namespace Zorvan {

void showRestartMessage()
{
    const auto translated = [](const char *text) {
        return QCoreApplication::translate("Zorvan::RestartMessage", text);
    };
    questions::tell(questions::Icon::Information, translated("restart message"),
                    translated("Your changes will take effect after new firmware startup"));
}

} // namespace Zorvan
