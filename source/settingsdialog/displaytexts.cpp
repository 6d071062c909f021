#include "settingsdialog/displaytexts.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGroupBox>

namespace Zorvan {

namespace {

struct GroupTexts
{
    const char *name;
    const char *normal;
    const char *small;
};

struct CheckTexts
{
    const char *name;
    const char *normal;
    const char *small;
    const char *toolTip;
    Qt::Key key; ///< together with Alt
};

constexpr GroupTexts groups[] = {
    {"moduleGroupBox", QT_TRANSLATE_NOOP("configdialog", "Module Settings"),
     QT_TRANSLATE_NOOP("configdialog", "Module")},
    {"globalGroupBox", QT_TRANSLATE_NOOP("configdialog", "Global Settings"),
     QT_TRANSLATE_NOOP("configdialog", "Global")},
};

constexpr CheckTexts checks[] = {
    {"fileOutputCheck", QT_TRANSLATE_NOOP("configdialog", "output to file"),
     QT_TRANSLATE_NOOP("configdialog", "file"),
     QT_TRANSLATE_NOOP("configdialog", "Writes the output to a file; the context menu chooses which one"),
     Qt::Key_F},
    {"consoleCheck", QT_TRANSLATE_NOOP("configdialog", "output to console"),
     QT_TRANSLATE_NOOP("configdialog", "console"),
     QT_TRANSLATE_NOOP("configdialog", "Sets activateConsoleOutput, for the firmware to read"), Qt::Key_O},
    {"assertionCheck", QT_TRANSLATE_NOOP("configdialog", "throw assert"),
     QT_TRANSLATE_NOOP("configdialog", "assert"),
     QT_TRANSLATE_NOOP("configdialog", "Sets throwAssertion, for the firmware to read"), Qt::Key_A},
    {"timeCheck", QT_TRANSLATE_NOOP("configdialog", "show time"), QT_TRANSLATE_NOOP("configdialog", "time"),
     QT_TRANSLATE_NOOP("configdialog", "Begins each line with the time"), Qt::Key_T},
    {"threadCheck", QT_TRANSLATE_NOOP("configdialog", "show thread"),
     QT_TRANSLATE_NOOP("configdialog", "thread"),
     QT_TRANSLATE_NOOP("configdialog", "Shows in each line which thread printed it"), Qt::Key_H},
    {"moduleCheck", QT_TRANSLATE_NOOP("configdialog", "show module"),
     QT_TRANSLATE_NOOP("configdialog", "module"),
     QT_TRANSLATE_NOOP("configdialog", "Shows in each line which module printed it"), Qt::Key_D},
    {"clearCheck", QT_TRANSLATE_NOOP("configdialog", "enable Debug::clear()"),
     QT_TRANSLATE_NOOP("configdialog", "clear"),
     QT_TRANSLATE_NOOP("configdialog", "Lets the firmware clear the text of the window"), Qt::Key_E},
};

QString dialogText(const char *text)
{
    return QCoreApplication::translate("configdialog", text);
}

void show(QCheckBox &check, const CheckTexts &texts, bool isSmallDisplay)
{
    const QKeySequence key(static_cast<int>(Qt::ALT) | static_cast<int>(texts.key));
    check.setText(dialogText(isSmallDisplay ? texts.small : texts.normal));
    check.setShortcut(key); // a new text takes the old key away
    check.setToolTip(
        QStringLiteral("%1 (%2)").arg(dialogText(texts.toolTip), key.toString(QKeySequence::NativeText)));
}

} // namespace

void showDisplayTexts(QWidget &form, bool isSmallDisplay)
{
    for (const GroupTexts &texts : groups) {
        if (auto *const group = form.findChild<QGroupBox *>(QLatin1String(texts.name)))
            group->setTitle(dialogText(isSmallDisplay ? texts.small : texts.normal));
    }
    for (const CheckTexts &texts : checks) {
        if (auto *const check = form.findChild<QCheckBox *>(QLatin1String(texts.name)))
            show(*check, texts, isSmallDisplay);
    }
}

} // namespace Zorvan
