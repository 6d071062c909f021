// The file selection: what is chosen, by whom, and what comes instead when nothing can be asked.

#include "boxtest.h"
#include "support/programdata.h"

#include <QFileDialog>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

const QString &select()
{
    return Debug::debugFileSelect(QStringLiteral("Open a trace"), QString::fromStdString(libraryFolder()),
                                  QStringLiteral("Traces (*.trc);;All files (*)"));
}

class FileSelection : public BoxTest
{
protected:
    FileSelection()
    {
        writeFile(first.toStdString(), "1");
        writeFile(second.toStdString(), "2");
    }

    const QString first = QString::fromStdString(libraryFile("first.trc"));
    const QString second = QString::fromStdString(libraryFile("second.trc"));
};

TEST_F(FileSelection, GivesTheChosenPathToEveryThread)
{
    robot->then([this](QDialog &dialog) {
        auto *const files = qobject_cast<QFileDialog *>(&dialog);
        ASSERT_NE(files, nullptr);
        EXPECT_EQ(files->windowTitle(), QStringLiteral("Open a trace"));
        EXPECT_EQ(files->nameFilters().first(), QStringLiteral("Traces (*.trc)"));
        EXPECT_EQ(files->directory().absolutePath(), QString::fromStdString(libraryFolder()));
        EXPECT_EQ(files->fileMode(), QFileDialog::ExistingFile);
        files->close();
    });
    EXPECT_EQ(select(), QString());
    robot->choose(first);
    const QString &mine = select();
    EXPECT_EQ(mine, first);
    robot->choose(second);
    EXPECT_EQ(inWorker([] { return select(); }), second);
    EXPECT_EQ(mine, first) << "another thread's answer does not change what this one holds";
    robot->close();
    EXPECT_EQ(inWorker([] { return select(); }), QString());
    robot->close();
    EXPECT_EQ(select(), QString());
    EXPECT_EQ(mine, QString()) << "the thread's next question does";
}

TEST_F(FileSelection, ThatIsRefusedGivesThePreviousPath)
{
    const char *const noLoop = "++++ trying to use a file selector without having a running event loop!";
    const char *const noQt = "++++ file selectors boxes are not usable outside an QT application!";
    robot->choose(first);
    EXPECT_EQ(inWorker([] { return select(); }), first);
    host.store("enableFileSelect", 0);
    host.takeLines();
    EXPECT_EQ(select(), first);
    host.store("enableFileSelect", 1);
    Debug::setOutputReceiver(-1, [](hookData *) {});
    EXPECT_EQ(select(), first);
    Debug::setOutputReceiver(-1, nullptr);
    EXPECT_EQ(host.takeLines().size(), 0U) << "nothing to complain about";
    Debug::eventLoopFinished();
    EXPECT_EQ(inWorker([] { return select(); }), first);
    EXPECT_EQ(select(), first);
    EXPECT_EQ(host.linesWith(noLoop), 2);
    endApplication();
    Debug::initDebug();
    EXPECT_EQ(select(), first);
    EXPECT_EQ(host.linesWith(noQt), 1);
}

} // namespace
