// The front panel, its hooks and its questions, with a user who is a robot.

#include "console.h"
#include "debugsession.h"
#include "instrument.h"
#include "panel/display.h"
#include "panel/hooks.h"
#include "panel/operatortasks.h"
#include "panel/panel.h"
#include "panel/panelmodule.h"
#include "panel/remotecontrol.h"
#include "support/guiapplication.h"
#include "support/programdata.h"

#include <QAbstractButton>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

#include <cmath>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

using namespace SignalGenerator;
using namespace Zorvan::test;
using Zorvan::Debug;

namespace {

/// What the panel's module prints, in place of the other sinks.
class Lines
{
public:
    explicit Lines(Zorvan::moduleId module)
        : m_module(module)
    {
        Debug::setOutputReceiver(m_module, [](Zorvan::hookData *data) {
            const std::lock_guard<std::mutex> guard(s_mutex);
            s_text += std::string(data->text) + '\n';
        });
    }
    ~Lines() { Debug::setOutputReceiver(m_module, nullptr); }
    Lines(const Lines &) = delete;
    Lines &operator=(const Lines &) = delete;

    [[nodiscard]] bool contain(const char *text) const
    {
        const std::lock_guard<std::mutex> guard(s_mutex);
        return s_text.find(text) != std::string::npos;
    }

private:
    inline static std::mutex s_mutex; // guards s_text
    inline static std::string s_text;
    const Zorvan::moduleId m_module;
};

class PanelTest : public ::testing::Test
{
protected:
    PanelTest()
    {
        panel->show();
        QCoreApplication::processEvents(); // the library sees that the loop runs
    }
    ~PanelTest() override { EXPECT_EQ(robot.left(), 0U) << "fewer dialogs than expected"; }

    double setting(ParameterId id) const { return instrument.status().settings[id]; }
    template <typename Widget>
    Widget *find(const char *name) const
    {
        Widget *const widget = panel->findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    std::string text(const char *label) const { return find<QLabel>(label)->text().toStdString(); }
    void click(const char *button) const { find<QAbstractButton>(button)->click(); }
    void type(const char *entry, const char *keys) const
    {
        auto *const box = find<QDoubleSpinBox>(entry);
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QLatin1String(keys));
    }
    static void pressEnter(QWidget *widget) { QTest::keyClick(widget, Qt::Key_Return); }

    void expectMessage(const std::string &message) const
    {
        EXPECT_TRUE(runUntil([&] { return text("message") == message; })) << text("message");
    }
    void expectReading(const char *label, const std::string &reading) const
    {
        EXPECT_TRUE(runUntil([&] { return text(label) == reading; })) << text(label);
    }

    static QString makeScript(const std::string &lines)
    {
        const std::string path = libraryFile("test.scpi");
        writeFile(path, lines);
        return QString::fromStdString(path);
    }

    TestApplication<QApplication> application;
    Robot robot;
    DebugSession session{QString(), MessageBoxes::Allowed};
    Instrument instrument;
    Console console{instrument};
    const Zorvan::moduleId module = createPanelModule();
    std::optional<RemoteControl> remote{std::in_place, instrument, console};
    std::optional<OperatorTasks> tasks{std::in_place, *remote, module};
    std::optional<Hooks> hooks{std::in_place, instrument, *remote, module};
    std::optional<Panel> panel{std::in_place, instrument, *remote, *tasks};
};

TEST_F(PanelTest, FollowsTheInstrument)
{
    remote->send("FREQ 433.92 MHz;:POW 3;:OUTP ON;:FM:STAT ON;:PULM:PER 25 us");
    expectReading("frequencyReading", "433.920 000 MHz");
    expectReading("levelReading", "3.00 dBm");
    EXPECT_TRUE(runUntil([&] { return find<QAbstractButton>("fmDeviationOn")->isChecked(); }));
    EXPECT_EQ(find<QAbstractButton>("output")->text(), QLatin1String("RF ON"));
    EXPECT_EQ(find<QDoubleSpinBox>("frequency")->value(), 433.92);
    EXPECT_EQ(find<QDoubleSpinBox>("pulsePeriod")->value(), 25);
    remote->send("FREQ:OFFS 2 GHz;:OUTP OFF;:ROSC:SOUR EXT");
    expectReading("frequencyReading", "2.433 920 000 GHz");
    expectMessage("Error 20,\"External reference missing;REF IN\"");
    EXPECT_EQ(find<QAbstractButton>("output")->text(), QLatin1String("RF OFF"));
}

TEST_F(PanelTest, SendsWhatTheUserEnters)
{
    type("frequency", "2400");
    EXPECT_EQ(setting(ParameterId::Frequency), 1e9) << "not before the number is finished";
    pressEnter(find<QDoubleSpinBox>("frequency"));
    type("level", "-7.5");
    pressEnter(find<QDoubleSpinBox>("level"));
    click("output");
    click("amDepthOn");
    expectReading("frequencyReading", "2.400 000 000 GHz");
    EXPECT_TRUE(runUntil([&] { return setting(ParameterId::AmState) == 1; }));
    EXPECT_EQ(setting(ParameterId::Level), -7.5);
    EXPECT_EQ(setting(ParameterId::Output), 1);
    QTest::keyClick(find<QDoubleSpinBox>("frequency"), Qt::Key_Up);
    QTest::keyClick(find<QDoubleSpinBox>("frequency"), Qt::Key_Up);
    expectReading("frequencyReading", "2.402 000 000 GHz");
    click("preset");
    expectReading("frequencyReading", "1.000 000 000 GHz");
}

TEST_F(PanelTest, TakesARefusedEntryBackAndSaysWhy)
{
    type("frequency", "99000");
    pressEnter(find<QDoubleSpinBox>("frequency"));
    expectMessage("Error -222,\"Data out of range;99000000000\"");
    EXPECT_EQ(find<QDoubleSpinBox>("frequency")->value(), 1000);
    EXPECT_EQ(instrument.status().errors, 0U) << "it has taken them";
}

TEST_F(PanelTest, LeavesAloneWhatTheUserIsTyping)
{
    type("frequency", "24");
    remote->send("POW 5");
    EXPECT_TRUE(runUntil([&] { return find<QDoubleSpinBox>("level")->value() == 5; }));
    QTest::keyClicks(find<QDoubleSpinBox>("frequency"), QStringLiteral("00"));
    pressEnter(find<QDoubleSpinBox>("frequency"));
    expectReading("frequencyReading", "2.400 000 000 GHz");
}

TEST_F(PanelTest, ShowsWhatHooksDo)
{
    const Lines lines(module);
    Debug::activateHooks("SG_setFrequency", "2.4 GHz");
    expectReading("frequencyReading", "2.400 000 000 GHz");
    Debug::activateHooks("SG_setFrequency", "100000000");
    expectReading("frequencyReading", "100.000 000 MHz");
    Debug::enableLevel(module, QStringLiteral("full"));
    Debug::activateHooks("SG_setFrequency", "1 GHz;:OUTP ON");
    EXPECT_TRUE(lines.contain("\"1 GHz;:OUTP ON\" is no frequency"));
    Debug::activateHooks("SG_dumpState", "");
    EXPECT_TRUE(runUntil([&] { return lines.contain("errors in the queue"); }));
    EXPECT_TRUE(lines.contain("frequency 100000000.000 Hz, level -30.00 dBm, RF off"));
    hooks.reset();
    Debug::activateHooks("SG_setFrequency", "3 GHz");
    Debug::activateHooks("SG_dumpState", "");
    EXPECT_EQ(remote->ask("FREQ?"), "100000000");
}

TEST_F(PanelTest, TriggersAHookByItself)
{
    find<QLineEdit>("hookParameter")->setText(QStringLiteral("868.3 MHz"));
    click("trigger");
    expectReading("frequencyReading", "868.300 000 MHz");
}

TEST_F(PanelTest, AsksBeforeTheSelfTestAndLeavesTheInstrumentAsItWas)
{
    remote->send("FREQ:OFFS 1 GHz;:FREQ 2.5 GHz;:OUTP ON");
    expectReading("frequencyReading", "2.500 000 000 GHz");
    robot.click("No");
    click("selfTest");
    EXPECT_FALSE(find<QAbstractButton>("output")->isEnabled());
    expectMessage("Self test: not run");
    EXPECT_TRUE(find<QAbstractButton>("output")->isEnabled());
    robot.click("Yes");
    robot.leaveOpen();
    click("selfTest");
    expectMessage("Self test: passed");
    EXPECT_TRUE(runUntil([&] { return openDialogs().size() == 1; })) << "the result";
    expectReading("frequencyReading", "2.500 000 000 GHz");
    EXPECT_EQ(setting(ParameterId::Output), 1);
    panel->close();
    EXPECT_TRUE(runUntil([&] { return openDialogs().isEmpty(); })) << "it goes with the panel";
}

TEST_F(PanelTest, FindsAFaultInTheSelfTest)
{
    remote->send("ROSC:SOUR EXT");
    robot.click("Yes");
    robot.click("OK");
    click("selfTest");
    EXPECT_TRUE(runUntil([&] { return robot.left() == 0 && openDialogs().isEmpty(); }));
    EXPECT_TRUE(runUntil([&] { return text("message").find("Error 20,") == 0; })) << text("message");
}

TEST_F(PanelTest, RunsTheScriptThatTheUserChooses)
{
    robot.close();
    click("script");
    EXPECT_TRUE(runUntil([&] { return robot.left() == 0 && find<QAbstractButton>("script")->isEnabled(); }));
    robot.choose(makeScript("# comment\nFREQ 5 GHz\nNONSENSE\n\nOUTP ON\n"));
    click("script");
    expectReading("frequencyReading", "5.000 000 000 GHz");
    expectMessage("Error -113,\"Undefined header;NONSENSE\"");
    EXPECT_EQ(setting(ParameterId::Output), 1);
    EXPECT_EQ(console.traffic().commandLines, 3);
    panel->runScript(QStringLiteral("/missing/script.scpi"));
    expectMessage("Cannot open script.scpi");
}

TEST_F(PanelTest, StopsAScriptThatWaits)
{
    const QString script = makeScript("FREQ:MODE SWE\nSWE:DWEL 100 s;EXEC\n*OPC?\nFREQ 5 GHz\n");
    panel->runScript(script);
    expectMessage("Script: line 2 of 4"); // the third waits for 1,100 s
    EXPECT_FALSE(find<QAbstractButton>("output")->isEnabled());
    click("script");
    EXPECT_TRUE(runUntil([&] { return text("message").find("test.scpi: stopped after line ") == 0; }));
    EXPECT_TRUE(find<QAbstractButton>("output")->isEnabled());
    panel->runScript(script);
    expectMessage("Script: line 2 of 4");
    panel.reset();
    hooks.reset();
    tasks.reset();
    remote.reset();
    EXPECT_EQ(setting(ParameterId::Frequency), 1e9);
}

TEST_F(PanelTest, TakesCommandsFromHooksOfAnyThread)
{
    constexpr int threads = 4;
    constexpr int activations = 25;
    std::vector<std::thread> activators;
    for (int i = 0; i < threads; ++i)
        activators.emplace_back([i] {
            for (int j = 1; j <= activations; ++j)
                Debug::activateHooks("SG_setFrequency", (std::to_string(i * 100 + j) + " MHz").c_str());
            Debug::activateHooks("SG_dumpState", "");
        });
    for (std::thread &activator : activators)
        activator.join();
    EXPECT_TRUE(runUntil([&] { return !remote->isBusy(); }));
    EXPECT_EQ(console.traffic().commandLines, threads * activations);
    EXPECT_EQ(std::fmod(setting(ParameterId::Frequency), 100e6), activations * 1e6) << "the last of a thread";
    EXPECT_EQ(find<QDoubleSpinBox>("frequency")->value(), setting(ParameterId::Frequency) / 1e6);
}

TEST_F(PanelTest, ShowsTheErrorUntilTheUserGoesOn)
{
    const auto lampColor = [&] {
        for (const QLabel *const label : panel->findChildren<QLabel *>())
            if (label->text() == QLatin1String("ERROR"))
                return label->palette().color(QPalette::WindowText);
        return QColor();
    };
    const QColor off = lampColor();
    Debug::activateHooks("SG_setFrequency", "99 GHz");
    expectMessage("Error -222,\"Data out of range;99000000000\"");
    EXPECT_TRUE(runUntil([&] { return lampColor() != off; }));
    click("output");
    EXPECT_TRUE(runUntil([&] { return lampColor() == off; }));
    EXPECT_EQ(text("message"), "OUTP ON");
}

// Every text has the room that its font needs, whatever the user's font is.
TEST_F(PanelTest, CutsNothingOff)
{
    const QFont usual = QApplication::font();
    for (const int points : {7, 10, 16}) {
        QFont font = usual;
        font.setPointSize(points);
        QApplication::setFont(font);
        panel.emplace(instrument, *remote, *tasks);
        remote->send("FREQ:OFFS -49 GHz;:POW -144.55;:FREQ?");
        panel->show();
        EXPECT_TRUE(runUntil([&] { return text("levelReading") == "-144.55 dBm" && !remote->isBusy(); }));
        for (const QWidget *const widget : panel->findChildren<QWidget *>()) {
            const bool inEntry = qobject_cast<QAbstractSpinBox *>(widget->parentWidget()) != nullptr;
            if (widget->isHidden() || inEntry || widget->objectName() == QLatin1String("message"))
                continue;
            EXPECT_GE(widget->width(), widget->minimumSizeHint().width())
                << widget->metaObject()->className();
            EXPECT_GE(widget->height(), widget->minimumSizeHint().height());
            EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry())) << points;
        }
    }
}

TEST(Readings, ShowHertzInGroupsOfThreeDigits)
{
    const std::pair<double, const char *> rows[] = {
        {6e9, "6.000 000 000 GHz"},          {1e9, "1.000 000 000 GHz"}, {999999999, "999.999 999 MHz"},
        {433.92e6, "433.920 000 MHz"},       {9e3, "9.000 kHz"},         {999999, "999.999 kHz"},
        {-49e9, "-49.000 000 000 GHz"},      {-1.5e6, "-1.500 000 MHz"}, {0, "0.000 kHz"},
        {55999999999, "55.999 999 999 GHz"},
    };
    for (const auto &[hertz, text] : rows)
        EXPECT_EQ(frequencyText(hertz).toStdString(), text);
}

} // namespace
