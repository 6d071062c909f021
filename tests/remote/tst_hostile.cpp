// Clients that mean harm, or are broken: whatever they do, the others are served.

#include "remotetest.h"

#include <QAbstractEventDispatcher>

#include <cerrno>
#include <malloc.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

constexpr int mebibyte = 1 << 20;
bool s_noDescriptors = false;

class Hostile : public RemoteTest
{
protected:
    /// The witness gets its line, and its command is executed and echoed.
    void expectServed()
    {
        print(QStringLiteral("line"));
        EXPECT_TRUE(witness.waitFor("line\r\n"));
        witness.send(note("witness") + '\n');
        EXPECT_TRUE(witness.waitFor("<clientMessage>" + note("witness") + "\n</clientMessage>\r\n"));
        expectNotes({"witness"});
        witness.take();
    }
    static std::string beginOfDropNotice(RemoteClient &client)
    {
        return "++++ remote client 127.0.0.1, port " + std::to_string(client.socket().localPort())
            + " dropped: ";
    }

    Greeted witness{port};
};

/// The pieces for 0, 1, ... in a row.
template <typename Piece>
QByteArray inARow(int count, Piece piece)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += piece(i);
    return text;
}

TEST_F(Hostile, UnitsCostNobodyMuchTime)
{
    const std::pair<QByteArray, std::size_t> units[] = {
        // and how many of their commands are executed
        {"<hook key='note' parameters='x'", 0},
        {"<u>" + note("x") + "</v>" + note("y"), 1},
        {QByteArray("<u>\0</u>", 8), 0},
        {inARow(65536, [](int i) { return QByteArray(1, static_cast<char>(i * 7 + i / 256)); }), 0},
        {"<!DOCTYPE u [<!ENTITY a '" + QByteArray(50000, 'x') + "'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>]>"
             + note(QByteArray("&b;").repeated(2000)),
         0},
        {"<hook key='note'" + inARow(100000, [](int i) { return " a" + QByteArray::number(i) + "=''"; })
             + "/>",
         0},
        {QByteArray("<u>").repeated(300000) + note("x"), 0},
        {("<u" + inARow(100, [](int i) { return " xmlns:n" + QByteArray::number(i) + "='u'"; }) + '>')
                 .repeated(200)
             + QByteArray("<b/>").repeated(100000) + note("x"),
         1},
        {QByteArray("<hook key='note'>").repeated(300), 256}};
    Greeted attacker(port);
    for (const auto &[text, executed] : units) {
        SCOPED_TRACE(text.left(40).toStdString());
        const auto start = std::chrono::steady_clock::now();
        attacker.send(text + "the end\n");
        EXPECT_TRUE(attacker.waitFor("the end\n</clientMessage>\r\n"));
        EXPECT_EQ(notes.takeCalls().size(), executed);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
        expectServed();
        attacker.take();
    }
}

TEST_F(Hostile, LinesMayTakeTheirTimeButNotEndlessMemory)
{
    Greeted attacker(port);
    const QByteArray command = note("fits");
    for (const char byte : command) {
        attacker.send(QByteArray(1, byte));
        expectServed();
    }
    attacker.send(QByteArray(mebibyte - command.size() - 1, ' ') + '\n');
    expectNotes({"fits"});
    attacker.send(QByteArray(mebibyte - 1, 'x'));
    EXPECT_TRUE(runUntil([&] { return attacker.socket().bytesToWrite() == 0; }));
    expectServed();
    EXPECT_EQ(host.linesWith("++++ remote"), 0);
    const std::string notice = beginOfDropNotice(attacker) + "a line of more than 1 MiB";
    attacker.send(QByteArray(8 * mebibyte, 'x'));
    EXPECT_TRUE(attacker.waitForDisconnect());
    EXPECT_EQ(host.linesWith(notice.c_str()), 1);
}

TEST_F(Hostile, FloodsOfCommandsAreEchoedWhole)
{
    const QByteArray flood =
        inARow(60000, [](int i) { return note(QByteArray::number(i).rightJustified(16, '0')) + '\n'; });
    Greeted attacker(port);
    attacker.send(flood);
    const QByteArray end = flood.right(60) + "</clientMessage>\r\n";
    EXPECT_TRUE(attacker.waitFor(end));
    QByteArray joined;
    Strings firsts; // a unit is one document with one root
    for (const QByteArray &unit : witness.takeUntil(end).replace("</clientMessage>\r\n", "\a").split('\a')) {
        EXPECT_LE(unit.size(), mebibyte + 15);
        joined += unit.mid(15); // behind "<clientMessage>"
        if (!unit.isEmpty())
            firsts.push_back(unit.mid(44, 16).toStdString());
    }
    EXPECT_TRUE(joined == flood);
    expectNotes(firsts);
}

TEST_F(Hostile, ThousandsComeAndGo)
{
    const std::size_t memory = mallinfo2().uordblks;
    for (int i = 0; i < 2000; ++i) {
        RemoteClient visitor(port);
        visitor.send("<half");
        i % 2 ? visitor.reset() : visitor.close();
    }
    EXPECT_TRUE(runUntil([&] { return mallinfo2().uordblks < memory + mebibyte; }));
    expectServed();
}

TEST_F(Hostile, ClientsWaitWhileThereAreNoDescriptors)
{
    for (int shortage = 0; shortage < 2; ++shortage) {
        s_noDescriptors = true;
        RemoteClient starved(port);
        int turns = 0;
        const auto count = QObject::connect(QAbstractEventDispatcher::instance(),
                                            &QAbstractEventDispatcher::awake, [&turns] { ++turns; });
        EXPECT_FALSE(runUntil([] { return false; }, std::chrono::milliseconds(450)));
        QObject::disconnect(count);
        EXPECT_LT(turns, 1000) << "the event loop spins";
        EXPECT_EQ(host.linesWith("++++ remote access: cannot accept a client: "), 1);
        expectServed();
        s_noDescriptors = false;
        EXPECT_TRUE(starved.waitForGreeting());
    }
}

TEST_F(Hostile, ClientsThatDoNotReadAreDroppedAndTheOthersMissNothing)
{
    RemoteClient deaf(port);
    deaf.socket().setReadBufferSize(1);
    const std::string notice = beginOfDropNotice(deaf) + "it does not read its output";
    const QString message(1'000'000, QLatin1Char('x'));
    int printed = 0;
    int received = 0;
    std::ptrdiff_t notices = 0;
    EXPECT_TRUE(runUntil([&] {
        received += witness.take().count("\n");
        if (notices > 0 || received < printed)
            return notices > 0;
        print(printed < 75 ? message : QStringLiteral("x")); // 64 MiB, and what the network takes
        ++printed;
        notices = host.linesWith(notice.c_str());
        return false;
    }));
    EXPECT_EQ(notices, 1);
    EXPECT_GE(printed, 75);
    deaf.socket().setReadBufferSize(0);
    EXPECT_TRUE(deaf.waitForDisconnect());
    for (int i = 0; i < 80; ++i)
        print(message);
    EXPECT_TRUE(witness.waitFor("x"));
    print(QStringLiteral("while 80 MB are on their way"));
    printed += 80 + 1 + 1; // with the notice
    EXPECT_TRUE(runUntil([&] { return (received += witness.take().count("\n")) == printed; }));
}

TEST_F(Hostile, TheOnlyClientIsDroppedBeforeLinesAreTakenForIt)
{
    witness.close();
    RemoteClient deaf(port);
    deaf.socket().setReadBufferSize(1);
    const QString message = QString(1'000'000, QLatin1Char('x')) + QLatin1Char('\n');
    int printed = 0;
    bool dropped = false;
    EXPECT_TRUE(runUntil([&] {
        dropped = dropped || host.linesWith("it does not read its output") > 0;
        if (!dropped) {
            ++printed;
            print((printed < 75 ? message : QString()) + QStringLiteral("#%1#").arg(printed));
        }
        return dropped;
    }));
    runOn();
    EXPECT_NE(windowText().find('#' + std::to_string(printed) + '#'), std::string::npos);
}

} // namespace

/// Stands in for the system's function: a real shortage would blind the address checker, too.
extern "C" int accept4(int listening, sockaddr *address, socklen_t *length, int flags)
{
    if (!s_noDescriptors)
        return static_cast<int>(syscall(SYS_accept4, listening, address, length, flags));
    errno = EMFILE;
    return -1;
}
