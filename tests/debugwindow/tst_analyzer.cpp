// The menu of the analysis tools in the debug window, and what its entries do.

#include "debugwindow/analyzeractions.h"
#include "debugwindow/handlerreports.h"
#include "debugwindow/resultswindow.h"
#include "debugwindow/sourcesdialog.h"
#include "gui/boxtest.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/timesrecorder.h"
#include "lowlevelfunctions/lowlevelproperties.h"

#include <QContextMenuEvent>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPointer>
#include <QPushButton>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;

std::string entriesOf(const QMenu &menu)
{
    std::string entries;
    for (const QAction *const action : menu.actions()) {
        if (action->isSeparator()) {
            entries += "--\n";
            continue;
        }
        entries += std::to_string(action->data().toInt()) + ' ' + action->text().toStdString();
        if (action->isCheckable())
            entries += action->isChecked() ? " [x]" : " [ ]";
        entries += action->isEnabled() ? "\n" : " off\n";
    }
    return entries;
}

std::string entriesOf(const AnalyzerState &state)
{
    const TestApplication<QApplication> application;
    QMenu menu;
    fillAnalyzerMenu(menu, state);
    return entriesOf(menu);
}

TEST(AnalyzerMenu, OffersLittleWithoutTheTools)
{
    EXPECT_EQ(entriesOf({false, true, true, true}),
              "4096 Tracking Memory Leaks off\n"
              "4097 Tracking Method Execution off\n--\n"
              "4098 Dump Results... off\n"
              "4102 Select Sources... off\n"
              "4101 Clear Results... off\n--\n"
              "4099 Enable Analysis Tools [ ]\n"
              "4100 Analysis During Startup\n");
}

TEST(AnalyzerMenu, ShowsWhatIsTracked)
{
    EXPECT_EQ(entriesOf({true, false, true, false}),
              "4096 Tracking Memory Leaks [x]\n"
              "4097 Tracking Method Execution [ ]\n--\n"
              "4098 Dump Results...\n"
              "4102 Select Sources...\n"
              "4101 Clear Results...\n--\n"
              "4099 Enable Analysis Tools [x]\n"
              "4100 Analysis During Startup [ ]\n");
}

/// Running tools, whose reports go to the actions of a window.
class Analyzer : public BoxTest, public IAnalysisOutputInterface
{
protected:
    Analyzer()
    {
        analysis::toolsEnabled(1);
        analysis::startupAnalysis(0);
        analysis::start();
        analysis::setOutputHandler(this);
        window = new QWidget;
        actions = new AnalyzerActions(*window, *new HandlerReports(*window));
        window->show();
    }
    ~Analyzer() override
    {
        analysis::setOutputHandler(nullptr);
        delete window;
    }
    void textOutput(const char *source, int, const char *) override { texts.emplace_back(source); }
    void summary(int, qint64 total, qint64, qint64, quint64 earliest, quint64 latest) override
    {
        onSummary();
        if (actions)
            actions->beginReport(total, earliest, latest);
    }
    void tableRow(int, const char *name, quint64 thread, int calls, quint64, qint64 total,
                  qint64 overhead) override
    {
        if (actions)
            actions->addRow(name, thread, calls, total, overhead);
    }
    void tableComplete() override
    {
        if (actions)
            actions->endReport();
    }

    void run(AnalyzerCommand command) const
    {
        actions->run(command);
        runOn();
    }
    static void measure(int id, const char *file, const char *name)
    {
        startMethod(id, file, name);
        endMethod(id);
    }
    /// Two methods are measured from here on.
    static void measureTwo()
    {
        analysis::setTimeTracking(2);
        measure(1, "C:\\src\\alpha.cpp", "a");
        measure(2, "src/b\351ta.cpp", "b");
    }
    static ResultsWindow *table()
    {
        for (QWidget *const each : QApplication::topLevelWidgets()) {
            if (auto *const found = qobject_cast<ResultsWindow *>(each))
                return found;
        }
        return nullptr;
    }
    /// The names in the table, sorted; "-" if there is none.
    static std::string names()
    {
        if (table() == nullptr)
            return "-";
        table()->sortByColumn(0, Qt::AscendingOrder);
        std::string names;
        for (int row = 0; row < table()->model()->rowCount(); ++row)
            names += table()->model()->index(row, 0).data().toString().toStdString();
        return names;
    }
    void report(const char *name)
    {
        actions->beginReport(1, 1, 2);
        if (name != nullptr)
            actions->addRow(name, 1, 1, 1, 1);
        actions->endReport();
        runOn();
    }
    void chooseFromMenu(const char *entry)
    {
        chooseInMenu([this] { actions->openMenu({}); }, entry);
    }

    QPointer<QWidget> window;
    QPointer<AnalyzerActions> actions;
    std::vector<std::string> texts;
    std::function<void()> onSummary = [] {};
};

TEST_F(Analyzer, SwitchesTrackingAndStoresIt)
{
    for (const int on : {1, 0}) {
        chooseFromMenu("Tracking Memory Leaks");
        run(AnalyzerCommand::TrackMethods);
        EXPECT_EQ(analysis::memoryTracking(), on);
        EXPECT_EQ(analysis::timeTracking(), on);
        EXPECT_EQ(lowlevelProperty(LowlevelProperty::memTrackingEnabled, 7), on);
        EXPECT_EQ(lowlevelProperty(LowlevelProperty::timeTrackingEnabled, 7), on);
        EXPECT_EQ(analyzerState().leaksTracked && analyzerState().methodsTracked, on != 0);
    }
}

TEST_F(Analyzer, TellsThatOtherSwitchesWaitForTheNextStart)
{
    const auto expectBox = [this] {
        robot->then([](QDialog &box) {
            EXPECT_EQ(box.windowTitle(), QStringLiteral("restart message"));
            box.close();
        });
    };
    expectBox();
    run(AnalyzerCommand::AnalyzeStartup);
    EXPECT_EQ(analysis::startupAnalysis(-1), 1);
    expectBox();
    run(AnalyzerCommand::EnableTools);
    EXPECT_EQ(analysis::toolsEnabled(-1), 0);
    EXPECT_TRUE(analysis::isRunning());
    expectBox();
    run(AnalyzerCommand::EnableTools);
    EXPECT_TRUE(analyzerState().toolsEnabled && analyzerState().startupAnalyzed);
}

TEST_F(Analyzer, DumpsWhatIsTrackedForTheStoredSources)
{
    measureTwo();
    run(AnalyzerCommand::DumpResults);
    EXPECT_EQ(names(), "ab");
    EXPECT_TRUE(table()->isActiveWindow());
    EXPECT_EQ(texts.size(), 2U) << "no leaks are tracked";
    analysis::setMemoryTracking(1);
    void *const block = analysis::allocate(8, "src/b\351ta.cpp", 5, false);
    host.store("LeakAnalysisSources", "gamma.cpp;b\351ta.cpp");
    texts.clear();
    run(AnalyzerCommand::DumpResults);
    EXPECT_EQ(names(), "b");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "src/b\351ta.cpp"), 2) << "a leak and a method";
    host.store("LeakAnalysisSources", "<none>");
    texts.clear();
    run(AnalyzerCommand::DumpResults);
    EXPECT_EQ(names(), "");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "src/b\351ta.cpp"), 0);
    analysis::setTimeTracking(0);
    host.store("LeakAnalysisSources", "");
    run(AnalyzerCommand::DumpResults);
    EXPECT_EQ(names(), "") << "times are not tracked";
    analysis::freeBlock(block);
}

TEST_F(Analyzer, ClearsOnlyWhatIsTracked)
{
    measureTwo();
    analysis::setMemoryTracking(1);
    void *const block = analysis::allocate(8, "src/b\351ta.cpp", 5, false);
    run(AnalyzerCommand::DumpResults);
    analysis::setTimeTracking(0);
    run(AnalyzerCommand::ClearResults);
    EXPECT_EQ(names(), "ab");
    texts.clear();
    run(AnalyzerCommand::DumpResults);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "src/b\351ta.cpp"), 0) << "no leak";
    analysis::setTimeTracking(2);
    run(AnalyzerCommand::ClearResults);
    EXPECT_EQ(names(), "");
    run(AnalyzerCommand::DumpResults);
    EXPECT_EQ(names(), "");
    analysis::freeBlock(block);
}

TEST_F(Analyzer, ShowsTheTableBesideAVisibleWindow)
{
    report(nullptr);
    EXPECT_EQ(names(), "-");
    EXPECT_EQ(actions->place(QStringLiteral("as stored")), QStringLiteral("as stored"));
    host.store("DebugAnalysisWindowGeometry", "50;60;500;200");
    QFont font;
    font.setPointSize(17);
    actions->setOutputFont(font);
    window->hide();
    report("x");
    EXPECT_EQ(names(), "x");
    EXPECT_FALSE(table()->isVisible());
    EXPECT_EQ(actions->place({}), QStringLiteral("50;60;500;200"));
    EXPECT_EQ(table()->font().pointSize(), 17);
    font.setPointSize(8);
    actions->setOutputFont(font);
    EXPECT_EQ(table()->font().pointSize(), 8);
    EXPECT_LT(table()->verticalHeader()->defaultSectionSize(), 22) << "of pixels";
    window->show();
    inWorker([this] {
        actions->beginReport(1, 1, 2);
        actions->addRow("y", 1, 1, 1, 1);
        actions->endReport();
        return true;
    });
    EXPECT_TRUE(runUntil([] { return table()->isVisible(); }));
    EXPECT_EQ(names(), "y");
    EXPECT_TRUE(table()->testAttribute(Qt::WA_ShowWithoutActivating));
    actions->hideResults();
    EXPECT_FALSE(table()->isVisible());
    EXPECT_EQ(host.reads("DebugAnalysisWindowGeometry"), 1);
    delete window;
    EXPECT_EQ(table(), nullptr);
}

TEST_F(Analyzer, IsQuietAfterTheEndOfTheLibrary)
{
    const auto begin = [this] {
        actions->beginReport(1, 1, 2);
        actions->addRow("x", 1, 1, 1, 1);
    };
    begin();
    actions->hideResults();
    actions->endReport();
    begin();
    actions->endReport();
    actions->hideResults();
    runOn();
    EXPECT_EQ(names(), "-");
    const int before = analysis::timeTracking();
    QTimer::singleShot(0, [&] {
        begin();
        actions->endReport();
        Debug::exitDebug();
    });
    chooseFromMenu("Tracking Method Execution");
    EXPECT_EQ(analysis::timeTracking(), before);
    runOn();
    EXPECT_EQ(names(), "-");
}

/// "x" before each checked name.
std::string listed(const sourceFileList &files)
{
    std::string names;
    for (int row = 0; row < files.count(); ++row) {
        names += files.item(row)->checkState() == Qt::Checked ? "x" : "";
        names += files.item(row)->text().toStdString() + ' ';
    }
    return names;
}

TEST_F(Analyzer, LetsTheUserSelectSources)
{
    SourcesDialog empty(QString(), nullptr);
    const auto *const ok = empty.findChild<QDialogButtonBox *>()->buttons().first();
    EXPECT_FALSE(ok->isEnabled());
    empty.files().methodInformation("a.cpp", 1, "a");
    EXPECT_TRUE(ok->isEnabled());
    measureTwo();
    measure(3, "other/b\351ta.cpp", "b2");
    analysis::startMethod(0, nullptr, 0, "of the analyzer");
    const auto inDialog = [this](
                              const char *before, const char *button,
                              const std::function<void(sourceFileList &)> &act = [](sourceFileList &) {}) {
        robot->then([=](QDialog &dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Selected source files"));
            EXPECT_EQ(buttonsOf(dialog), "Ok Cancel");
            auto &files = static_cast<SourcesDialog &>(dialog).files();
            EXPECT_EQ(listed(files), before);
            act(files);
            clickButton(dialog, button);
        });
        run(AnalyzerCommand::SelectSources);
        return host.stored("LeakAnalysisSources").toStdString();
    };
    EXPECT_EQ(inDialog("xalpha.cpp xb\u00e9ta.cpp ", "Cancel"), "");
    EXPECT_TRUE(host.written().empty());
    EXPECT_EQ(inDialog("xalpha.cpp xb\u00e9ta.cpp ", "Ok",
                       [](sourceFileList &files) { files.item(0)->setCheckState(Qt::Unchecked); }),
              "b\u00e9ta.cpp");
    host.store("LeakAnalysisSources", "unmeasured.cpp;;alpha.cpp");
    EXPECT_EQ(inDialog("xalpha.cpp b\u00e9ta.cpp xunmeasured.cpp ", "Ok"), "alpha.cpp;unmeasured.cpp");
    const auto fromMenu = [](const char *entry) {
        return [entry](sourceFileList &files) {
            QContextMenuEvent event(QContextMenuEvent::Keyboard, {});
            chooseInMenu([&] { QCoreApplication::sendEvent(&files, &event); }, entry);
        };
    };
    EXPECT_EQ(inDialog("xalpha.cpp b\u00e9ta.cpp xunmeasured.cpp ", "Ok", fromMenu("Select None...")),
              "<none>");
    EXPECT_EQ(inDialog("alpha.cpp b\u00e9ta.cpp ", "Ok", fromMenu("Select All...")),
              "alpha.cpp;b\u00e9ta.cpp");
}

TEST_F(Analyzer, MayGoWhileItIsAtWork)
{
    const auto reopen = [this] {
        EXPECT_EQ(window, nullptr);
        window = new QWidget;
        actions = new AnalyzerActions(*window, *new HandlerReports(*window));
        window->show();
    };
    measureTwo();
    inMenu([this] { actions->openMenu({}); }, [this](QMenu &) { delete window; });
    reopen();
    for (const AnalyzerCommand command : {AnalyzerCommand::EnableTools, AnalyzerCommand::SelectSources}) {
        robot->then([this](QDialog &dialog) {
            const QPointer<QDialog> kept(&dialog);
            delete window;
            if (kept)
                kept->close();
        });
        run(command);
        reopen();
    }
    onSummary = [this] { delete window; };
    run(AnalyzerCommand::DumpResults);
    reopen();
    onSummary = [] {};
    host.onRead = [this](const QString &) { delete window; };
    for (const AnalyzerCommand command : {AnalyzerCommand::DumpResults, AnalyzerCommand::SelectSources}) {
        run(command);
        reopen();
    }
    report("x"); // reads its geometry
    reopen();
    host.onRead = nullptr;
    actions->run(AnalyzerCommand::DumpResults);
    delete window; // while the report waits
    runOn();
    EXPECT_EQ(names(), "-");
}

} // namespace
