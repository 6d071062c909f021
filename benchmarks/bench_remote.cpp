// Remote clients: what a line of output costs the thread with the event loop for the first and for each
// further client; how long a command takes; the greeting; clients that come and go, and one that never reads.
// "growth": only how the cost of a line grows with the number of clients.

#include "comparison.h"
#include "debugserverqueue/debugserverqueue.h"
#include "debugserverqueue/greeting.h"
#include "debugserverqueue/guibridge.h"
#include "guiloop.h"
#include "host.h"
#include "remoteclients.h"
#include "table.h"
#include "waits.h"

#include <QTcpSocket>

using namespace bench;
using Zorvan::Debug;
using Zorvan::DebugServerSocket;
using Zorvan::moduleId;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view endOfGreeting = "</DebugServer>\r\n";

/// Opens the port and reads the notices about it.
class RemoteHost final : public Zorvan::IUtilityInterface
{
public:
    int readIntegerSetting(const char *, const QString &key, int defaultValue) override
    {
        const bool isPort = key == QLatin1String("serverPort"); // 0: any that is free
        return isPort ? 0 : key == QLatin1String("serverPortOpen") ? 1 : defaultValue;
    }
    QString readStringSetting(const char *, const QString &key, const QString &defaultValue) override
    {
        return key == QLatin1String("serverAddress") ? QStringLiteral("127.0.0.1") : defaultValue;
    }
    void outputLine(const QString &line) override
    {
        if (line.contains(QLatin1String("listening on")))
            port = line.section(QLatin1Char(' '), -1).toUShort();
        hasDropped = hasDropped || line.contains(QLatin1String("does not read its output"));
    }

    quint16 port = 0;
    bool hasDropped = false; ///< a client
};

/// What Qt alone does: sends as it is told, and sends back each line that comes.
class PlainServer final : public QTcpServer
{
public:
    PlainServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            m_clients.push_back(nextPendingConnection());
            QTcpSocket *const client = m_clients.back();
            client->setSocketOption(QAbstractSocket::LowDelayOption, 1);
            connect(client, &QIODevice::readyRead, client, [client] {
                client->write(client->readLine());
                client->flush();
            });
        });
    }

    /// Writes the pieces one after the other, again and again.
    void send(std::initializer_list<QByteArray> pieces, int times)
    {
        for (QTcpSocket *const client : m_clients) {
            for (int i = 0; i < times; ++i) {
                for (const QByteArray &piece : pieces)
                    client->write(piece.constData(), piece.size());
            }
            client->flush();
        }
    }

private:
    std::vector<QTcpSocket *> m_clients;
};

/// Handles connections that came or went just now.
void settleConnections()
{
    const auto end = Clock::now() + std::chrono::milliseconds(20);
    while (Clock::now() < end)
        QCoreApplication::processEvents();
}

constexpr int batchLines = 1000;
constexpr int samples = 200;

/// A way of a batch to its clients.
struct Way
{
    Drain &clients;
    WaitTimes times; ///< per line
    std::function<void()> send;
    std::function<void()> prepare = [] {};
};

enum WayIndex : std::size_t { TwoWrites, OneWrite, Server, Queue };

void sample(Way &way)
{
    way.prepare();
    way.clients.expect(batchLines);
    const double start = processorTime();
    way.send();
    way.clients.await(0);
    way.times.times.push_back((processorTime() - start) / batchLines);
}

/// All ways in turn, each to so many clients.
std::vector<Result> timeWays(quint16 port, moduleId module, int clients)
{
    const QByteArray line(100, 'x');
    const QByteArray batch = (line + '\n').repeated(batchLines).chopped(1);
    const auto print = [module, text = QString::fromLatin1(line)] {
        for (int i = 0; i < batchLines; ++i)
            Debug::printFormattedString(module, enabledClass, infoLevel, text);
    };
    PlainServer plain;
    PlainServer plainToo; // a connection that was used just now is faster
    const DebugServerSocket::Owner server(new DebugServerSocket(0, QHostAddress(QHostAddress::LocalHost)));
    const int greetingLines = Zorvan::greeting().count('\n');
    Drain ofPlain(plain.serverPort(), clients, 0);
    Drain ofPlainToo(plainToo.serverPort(), clients, 0);
    Drain ofServer(server->serverPort(), clients, greetingLines);
    Drain ofQueue(port, clients, greetingLines);
    settleConnections();
    const auto writeLines = [&] { plain.send({line, "\r\n"}, batchLines); };
    std::vector<Way> ways = {
        {ofPlain, {"two writes per line", {}}, writeLines},
        {ofPlainToo, {"one write per batch", {}}, [&] { plainToo.send({batch + "\r\n"}, 1); }},
        {ofServer, {"DebugServerSocket::send()", {}}, [&] { server->send(batch); }},
        {ofQueue, {"from the queue on", {}}, [] { Zorvan::guibridge::queueHere()->timeout(); }, print},
    };
    for (int i = 0; i < samples; ++i)
        std::for_each(ways.begin(), ways.end(), sample);
    std::vector<Result> results;
    for (const Way &way : ways)
        results.push_back(resultAt(way.times, 0.5));
    return results;
}

void measureOutput(quint16 port, moduleId module)
{
    Table table("A line of 100 bytes in a batch of 1000: processor time of the loop's thread",
                Table::Unit::Nanoseconds);
    const std::vector<Result> one = timeWays(port, module, 1);
    table.row(one[TwoWrites]);
    table.row(one[OneWrite], one[TwoWrites]);
    table.row(one[Server], one[TwoWrites], 0.8);
    table.row(one[Queue], one[TwoWrites], 0.8);
    for (const int clients : {2, 4, 16}) {
        const std::vector<Result> many = timeWays(port, module, clients);
        settleConnections();
        for (const std::size_t way : {TwoWrites, OneWrite, Server, Queue}) {
            Result further = many[way];
            further.name += ", each further of " + std::to_string(clients);
            further.figures.call = (many[way].figures.call - one[way].figures.call) / (clients - 1);
            if (way >= Server)
                table.row(further, one[TwoWrites], 0.3);
            else
                table.row(further, one[TwoWrites]);
        }
    }
    table.note("In each figure is the wake-up that tells the loop that all clients have the batch.");
}

/// By the number of clients, what a line costs for each of them.
void showGrowth(quint16 port, moduleId module)
{
    const GrowthTable table("Remote clients", {1, 4, 16, 64});
    std::vector<std::vector<double>> figures(Queue + 1);
    for (const double clients : table.numbers()) {
        const std::vector<Result> all = timeWays(port, module, static_cast<int>(clients));
        settleConnections();
        for (std::size_t way = 0; way < all.size(); ++way)
            figures[way].push_back(all[way].figures.call / clients);
    }
    table.row("Line of 100 bytes, for each client, from the queue on", figures[Queue]);
    table.row("The same by the server alone", figures[Server]);
    table.row("For comparison: QTcpSocket, one write for each batch", figures[OneWrite]);
    table.row("QTcpSocket, two writes for each line", figures[TwoWrites]);
}

void timeRoundTrips(Table &table, int rounds, RemoteClient &ours, RemoteClient &bare, const std::string &when)
{
    const auto echo = [&bare] {
        bare.send("<x/>\n");
        bare.readUntil("<x/>\n");
    };
    const auto command = [&ours] {
        ours.send("<x/>\n");
        ours.readUntil("<clientMessage><x/>\n</clientMessage>\r\n");
    };
    const auto rest = [] { std::this_thread::sleep_for(std::chrono::microseconds(300)); };
    const auto times =
        timeWaits(rounds, {{"bare echo" + when, echo, rest}, {"command" + when, command, rest}});
    for (const double share : {0.5, 0.99}) {
        const std::string suffix = share < 0.9 ? ", median" : ", 99 %";
        const Result baseline = resultAt(times[0], share, suffix);
        table.row(baseline);
        table.row(resultAt(times[1], share, suffix), baseline, 3.0);
    }
}

void measureRoundTrips(quint16 port, quint16 echoPort, moduleId module)
{
    RemoteClient ours(port);
    RemoteClient bare(echoPort);
    ours.readUntil(endOfGreeting);
    Table table("From a command to its echo", Table::Unit::Microseconds);
    timeRoundTrips(table, 3000, ours, bare, "");
    std::atomic<bool> ended{false};
    std::vector<std::thread> producers;
    while (producers.size() < 4) {
        producers.emplace_back([&ended, module, text = QString(50, QLatin1Char('x'))] {
            while (!ended)
                Debug::println(module, enabledClass, text, infoLevel);
        });
    }
    timeRoundTrips(table, 1000, ours, bare, ", 4 threads print");
    ended = true;
    for (std::thread &producer : producers)
        producer.join();
}

void title(const std::string &text)
{
    say("\n### " + text + "\n\n| | | |\n|---|--:|---|\n");
}

void row(const std::string &what, double figure, int decimals, const std::string &wanted = {},
         bool isMet = true)
{
    say("| " + what + " | " + number(figure, decimals) + " | " + wanted + (isMet ? "" : " MISSED") + " |\n");
}

double residentMiB()
{
    return residentBytes() / (1 << 20);
}

/// Half of the clients say goodbye, the others vanish with a reset.
std::vector<double> connectAndLeave(quint16 port, int count)
{
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        const auto start = Clock::now();
        RemoteClient client(port);
        client.readUntil(endOfGreeting);
        const linger end{i % 2, 0};
        setsockopt(client.socket(), SOL_SOCKET, SO_LINGER, &end, sizeof end);
        times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    return times;
}

void measureConnects(quint16 port)
{
    connectAndLeave(port, 200);
    const double before = residentMiB();
    const std::vector<double> times = connectAndLeave(port, 10'000);
    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // the last ones are deleted
    const double grown = residentMiB() - before;
    title("10,000 clients that come, are greeted and leave");
    row("from connecting to the end of the greeting, median, us", median(times), 1);
    row("resident memory afterwards, MiB more", grown, 1, "<= 2", grown <= 2);
}

constexpr int floodLines = 400'000; // of 1000 bytes

/// Output to two clients that read everything.
struct Flood
{
    double rate = 0; ///< MB/s to each of the two
    double memory = 0; ///< at most, beyond that at the start, in MiB
    double sentUntilDropped = 0; ///< of another client, in MB; 0: it is still there
};

Flood flood(quint16 port, moduleId module)
{
    constexpr int batch = 200;
    constexpr long mostMissing = 8000; // lines; the two keep up if they are given the time
    const QString line(1000, QLatin1Char('x'));
    RemoteHost host;
    Debug::setUtilityCallbackHandler(&host);
    Drain readers(port, 2, Zorvan::greeting().count('\n'));
    settleConnections();
    const double memoryBefore = residentMiB();
    Flood result;
    const auto start = Clock::now();
    for (int printed = 0; printed < floodLines; printed += batch) {
        for (int i = 0; i < batch; ++i)
            Debug::printFormattedString(module, enabledClass, infoLevel, line);
        readers.expect(batch);
        QCoreApplication::processEvents();
        readers.await(mostMissing);
        result.memory = std::max(result.memory, residentMiB() - memoryBefore);
        if (host.hasDropped && result.sentUntilDropped == 0)
            result.sentUntilDropped = printed * 1e-3;
    }
    readers.await(0);
    result.rate = floodLines / std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    Debug::setUtilityCallbackHandler(nullptr);
    return result;
}

void measureSilentClient(quint16 port, moduleId module)
{
    std::vector<double> ratios;
    Flood alone;
    Flood beside;
    for (int round = 0; round < 3; ++round) {
        alone = flood(port, module);
        const RemoteClient silent(port);
        beside = flood(port, module);
        ratios.push_back(beside.rate / alone.rate);
    }
    title("400 MB in lines of 1000 bytes to two clients that read, beside one that never does");
    row("to each of the two, without the third, MB/s", alone.rate, 0);
    row("with it, MB/s", beside.rate, 0);
    row("times the rate without it, median of 3", median(ratios), 2, ">= 0.9", median(ratios) >= 0.9);
    row("memory at most, MiB more than at the start", beside.memory, 1, "<= 160", beside.memory <= 160);
    row("it is dropped after, MB", beside.sentUntilDropped, 1, "> 0", beside.sentUntilDropped > 0);
}

/// All modules below \a count are asked about once, so that the greeting has their names.
Result timeGreeting(int count)
{
    for (moduleId module = 0; module < count; ++module)
        Debug::isActive(module, infoLevel, enabledClass);
    int bytes = 0;
    const Subject subject{"", repeated([&bytes] { bytes = Zorvan::greeting().size(); })};
    Result result = measure({1, 100, false, false}, {subject}).front();
    result.name = std::to_string(count) + " modules, " + std::to_string(bytes) + " bytes";
    return result;
}

void measureGreeting(const Result &fewModules)
{
    while (makeModule("Greeted") < 999) {}
    Table table("The greeting", Table::Unit::Microseconds);
    table.row(fewModules);
    table.row(timeGreeting(1000), fewModules);
}

quint16 openPort()
{
    RemoteHost host;
    Debug::setUtilityCallbackHandler(&host);
    while (host.port == 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    Debug::setUtilityCallbackHandler(nullptr); // without a line tap
    return host.port;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    alarm(240); // lines that got lost must not stop a run of all programs
    standardOutput();
    startLibrary();
    const quint16 port = openPort();
    if (argc > 1) {
        showGrowth(port, makeModule("Measured"));
        Debug::exitDebug();
        return 0;
    }
    const Result greetingOfFew = timeGreeting(27);
    const moduleId module = makeModule("Measured");
    const PlainServer echo;
    measureBesideLoop([&] {
        measureRoundTrips(port, echo.serverPort(), module);
        measureConnects(port); // before the memory of the other measurements could hide what it takes
    });
    measureOutput(port, module);
    measureSilentClient(port, module);
    measureGreeting(greetingOfFew);
    Debug::exitDebug();
}
