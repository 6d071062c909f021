// Stored selections that become lists to choose from: the level filter and the source files of reports.

#include "debugwindow/sourcefilelist.h"
#include "fuzzapplication.h"
#include "fuzzcheck.h"
#include "leakanalyzer/sourcenames.h"
#include "settingsdialog/levelrows.h"

using namespace Zorvan;

namespace {

void checkLevels(const QString &filter, const QStringList &descriptions)
{
    QStringList selected;
    QStringList all;
    for (const levelrows::LevelRow &row : levelrows::arranged(descriptions, filter)) {
        require(!row.isSelected || selected.size() == all.size()); // they stand at the top
        require(!all.contains(row.entry));
        all += row.entry;
        if (row.isSelected)
            selected += row.entry;
    }
    QStringList entries = filter.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    entries.removeDuplicates();
    std::sort(entries.begin(), entries.end());
    require(levelrows::entriesWithout(filter, levelrows::filterOf(selected)).isEmpty());
    std::sort(selected.begin(), selected.end());
    require(selected == entries);
}

void checkSources(const QString &stored)
{
    const sourceFileList list(stored, nullptr);
    const QString selection = list.selection();
    require(sourceFileList(selection, nullptr).selection() == selection);
    const QByteArray filter = selection.toUtf8();
    for (const QByteArray &name : filter.split(';'))
        require(analysis::passesFilter(("C:\\source/" + name).constData(), filter.constData()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    startApplication();
    Input input(data, size);
    const auto text = [&] { return QString::fromUtf8(std::string(input.line()).c_str()); };
    checkSources(text());
    const QString filter = text();
    QStringList descriptions;
    while (!input.rest.empty())
        descriptions += text();
    checkLevels(filter, descriptions);
    return 0;
}
