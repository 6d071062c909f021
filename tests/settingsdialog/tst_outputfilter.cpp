// The filter dialog: which levels it offers, and what becomes of the filters.

#include "debug/displayflags.h"
#include "gui/boxtest.h"
#include "settingsdialog/levelrows.h"
#include "settingsdialog/outputfilterdialog.h"

#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <algorithm>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;
using Strings = std::vector<std::string>;

/// "text=entry" of each row, with a star if it is selected.
Strings rows(const QStringList &descriptions, const char *filter)
{
    Strings texts;
    for (const auto &row : levelrows::arranged(descriptions, QLatin1String(filter)))
        texts.push_back((row.isSelected ? "*" : "") + row.text.toStdString() + '=' + row.entry.toStdString());
    return texts;
}

QStringList levels(const char *texts)
{
    return QString::fromLatin1(texts).split(QLatin1Char('/'));
}

TEST(LevelRows, StandForEachDescriptionOnceAndForForeignEntries)
{
    EXPECT_EQ(rows(levels("<  info>: /error, /<  info>:/ \t//a;b/<info>:/::"), ""),
              (Strings{"info=|<  info>:", "error=|error,", "info=|<info>:", "::=|::"}));
    EXPECT_EQ(rows(levels("info: /error: /x|y"), ";Scpi|warn;;|error:; ;Scpi|warn;|x|y;"),
              (Strings{"*error=|error:", "*x|y=|x|y", "*Scpi|warn=Scpi|warn", "* = ", "info=|info:"}));
}

/// The library with one module in use whose levels are "<  info>:" and "<error>:", and that prints both.
class OutputFilter : public BoxTest
{
protected:
    OutputFilter()
    {
        host.takeLines();
        for (moduleId id = 0; id < 27; ++id) // only the levels of the new one are looked at
            Debug::setMessageLevelDescriptions(id, 0, static_cast<const char **>(nullptr));
        const char *texts[] = {"<error>: ", "<  info>: "};
        module = Debug::createModule("Filtered", "Filtered");
        Debug::setMessageLevelDescriptions(module, 2, texts);
        Debug::setClippingLevel(module, 1);
        static_cast<void>(Debug::isActive(module, 0, 0));
    }
    static void showLevels(bool shown) { displayflags::change(displayflags::levelDescription, shown); }
    static QListWidget &list(QDialog &dialog) { return *dialog.findChild<QListWidget *>(); }
    static QLineEdit &field(QDialog &dialog) { return *dialog.findChild<QLineEdit *>(); }
    static Strings shown(QDialog &dialog)
    {
        Strings texts;
        for (const QListWidgetItem *const item : list(dialog).findItems({}, Qt::MatchContains))
            texts.push_back((item->isSelected() ? "*" : "") + item->text().toStdString());
        return texts;
    }
    static void clickRow(QDialog &dialog, int row)
    {
        QListWidget &rows = list(dialog);
        QTest::mouseClick(rows.viewport(), Qt::LeftButton, {}, rows.visualItemRect(rows.item(row)).center());
    }
    /// What comes out of an error and a piece of information.
    Strings printed()
    {
        host.takeLines();
        Debug::printFormattedString(module, 0, 0, QStringLiteral("Filtered <error>: broken"));
        Debug::printFormattedString(module, 0, 1, QStringLiteral("Filtered <  info>: started"));
        return host.takeLines();
    }
    static std::string filters()
    {
        return Debug::getLevelFilter().toStdString() + " & " + Debug::getOutputFilter().toStdString();
    }

    moduleId module = 0;
};

TEST_F(OutputFilter, OkSetsWhatWasChosenAndKeepsWhatOthersHaveSet)
{
    Debug::setLevelFilter(QStringLiteral("Scpi|warn;;|<error>:;"));
    robot->then([](QDialog &dialog) {
        EXPECT_EQ(shown(dialog), (Strings{"*error", "*Scpi|warn", "info"}));
        clickRow(dialog, 0);
        field(dialog).setText(QStringLiteral("other"));
        clickButton(dialog, "Cancel");
    });
    EXPECT_FALSE(editOutputFilter(nullptr));
    EXPECT_EQ(filters(), "Scpi|warn;;|<error>:; & ");
    robot->then([](QDialog &dialog) {
        QTest::keyClicks(&field(dialog), QStringLiteral("brok.n"));
        QTest::keyClick(&field(dialog), Qt::Key_Return);
    });
    EXPECT_TRUE(editOutputFilter(nullptr));
    EXPECT_EQ(filters(), "|<error>:;Scpi|warn & brok.n");
    EXPECT_EQ(printed(), Strings{"Filtered <error>: broken"});
    robot->then([](QDialog &dialog) {
        clickRow(dialog, 0);
        clickRow(dialog, 2);
        field(dialog).clear();
        clickButton(dialog, "Ok");
    });
    EXPECT_TRUE(editOutputFilter(nullptr));
    EXPECT_EQ(printed(), Strings{"Filtered <  info>: started"});
    for (const bool isChanged : {false, true}) {
        Debug::setLevelFilter(QStringLiteral("a|b"));
        robot->then([isChanged](QDialog &dialog) {
            Debug::setLevelFilter(QStringLiteral("a|b;remote|c"));
            Debug::setOutputFilter(QStringLiteral("remote"));
            if (isChanged)
                clickRow(dialog, 0);
            clickButton(dialog, "Ok");
        });
        EXPECT_TRUE(editOutputFilter(nullptr));
        EXPECT_EQ(filters(), isChanged ? "remote|c & remote" : "a|b;remote|c & remote");
    }
}

TEST_F(OutputFilter, ListsALongFilter)
{
    QString filter;
    for (int i = 0; i < 20'000; ++i)
        filter += QStringLiteral(";|text %1").arg(i);
    Debug::setLevelFilter(filter.mid(1));
    robot->click("Ok");
    EXPECT_TRUE(editOutputFilter(nullptr));
    EXPECT_EQ(Debug::getLevelFilter(), filter.mid(1));
}

TEST_F(OutputFilter, WithoutLevelsInTheLinesItWarnsAndKeepsTheLevelFilter)
{
    Debug::setLevelFilter(QStringLiteral("Scpi|warn;"));
    showLevels(false);
    robot->then([](QDialog &box) {
        EXPECT_EQ(box.windowTitle(), QStringLiteral("warning"));
        clickButton(box, "OK");
    });
    robot->then([](QDialog &dialog) {
        list(dialog).clearSelection();
        field(dialog).setText(QStringLiteral("text"));
        clickButton(dialog, "Ok");
    });
    EXPECT_TRUE(editOutputFilter(nullptr));
    EXPECT_EQ(filters(), "Scpi|warn; & text");
    showLevels(true);
}

TEST_F(OutputFilter, ShowsFiveLevelsInTheFontOfItsParent)
{
    QWidget parent;
    QFont large = parent.font();
    large.setPointSize(large.pointSize() * 2);
    parent.setFont(large);
    Debug::setLevelFilter(QStringLiteral("|<code>:;|b;|c"));
    robot->then([&](QDialog &dialog) {
        EXPECT_EQ(list(dialog).font().pointSize(), large.pointSize());
        EXPECT_EQ(field(dialog).font().pointSize(), large.pointSize());
        EXPECT_TRUE(QFontInfo(field(dialog).font()).fixedPitch());
        ASSERT_EQ(list(dialog).count(), 5);
        dialog.resize(dialog.minimumSizeHint());
        const QRect last = list(dialog).visualItemRect(list(dialog).item(4));
        EXPECT_TRUE(list(dialog).viewport()->rect().contains(last)) << last.bottom();
        EXPECT_EQ(list(dialog).item(0)->toolTip(), QStringLiteral("|&lt;code&gt;:")) << "taken for markup";
        dialog.reject();
    });
    EXPECT_FALSE(editOutputFilter(&parent));
}

TEST_F(OutputFilter, TellsWhatIsWrongWithTheExpressionAndAcceptsItAllTheSame)
{
    const QString tooMuch(5000, QLatin1Char('('));
    robot->then([&](QDialog &dialog) {
        const auto complains = [&](const QString &text) {
            field(dialog).setText(text);
            const QList<QLabel *> labels = dialog.findChildren<QLabel *>();
            return std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
                return label->buddy() == nullptr && !label->text().isEmpty();
            });
        };
        for (const char *const fine : {"", "a.b", "(a)"})
            EXPECT_FALSE(complains(QLatin1String(fine))) << fine;
        for (const QString &bad : {QStringLiteral("["), QStringLiteral("(a"), tooMuch})
            EXPECT_TRUE(complains(bad)) << bad.size();
        clickButton(dialog, "Ok");
    });
    EXPECT_TRUE(editOutputFilter(nullptr));
    EXPECT_EQ(Debug::getOutputFilter(), tooMuch);
}

TEST_F(OutputFilter, NothingIsSetWhenTheParentOrTheLibraryGoesMeanwhile)
{
    auto *const parent = new QWidget;
    robot->then([&](QDialog &) { delete parent; });
    EXPECT_FALSE(editOutputFilter(parent));

    showLevels(false);
    auto *const other = new QWidget;
    robot->then([&](QDialog &box) {
        delete other;
        clickButton(box, "OK");
    });
    EXPECT_FALSE(editOutputFilter(other));
    showLevels(true);

    robot->then([](QDialog &dialog) {
        Debug::exitDebug();
        Debug::initDebug();
        field(dialog).setText(QStringLiteral("late"));
        dialog.accept();
    });
    EXPECT_FALSE(editOutputFilter(nullptr));
    EXPECT_EQ(filters(), " & ");
}

} // namespace
