// The link to the debug daemon, with a daemon in a process of its own.

#include "process/daemontest.h"
#include "support/guiapplication.h"
#include "support/maphost.h"

#include <zorvan/debug.h>

#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

using namespace Zorvan;
using namespace Zorvan::platform::tests;
using Lines = std::vector<std::string>;

namespace {

const std::string testing = "++++ testing server installation...";
const std::string starting = "++++ starting debug daemon process...";
const std::string connecting = "++++ connecting to server...";
const std::string running = "++++ server running!";
const char *const progressStart = "<progress>messageStart</progress>";

using DaemonLinks = test::DaemonLinkTest;

TEST_F(DaemonLinks, TheProcessStartsOneDaemonAndKeepsItsLinkToTheEnd)
{
    installDaemon("DebugDaemon");
    const mode_t mask = umask(0); // as in processes that made themselves daemons
    EXPECT_TRUE(initDebugDaemon(m_port, m_secondPort, nullptr));
    umask(mask);
    EXPECT_EQ(std::to_string(m_port) + "\n5001\n", test::readFile(lockFile()));
    EXPECT_EQ(m_secondPort, 5001);
    EXPECT_EQ(log(), (Lines{testing, starting, connecting, running}));

    int port = 7;
    int secondPort = 8;
    EXPECT_TRUE(initDebugDaemon(port, secondPort, "other"));
    EXPECT_EQ(port, 7) << "a later call leaves them alone";
    EXPECT_EQ(secondPort, 8);
    daemonLink().sendProgress("messageStart");

    exitDebugDaemon();
    exitDebugDaemon();
    EXPECT_TRUE(receives(std::string(progressStart) + "<exit/>"));
    EXPECT_EQ(daemonLink().showBox("title", "text", 4, {}), DaemonLink::sendingFailed) << "up, but closed";
    EXPECT_TRUE(initDebugDaemon(port, secondPort, nullptr));
    EXPECT_EQ(log().size(), 4U);
}

TEST_F(DaemonLinks, ARunningDaemonIsUsed)
{
    startDaemon();
    const std::string pid = test::readFile(m_folder / "pid");
    EXPECT_TRUE(setUp());
    EXPECT_EQ(log(), (Lines{testing, connecting, running}));
    EXPECT_EQ(test::readFile(m_folder / "pid"), pid);
}

TEST_F(DaemonLinks, RequestsArriveByteForByte)
{
    EXPECT_EQ(m_link.showBox("Ti\xdf", "1 < 2 & 3\n[#]", 4, {0, 16384, 0, 0xffffffffU}), 16384);
    m_link.sendProgress("messageStart");
    m_link.sendProgress("messageStop");
    EXPECT_EQ(ask(), 16384);
    EXPECT_TRUE(receives("<msgbox>4[#]Ti\xdf[#]1 < 2 & 3\n[#][#]16384[#]4294967295</msgbox>"
                         "<progress>messageStart</progress><progress>messageStop</progress>"
                         "<assert>why</assert>"));
}

TEST_F(DaemonLinks, AnAnswerIsWaitedForUntilItIsWhole)
{
    m_answers.set("262144 pieces:524288 late:1048576 -1 0 short");
    ASSERT_TRUE(setUp());
    for (const int code : {0x40000, 0x80000, 0x100000, -1, 0})
        EXPECT_EQ(ask(), code);
    EXPECT_EQ(ask(), DaemonLink::noAnswer) << "two bytes and the end";
}

TEST_F(DaemonLinks, ADaemonThatHangsUpOrDiesEndsTheWait)
{
    for (const char *word : {"hangup", "die"}) {
        std::filesystem::remove(lockFile());
        m_answers.set(word);
        DaemonLink link(m_program);
        ASSERT_TRUE(link.setUp(m_port, m_secondPort, nullptr));
        const platform::Locked guard(link);
        EXPECT_EQ(link.ask("<assert>1</assert>"), DaemonLink::noAnswer) << word;
        // The system may take one more request before it knows that nobody is there.
        EXPECT_TRUE(eventually([&] { return link.ask("<assert>2</assert>") == DaemonLink::sendingFailed; }));
    }
}

TEST_F(DaemonLinks, WithoutAProgramTheSearchEndsAtOnce)
{
    std::filesystem::remove(m_folder / m_program);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(setUp());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << "no daemon is waited for";
    EXPECT_EQ(m_port, -1);
    EXPECT_EQ(m_secondPort, -1);
    EXPECT_EQ(m_link.showBox("title", "text", 4, {}), DaemonLink::noAnswer);
    m_link.sendProgress("messageStart");
    installDaemon(m_program);
    EXPECT_FALSE(setUp()) << "never tried twice";
    EXPECT_EQ(log(), (Lines{testing, starting}));
}

TEST_F(DaemonLinks, ALockFileLeftBehindOrPlantedDoesNotCount)
{
    test::writeFile(lockFile("left"), "1"); // incomplete until the new daemon replaces it
    EXPECT_TRUE(setUp("left"));
    EXPECT_NE(m_port, 1) << "that of the new daemon";

    test::writeFile(m_folder / "file", std::to_string(m_port) + "\n5001\n");
    std::filesystem::create_symlink(m_folder / "file", lockFile("planted"));
    std::filesystem::remove(m_folder / m_program);
    EXPECT_FALSE(DaemonLink(m_program).setUp(m_port, m_secondPort, "planted"));
    EXPECT_EQ(m_port, -1);
}

TEST_F(DaemonLinks, AnIncompleteLockFileIsReadTenTimes)
{
    m_content.set("5000");
    startDaemon();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(setUp());
    const Lines lines = test::linesOf(testing::internal::GetCapturedStderr());
    EXPECT_EQ(lines, Lines(10, "opened port count: 1"));
    EXPECT_EQ(m_port, -1);
    EXPECT_EQ(log(), (Lines{testing}));
}

TEST_F(DaemonLinks, ADaemonThatWasStartedCountsEvenIfItTellsNoPort)
{
    m_content.set(std::nullopt);
    EXPECT_TRUE(setUp());
    EXPECT_EQ(m_port, -1);
    EXPECT_EQ(log(), (Lines{testing, starting, connecting, running}));
    const platform::Locked guard(m_link);
    EXPECT_FALSE(m_link.isUp());
}

TEST_F(DaemonLinks, AnInstanceNameIsOneArgumentAndStaysInTheFolder)
{
    EXPECT_TRUE(setUp("../a \\b;$HOME"));
    EXPECT_TRUE(std::filesystem::exists(lockFile(".._a _b;$HOME")));
}

TEST_F(DaemonLinks, ModalBoxesAreAnnouncedWhileTheyWaitForTheirUser)
{
    installDaemon("DebugDaemon");
    const test::TestApplication<QApplication> application;
    test::MapHost host;
    host.writeStringSetting("ProgressBar", QStringLiteral("useDaemon"), QStringLiteral("1"));
    test::Robot robot;
    Debug::initDebug();
    QCoreApplication::processEvents();
    const auto askBox = [](bool modal) {
        const QString text = QStringLiteral("text");
        return Debug::debugMessageBox(text, text, modal, 0, 1, 0, 0);
    };
    robot.click("OK");
    EXPECT_GT(askBox(false), 1);
    EXPECT_TRUE(test::runUntil([&] { return robot.left() == 0 && test::allDialogs().isEmpty(); }));
    IMessageBoxInterface handler;
    Debug::installMessageBoxHandler(&handler);
    EXPECT_EQ(askBox(true), 1);
    Debug::installMessageBoxHandler(nullptr);
    EXPECT_FALSE(std::filesystem::exists(lockFile())) << "nothing to announce so far";
    robot.then([this](QDialog &box) {
        EXPECT_TRUE(receives(progressStart));
        test::clickButton(box, "OK");
    });
    EXPECT_EQ(askBox(true), 1);
    Debug::exitDebug();
    EXPECT_TRUE(receives("<progress>messageStart</progress><progress>messageStop</progress><exit/>"));
}

/// Ends the library with text in its window; what is in the output file then.
std::string fileAfterExitQuestion(const std::string &file)
{
    const test::TestApplication<QApplication> application;
    test::MapHost host;
    host.store("enableQuitMessage", 1);
    host.store("DebugServerFile", file.c_str());
    host.store("DebugServerFileSize", 1); // neither counts for what is saved now
    std::ofstream(file) << "of the last run\r\n";
    Debug::initDebug();
    Debug::println(2, 0, QStringLiteral("one\ntwo"), 0);
    EXPECT_TRUE(test::runUntil([] { return !test::windowText().empty(); }));
    Debug::println(2, 0, QStringLiteral("on its way"), 0);
    Debug::exitDebug();
    return test::readFile(file);
}

TEST_F(DaemonLinks, TheTextOfTheWindowIsSavedAtTheEndIfTheUserWantsThat)
{
    installDaemon("DebugDaemon");
    const std::string file = m_folder / "saved";
    const std::string header = "<debug message>, <+ CRITICAL +>: ";
    EXPECT_EQ(fileAfterExitQuestion(file),
              "of the last run\r\n" + header + "one\r\n" + header + "two\r\n" + header + "on its way\r\n");
    EXPECT_TRUE(receives("<msgbox>4[#]KLV exit message[#]The application has now finished and all resources "
                         "are released.\n\nDo you want to save the remaining messages in file\n'"
                         + file + "' ?[#]16384[#]65792</msgbox><exit/>"));
}

TEST_F(DaemonLinks, TheTextOfTheWindowIsNotSavedIfTheUserDoesNotWantThat)
{
    installDaemon("DebugDaemon");
    m_answers.set("65536");
    EXPECT_EQ(fileAfterExitQuestion(m_folder / "saved"), "of the last run\r\n");
}

int openSockets()
{
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        count += std::filesystem::read_symlink(entry, gone).string().rfind("socket:", 0) == 0 ? 1 : 0;
    }
    return count;
}

TEST_F(DaemonLinks, AChildOfAForkHasALinkOfItsOwn)
{
    installDaemon("DebugDaemon");
    m_answers.set("silent");
    const int before = openSockets();
    ASSERT_TRUE(initDebugDaemon(m_port, m_secondPort, nullptr));
    std::thread waiting([] { EXPECT_EQ(daemonLink().showBox("a", "b", 1, {}), DaemonLink::noAnswer); });
    const std::string box = "<msgbox>1[#]a[#]b</msgbox>";
    EXPECT_TRUE(receives(box));
    const pid_t child = fork();
    if (child == 0) {
        alarm(60); // ends a child that waits for the parent's lock
        const bool closed = openSockets() == before;
        daemonLink().sendProgress("messageStart");
        exitDebugDaemon();
        _exit(closed ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(receives(std::string(progressStart) + "<exit/>", 2));
    EXPECT_EQ(received(1), box) << "the parent's connection is untouched";
    exitDebugDaemon();
    waiting.join();
    EXPECT_TRUE(receives(box + "<exit/>"));
}

} // namespace
