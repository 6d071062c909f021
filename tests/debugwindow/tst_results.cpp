// The table of method times: what stands in it, how it is sorted and copied, and how long reports come into
// it.

#include "debugwindow/analysistexts.h"
#include "debugwindow/checkboxdelegate.h"
#include "debugwindow/resultswindow.h"
#include "debugwindow/windowgeometry.h"
#include "support/guiapplication.h"

#include <QClipboard>
#include <QHeaderView>
#include <QStandardItemModel>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;

class Results : public ::testing::Test
{
protected:
    /// Fills the table to the end.
    void fill(AnalysisReport report)
    {
        table.setReport(std::move(report));
        ASSERT_TRUE(runUntil([this] { return !table.isFilling(); }));
    }
    [[nodiscard]] QString text(int row, int column) const
    {
        const auto &delegate = dynamic_cast<CheckBoxDelegate &>(*table.itemDelegate());
        return delegate.displayText(table.model()->index(row, column).data(), QLocale::German);
    }
    /// The cells of a row, joined by blanks.
    [[nodiscard]] std::string row(int number) const
    {
        QStringList cells;
        for (int column = 0; column < ResultsWindow::columnCount; ++column)
            cells += text(number, column);
        return cells.join(QLatin1Char(' ')).toStdString();
    }
    /// The cells of a column from top to bottom.
    [[nodiscard]] std::string column(int column) const
    {
        QStringList cells;
        for (int row = 0; row < table.model()->rowCount(); ++row)
            cells += text(row, column);
        return cells.join(QLatin1Char(' ')).toStdString();
    }
    [[nodiscard]] static AnalysisReport longReport(int rows)
    {
        AnalysisReport report{100, 0, 1000};
        for (int i = 0; i < rows; ++i)
            report.rows.push_back({"method" + std::to_string(i), 1, i % 100, i, 0});
        return report;
    }

    TestApplication<QApplication> application;
    ResultsWindow table{QRect(50, 60, 760, 320)};
};

const AnalysisReport threeRows{
    1000,
    500,
    2500,
    false,
    {{"nine", 0xABC, 9, 90, 27}, {"ten", 0x1'0000'0000, 10, 900, 5}, {"none", 2, 0, 10, 4}}};

TEST_F(Results, ShowSharesAndAveragesTheMostTimeFirst)
{
    fill(threeRows);
    EXPECT_EQ(row(0), "ten 10 90.000 90.000 0.500 100000000 45.000");
    EXPECT_EQ(row(1), "nine 9 9.000 10.000 3.000 00000abc 4.500");
    EXPECT_EQ(row(2), "none 0 1.000 0.000 0.000 00000002 0.500");
    std::string headers;
    for (int column = 0; column < ResultsWindow::columnCount; ++column) {
        headers += table.model()->headerData(column, Qt::Horizontal).toString().toStdString() + '|';
        EXPECT_FALSE(table.model()->headerData(column, Qt::Horizontal, Qt::ToolTipRole).toString().isEmpty());
    }
    EXPECT_EQ(headers, "method name|calls|% time|#s needed|#s overhead|thread ID|% CPU|");
    EXPECT_EQ(table.windowTitle(), QStringLiteral("test_window_results code analysis"));
    EXPECT_EQ(table.editTriggers(), QAbstractItemView::NoEditTriggers);
}

TEST_F(Results, HaveNoSharesOfNothing)
{
    AnalysisReport report = threeRows;
    report.totalCycles = 0;
    report.earliestStamp = 0x3FFFFFFFFFFFFFFF;
    report.latestStamp = 0;
    fill(report);
    EXPECT_EQ(column(ResultsWindow::TimeShare), "0.000 0.000 0.000");
    EXPECT_EQ(column(ResultsWindow::ProcessorShare), "0.000 0.000 0.000");
}

TEST_F(Results, SortNumbersAsNumbersAndStaySorted)
{
    fill(threeRows);
    table.sortByColumn(ResultsWindow::Calls, Qt::AscendingOrder);
    EXPECT_EQ(column(ResultsWindow::Calls), "0 9 10");
    table.sortByColumn(ResultsWindow::ThreadId, Qt::DescendingOrder);
    EXPECT_EQ(column(ResultsWindow::ThreadId), "100000000 00000abc 00000002");
    // The rows of a later report come in the same order as the model itself sorts them.
    for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        for (int sorted = 0; sorted < ResultsWindow::columnCount; ++sorted) {
            table.sortByColumn(sorted, order);
            const std::string expected = column(sorted);
            fill(threeRows);
            EXPECT_EQ(column(sorted), expected) << sorted;
        }
    }
}

TEST_F(Results, LetTheLoopGoOnWhileTheyFill)
{
    constexpr int rows = 30'000;
    table.setReport(longReport(rows));
    int eventsMeanwhile = 0;
    QTimer events;
    QObject::connect(&events, &QTimer::timeout, [&] { eventsMeanwhile += table.isFilling() ? 1 : 0; });
    events.start(0);
    table.horizontalHeader()->setSortIndicator(ResultsWindow::Calls, Qt::AscendingOrder); // a user's click
    ASSERT_TRUE(runUntil([this] { return !table.isFilling(); }));
    EXPECT_GT(eventsMeanwhile, 3);
    EXPECT_EQ(table.model()->rowCount(), rows);
    EXPECT_EQ(text(0, ResultsWindow::Calls), QStringLiteral("0"));
    EXPECT_EQ(text(rows - 1, ResultsWindow::Calls), QStringLiteral("99"));
}

TEST_F(Results, OfALaterReportReplaceThoseThatAreBeingFilledIn)
{
    table.setReport(longReport(100'000));
    EXPECT_TRUE(table.isFilling());
    fill(threeRows);
    EXPECT_EQ(column(ResultsWindow::MethodName), "ten nine none");
    fill({});
    EXPECT_EQ(table.model()->rowCount(), 0);
}

TEST_F(Results, CanGoWhenTheyAreManyAndSorted) // the time limit of the test run is what it may take
{
    auto many = std::make_unique<ResultsWindow>(QRect(0, 0, 300, 200));
    many->setReport(longReport(20'000));
    ASSERT_TRUE(runUntil([&many] { return !many->isFilling(); }));
    many->sortByColumn(ResultsWindow::Calls, Qt::AscendingOrder);
    many->setReport(longReport(100'000));
    many->sortByColumn(ResultsWindow::MethodName, Qt::AscendingOrder); // while it is filled
}

TEST_F(Results, KeepTheirNumbersWhole)
{
    fill(threeRows);
    AnalysisReport report = longReport(1000);
    report.rows[700] = {"big", 0xFEDC'BA98'7654, 2'000'000'000, 4'000'000'000'000'000, 1'000'000'000'000'000};
    QFont font = table.font();
    font.setPointSize(16);
    table.setFont(font);
    fill(report);
    table.sortByColumn(ResultsWindow::MethodName, Qt::DescendingOrder);
    const auto areWhole = [this] {
        const QModelIndex first = table.model()->index(0, 0);
        const QModelIndex big = table.model()->match(first, Qt::DisplayRole, QStringLiteral("big")).first();
        for (int column = 1; column < ResultsWindow::columnCount; ++column) {
            QStyleOptionViewItem option;
            option.font = table.font();
            const QSize needed = table.itemDelegate()->sizeHint(option, big.siblingAtColumn(column));
            if (table.columnWidth(column)
                < qMax(needed.width(), table.horizontalHeader()->sectionSizeHint(column)))
                return false;
        }
        return true;
    };
    EXPECT_TRUE(areWhole());
    font.setPointSize(24);
    table.setFont(font);
    EXPECT_TRUE(areWhole());
    table.horizontalHeader()->resizeSection(ResultsWindow::Calls, 333); // by the user
    fill(threeRows);
    EXPECT_EQ(table.columnWidth(ResultsWindow::Calls), 333);
}

TEST_F(Results, AreCopiedAsTheyAreShown)
{
    fill(threeRows);
    table.selectRow(2);
    table.selectionModel()->select(table.model()->index(0, 0),
                                   QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              QStringLiteral("ten\t10\t90.000\t90.000\t0.500\t100000000\t45.000\n"
                             "none\t0\t1.000\t0.000\t0.000\t00000002\t0.500"));
}

TEST_F(Results, RememberTheirPlace)
{
    EXPECT_EQ(table.place(), QRect(50, 60, 760, 320));
    table.setGeometry(10, 20, 300, 200);
    EXPECT_EQ(table.place(), QRect(10, 20, 300, 200));

    const windowgeometry::Desktop desktop{QRect(100, 0, 800, 600), 1};
    const QRect middle = windowgeometry::centred({760, 320}, desktop);
    EXPECT_TRUE(desktop.area.contains(middle));
    EXPECT_EQ(windowgeometry::placed(QStringLiteral("1;2;x"), desktop, middle), middle);
    EXPECT_EQ(windowgeometry::placed(QStringLiteral("5000;50;300;200"), desktop, middle),
              QRect(middle.x(), 50, middle.width(), 200));
    EXPECT_TRUE(desktop.area.contains(windowgeometry::centred({9000, 9000}, desktop)));
}

class Reports : public ::testing::Test
{
protected:
    void open()
    {
        reports = std::make_unique<AnalysisReports>(nullptr, [this](const AnalysisReport &report) {
            std::string names = std::to_string(report.totalCycles) + ':';
            for (const MethodRow &row : report.rows)
                names += row.name;
            taken.push_back(names);
        });
    }
    Reports() { open(); }
    void make(int total, const char *name, int rows) const
    {
        reports->begin({total});
        for (int i = 0; i < rows; ++i)
            reports->add(name, {});
        reports->complete();
    }

    TestApplication<QApplication> application;
    std::vector<std::string> taken;
    std::unique_ptr<AnalysisReports> reports;
};

TEST_F(Reports, AreHandedOverOnceAndOnlyTheLatest)
{
    reports->add("lost", {});
    reports->complete();
    QCoreApplication::processEvents();
    EXPECT_TRUE(taken.empty());
    make(1, "a", 2);
    reports->begin({2}); // never completed
    reports->add("b", {});
    make(3, "c", 3);
    reports->add(nullptr, {});
    EXPECT_TRUE(taken.empty()) << "not in the thread of the caller";
    QCoreApplication::processEvents();
    make(4, nullptr, 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(taken, (std::vector<std::string>{"3:ccc", "4:"}));
}

TEST_F(Reports, ThatWereAskedForComeFirst)
{
    int number = 0;
    for (const bool isAskedFor : {false, true, true, false}) {
        reports->begin({++number, 0, 0, isAskedFor});
        reports->complete();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(taken, std::vector<std::string>{"3:"});
}

TEST(Texts, ComeInPiecesAndInTheirOrder)
{
    const TestApplication<QApplication> application;
    std::string shown;
    int pieces = 0;
    AnalysisTexts texts(nullptr, [&](const std::string &piece) {
        if (++pieces == 1)
            texts.add("meanwhile");
        shown += piece + '\n';
    });
    std::string expected;
    for (int i = 0; i < 20'000; ++i) {
        const std::string text = i % 5 == 0 ? std::string() : "text " + std::to_string(i);
        texts.add(i % 2 == 0 ? text : text + '\n');
        expected += text + '\n';
    }
    texts.add(std::string(100'000, 'x') + "\n\n");
    expected += std::string(100'000, 'x') + "\n\nmeanwhile\n";
    EXPECT_TRUE(runUntil([&] { return shown.size() >= expected.size(); }));
    EXPECT_TRUE(shown == expected && pieces > 4);
}

TEST_F(Reports, OfSeveralThreadsDoNotMix)
{
    reports->begin({1});
    reports->add("a", {});
    inWorker([this] { // while this thread takes what is complete
        for (int i = 0; i < 200; ++i)
            make(2, "b", 20);
        return true;
    });
    reports->add("a", {});
    reports->complete();
    QCoreApplication::processEvents();
    ASSERT_FALSE(taken.empty());
    EXPECT_EQ(taken.back(), "1:aa");
    taken.pop_back();
    for (const std::string &report : taken)
        EXPECT_EQ(report, "2:" + std::string(20, 'b'));
}

TEST_F(Reports, MayWaitWhenTheirReceiverGoes)
{
    make(1, "a", 1);
    reports.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(taken.empty());
    reports = std::make_unique<AnalysisReports>(nullptr, [this](const AnalysisReport &) { reports.reset(); });
    make(1, "a", 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(reports, nullptr);
}

} // namespace
