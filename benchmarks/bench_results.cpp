// Reports of method times into their table: how many rows a second, and how long the event loop is held by
// it. Beside a model that is filled and sorted in one go.

#include "debugwindow/resultswindow.h"
#include "table.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QStandardItemModel>

#include <algorithm>
#include <cstdio>

using namespace bench;
using namespace Zorvan;

namespace {

constexpr int rounds = 5;
constexpr int mostInOneGo = 10'000; // more take minutes
constexpr double nanosecondsPerMs = 1e6;

AnalysisReport reportOf(int rows)
{
    AnalysisReport report;
    report.latestStamp = 1'000'000'000;
    for (int i = 0; i < rows; ++i) {
        const int total = static_cast<int>(i * 7919LL % 100'003);
        report.rows.push_back({"Generator::setLevelOfPath" + std::to_string(i), quint64(1000 + i % 8), i % 97,
                               total, total / 9});
        report.totalCycles += total;
    }
    return report;
}

struct Times
{
    std::vector<double> allMs;
    std::vector<double> longestMs; ///< that the loop was held
};

double ms(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / nanosecondsPerMs;
}

/// Until the table is full, as the event loop of a host would go.
void fillTable(ResultsWindow &table, int rows, Times &times)
{
    AnalysisReport report = reportOf(rows);
    QElapsedTimer all;
    QElapsedTimer held;
    all.start();
    held.start();
    table.setReport(std::move(report));
    double longest = ms(held);
    while (table.isFilling()) {
        held.start();
        QCoreApplication::processEvents();
        longest = std::max(longest, ms(held));
    }
    times.allMs.push_back(ms(all));
    times.longestMs.push_back(longest);
}

void fillInOneGo(QTableView &view, QStandardItemModel &model, int rows, Times &times)
{
    const AnalysisReport report = reportOf(rows);
    QElapsedTimer all;
    all.start();
    model.removeRows(0, model.rowCount());
    for (const MethodRow &row : report.rows) {
        QList<QStandardItem *> items;
        const double total = static_cast<double>(row.totalCycles);
        for (const QVariant &value :
             {QVariant(QString::fromStdString(row.name)), QVariant(row.calls), QVariant(total),
              QVariant(total), QVariant(total), QVariant(row.thread), QVariant(total)}) {
            items += new QStandardItem;
            items.last()->setData(value, Qt::DisplayRole);
        }
        model.appendRow(items);
    }
    view.sortByColumn(ResultsWindow::TimeShare, Qt::DescendingOrder);
    QCoreApplication::processEvents();
    times.allMs.push_back(ms(all));
    times.longestMs.push_back(ms(all));
}

void print(const char *name, int rows, const Times &times)
{
    const double all = median(times.allMs);
    char line[160];
    std::snprintf(line, sizeof line, "| %-28s | %7d | %10.1f | %9.0f | %18.1f |\n", name, rows, all,
                  rows / all * 1000, *std::max_element(times.longestMs.begin(), times.longestMs.end()));
    say(line);
}

void compare(int rows)
{
    ResultsWindow table(QRect(50, 50, 760, 320));
    QStandardItemModel model(0, ResultsWindow::columnCount);
    QTableView view;
    view.setModel(&model);
    view.setSortingEnabled(true);
    table.show();
    view.show();
    Times sliced;
    Times inOneGo;
    for (int round = 0; round < rounds; ++round) {
        fillTable(table, rows, sliced);
        if (rows <= mostInOneGo)
            fillInOneGo(view, model, rows, inOneGo);
    }
    print("table of results, in slices", rows, sliced);
    if (rows <= mostInOneGo)
        print("QStandardItemModel, in one go", rows, inOneGo);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    say("\n### Method times into a visible table that shows an earlier report\n\n"
        "| filled                       |    rows |     all ms |  rows / s | longest held, ms |\n"
        "|---|---|---|---|---|\n");
    for (const int rows : {1000, 10'000, 100'000})
        compare(rows);
}
