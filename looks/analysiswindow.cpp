// Draws the table of method times, the choice of source files and the menu of the analysis tools, without
// frames, into PNG files, for people to look at: looks_analysis FOLDER

#include "debugwindow/analyzermenu.h"
#include "debugwindow/resultswindow.h"
#include "debugwindow/sourcesdialog.h"
#include "pictures.h"

#include <QMenu>

namespace {

using namespace Zorvan;

AnalysisReport report()
{
    AnalysisReport report{41'250'000, 1'000'000, 96'000'000};
    report.rows = {
        {"RfPath::setLevel", 0x1a2b, 1812, 21'000'000, 310'000},
        {"RfPath::setFrequency", 0x1a2b, 640, 9'800'000, 120'500},
        {"Database::parameterOf<std::pair<Channel, Parameter>>(const Channel &, Parameter)", 0x1a2b, 24,
         7'300'000, 4'100},
        {"Scpi::parse", 0x1a2c, 99, 2'900'000, 17'000},
        {"Scpi::answer", 0x1a2c, 98, 250'000, 16'000},
    };
    return report;
}

bool drawTable(const QDir &folder, const QString &ending, const QSize &size)
{
    ResultsWindow table(QRect(QPoint(50, 50), size));
    table.setFont(QFont(QStringLiteral("DejaVu Sans Mono"), 9));
    table.setReport(report());
    table.show();
    table.selectRow(1);
    return looks::save(table, folder, QStringLiteral("results") + ending);
}

bool drawDialog(const QDir &folder, const QString &ending)
{
    SourcesDialog dialog(QStringLiteral("rfpath.cpp;database.cpp"), nullptr);
    for (const char *const file : {"src/scpi.cpp", "src/rfpath.cpp", "src\\kernel.cpp"})
        dialog.files().methodInformation(file, 1, "");
    dialog.show();
    return looks::save(dialog, folder, QStringLiteral("sources") + ending);
}

bool drawMenu(const QDir &folder, const QString &ending, const AnalyzerState &state)
{
    QMenu menu;
    fillAnalyzerMenu(menu, state);
    menu.popup({});
    return looks::save(menu, folder, ending);
}

bool draw(const QDir &folder, int lightness, const QString &ending)
{
    looks::setGround(lightness);
    const bool hasTables = drawTable(folder, ending, {760, 320})
        && drawTable(folder, QStringLiteral("-narrow") + ending, {480, 160});
    return hasTables && drawDialog(folder, ending)
        && drawMenu(folder, QStringLiteral("menu") + ending, {true, false, true, false})
        && drawMenu(folder, QStringLiteral("menu-off") + ending, {});
}

} // namespace

int main(int argc, char **argv)
{
    return looks::drawInto(argc, argv, [](const QDir &folder) {
        return draw(folder, looks::light, QStringLiteral(".png"))
            && draw(folder, looks::dark, QStringLiteral("-dark.png"));
    });
}
