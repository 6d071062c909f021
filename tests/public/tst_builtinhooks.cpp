// The library's own hooks, as a user sees them.

#include "gui/boxtest.h"

#include <QLabel>
#include <QPushButton>
#include <QTextEdit>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

QTextEdit *editor()
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (auto *const found = qobject_cast<QTextEdit *>(window))
            return found;
    }
    return nullptr;
}

/// Title and buttons of a box, its default button in brackets; fails if no label has the text.
std::string looksOf(const QDialog &box, const char *text)
{
    bool shown = false;
    for (const QLabel *const label : box.findChildren<QLabel *>())
        shown = shown || label->text().contains(QLatin1String(text));
    EXPECT_TRUE(shown) << text;
    std::string looks = box.windowTitle().toStdString() + ": " + buttonsOf(box);
    for (const QPushButton *const button : box.findChildren<QPushButton *>()) {
        if (button->isDefault())
            looks += " [" + button->text().remove(QLatin1Char('&')).toStdString() + ']';
    }
    return looks;
}

class BuiltinHooks : public BoxTest
{
protected:
    /// Activates a hook, presses \a button in the box that it shows, and returns the looks of the box.
    std::string boxOf(const char *key, const char *parameters, const char *text, const char *button)
    {
        std::string looks;
        robot->then([&, text, button](QDialog &box) {
            looks = looksOf(box, text);
            clickButton(box, button);
        });
        Debug::activateHooks(key, parameters);
        EXPECT_TRUE(runUntil([&] { return !looks.empty() && allDialogs().isEmpty(); }));
        return looks;
    }
};

TEST_F(BuiltinHooks, SwitchTheRemoteAccess)
{
    for (const char *const off : {"0", "2", "yes", ""}) {
        Debug::activateHooks("DebugServer_allowRemote", "1");
        EXPECT_TRUE(runUntil([] { return Debug::clientsAllowed(); }));
        Debug::activateHooks("DebugServer_allowRemote", off);
        EXPECT_TRUE(runUntil([] { return !Debug::clientsAllowed(); })) << off;
    }
}

TEST_F(BuiltinHooks, KeepTheChoiceOfTheUserInterface)
{
    const char *const text = "Your changes will take effect after new firmware startup";
    EXPECT_EQ(boxOf("DebugServer_newUI", "3", text, "OK"), "restart message: OK [OK]");
    EXPECT_EQ(host.stored("newUserInterface"), QLatin1String("3"));
    boxOf("DebugServer_newUI", "new", text, "OK");
    EXPECT_EQ(host.stored("newUserInterface"), QLatin1String("0"));
}

TEST_F(BuiltinHooks, ShowWhatTheTestEditorHolds)
{
    const char *const key = "DebugServer_testMessage";
    std::thread([key] { Debug::activateHooks(key, ""); }).join();
    EXPECT_EQ(host.linesWith("test editor"), 1);
    EXPECT_EQ(editor(), nullptr) << "no widgets in other threads";
    EXPECT_EQ(boxOf(key, "", "type in HTML text in edit window", "OK"), "debugMessageBox test: OK [OK]");
    QTextEdit *const first = editor();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->isVisible());
    first->setPlainText(QStringLiteral("typed"));
    robot->then([](QDialog &box) {
        EXPECT_EQ(looksOf(box, "typed"), "debugMessageBox test: ");
        EXPECT_FALSE(box.isModal());
    });
    Debug::activateHooks(key, "NonModal");
    EXPECT_TRUE(runUntil([&] { return robot->left() == 0; }));
    EXPECT_EQ(editor(), first);
    Debug::exitDebug();
    EXPECT_TRUE(runUntil([] { return editor() == nullptr && allDialogs().isEmpty(); }));
}

TEST_F(BuiltinHooks, LoopTestBoxesUntilTheLibraryEnds)
{
    robot->click("OK");
    for (const char *const text : {"0. box...", "1. box..."})
        robot->then([text](QDialog &box) { EXPECT_EQ(looksOf(box, text).substr(0, 8), "test: OK"); });
    Debug::activateHooks("DebugServer_testMsgBox", "1000000");
    EXPECT_TRUE(runUntil([&] { return robot->left() == 0; }));
    EXPECT_TRUE(runUntil([] { return openDialogs().size() == 1; })) << "each goes when the next comes";
    EXPECT_EQ(host.linesWith("1000000 is too much"), 1);
    const auto begin = std::chrono::steady_clock::now();
    Debug::exitDebug();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2)) << "the hook's limit";
}

} // namespace
