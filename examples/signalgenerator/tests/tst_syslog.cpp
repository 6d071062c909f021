// Messages to a collector: their form, the bounds of what waits, and what is sent again.

#include "syslogsender.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace SignalGenerator;

namespace {

constexpr int headers = 2 + 4 + 8; // module, class, level
constexpr int allHeaders = headers + 256 + 512;

std::string message(const std::string &line, int flags = headers, const char *host = "lab 1")
{
    const std::string framed =
        SyslogFormat(host, "app", "7").framed({1'700'000'000'000'042, 3, 0, flags, line});
    const std::size_t blank = framed.find(' ');
    EXPECT_EQ(framed.substr(0, blank), std::to_string(framed.size() - blank - 1)) << "octets, not characters";
    return framed.substr(blank + 1);
}

TEST(SyslogFormatTest, TellsModuleClassAndLevelOfALine)
{
    EXPECT_EQ(message("<  SG4000-Console> <   traffic   >, <        Info>: -> *IDN?"),
              "<134>1 2023-11-14T22:13:20.000042Z lab_1 app 7 LINE [zorvan@32473 module=\"SG4000-Console\" "
              "class=\"traffic\" level=\"Info\" seq=\"3\"] -> *IDN?");
    EXPECT_EQ(
        message("12:34:56.789.012: (        command thread) <Kernel> <debug message>, <+ CRITICAL +>: x",
                allHeaders),
        "<130>1 2023-11-14T22:13:20.000042Z lab_1 app 7 LINE [zorvan@32473 module=\"Kernel\" "
        "class=\"debug message\" level=\"CRITICAL\" thread=\"command\" seq=\"3\"] x");
    EXPECT_EQ(SyslogFormat("", "a", "7").framed({0, 5, 12, 0, {}}),
              "138 <132>1 1970-01-01T00:00:00.000000Z - a 7 DROPPED [zorvan@32473 seq=\"5\" dropped=\"12\"] "
              "12 lines dropped: the queue to the collector was full");
}

TEST(SyslogFormatTest, TakesForHeaderOnlyWhatIsOne)
{
    const auto text = [](const char *line, int flags) { return std::string(fieldsOf(line, flags).text); };
    EXPECT_EQ(text("<a> <b>, <c>: d", 0), "<a> <b>, <c>: d") << "not shown, so it is text";
    EXPECT_EQ(text("<c>: <d>, <e>: f", headers), "<d>, <e>: f") << "a module without classes";
    for (const char *line : {"", "<", "<a", "(x", "12:34", "plain text", "12:34:56.789x012: (thread)"})
        EXPECT_EQ(text(line, allHeaders), line);
    for (const auto &[level, severity] :
         {std::pair("Error", 3), {"Warning", 4}, {"Time Meas", 7}, {"Report", 5}, {"", 5}})
        EXPECT_EQ(severityOf(level), severity) << level;
}

TEST(SyslogFormatTest, KeepsToTheCharactersOfTheProtocol)
{
    const auto end = [](const std::string &all) { return all.substr(all.find("[zor")); };
    EXPECT_EQ(end(message("<a\"]\\\xe4> \x1b[31mred\x1b[0m\tand \x1b[x", 2)),
              "[zorvan@32473 module=\"a\\\"\\]\\\\\xc3\xa4\" seq=\"3\"] red?and ?[x");
    EXPECT_EQ(end(message("\xb5V", 0)), "[zorvan@32473 seq=\"3\"] \xef\xbb\xbf\xc2\xb5V");
    EXPECT_NE(message("x", 0, std::string(300, '\xe4').c_str()).find(" " + std::string(255, '_') + " app "),
              std::string::npos);
}

TEST(SyslogFormatTest, CutsWhatIsTooLongBetweenCharacters)
{
    const std::size_t room = SyslogFormat::longestMessage - message("", 0).size();
    EXPECT_EQ(message(std::string(room, 'x'), 0).size(), SyslogFormat::longestMessage);
    for (const char *more : {"x", "\xe4", "x\xe4"}) {
        const std::string cut = message(std::string(room, '\xe4') + more, 0);
        EXPECT_LE(cut.size(), SyslogFormat::longestMessage);
        EXPECT_EQ(cut.substr(cut.size() - 5), "\xc3\xa4...");
    }
    EXPECT_EQ(message(std::string(room, 'x') + "y", 0).substr(SyslogFormat::longestMessage - 4), "x...");
}

TEST(SyslogQueueTest, DropsTheNewestAndTellsInTheirPlace)
{
    SyslogLimits limits;
    limits.queuedLines = 8;
    SyslogQueue queue(limits);
    for (int i = 1; i <= 11; ++i)
        EXPECT_FALSE(queue.put(std::to_string(i), 0));
    std::deque<SyslogRecord> records;
    queue.take(records, 1);
    EXPECT_FALSE(queue.put("12", 0)); // one place is no room yet: each second message would be about one line
    queue.take(records, 1);
    queue.take(records, 20);
    EXPECT_FALSE(queue.put("13", 0));
    queue.take(records, 20);
    ASSERT_EQ(records.size(), 10U);
    EXPECT_EQ(records[7].line, "8");
    EXPECT_EQ(records[8].sequence, 9U);
    EXPECT_EQ(records[8].dropped, 4U);
    EXPECT_EQ(records[9].sequence, 13U);
    records.clear();
    queue.take(records, 20);
    EXPECT_TRUE(queue.put(std::string(limits.queuedBytes, 'x'), 0)) << "the sender sleeps";
    queue.take(records, 20);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].dropped, 1U) << "too large for the empty queue";
}

/// Listens on a port of its own and reads as much as the test wants; or has the port and does not listen.
class Collector
{
public:
    explicit Collector(bool listens = true)
        : m_listener(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof address);
        const int fewBytes = 8'192; // otherwise the system decides how much it takes unread
        setsockopt(m_listener, SOL_SOCKET, SO_RCVBUF, &fewBytes, sizeof fewBytes);
        if (listens)
            listen(m_listener, 5);
        socklen_t size = sizeof address;
        getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size);
        m_address = {"127.0.0.1", std::to_string(ntohs(address.sin_port))};
    }
    ~Collector() { ::close(m_listener); }
    Collector(const Collector &) = delete;
    Collector &operator=(const Collector &) = delete;

    [[nodiscard]] const SyslogAddress &address() const { return m_address; }
    [[nodiscard]] int takeConnection() const { return accept(m_listener, nullptr, nullptr); }

private:
    const int m_listener;
    SyslogAddress m_address;
};

/// Reads until \a text has come, or to the end.
std::string readUntil(const std::string &text, int connection)
{
    std::string all;
    char piece[4096];
    ssize_t size = 1;
    while (size > 0 && all.find(text) == std::string::npos) {
        size = recv(connection, piece, sizeof piece, 0);
        all.append(piece, size > 0 ? static_cast<std::size_t>(size) : 0);
    }
    return all;
}

TEST(SyslogSenderTest, SendsTheNewestAgainOnTheNextConnection)
{
    const Collector collector;
    SyslogLimits limits;
    limits.keptBytes = 2'000;
    limits.firstWait = std::chrono::milliseconds(1);
    SyslogSender sender(collector.address(), SyslogFormat("h", "a", "1"), limits);
    for (int i = 1; i <= 100; ++i)
        sender.forward("line" + std::to_string(i) + '.', 0);
    const int first = collector.takeConnection();
    EXPECT_NE(readUntil("line100.", first).find("line1."), std::string::npos);
    ::close(first);
    const int next = collector.takeConnection();
    const std::string second = readUntil("line100.", next);
    std::thread reader([next] {
        EXPECT_EQ(readUntil("more", next), "");
        ::close(next);
    });
    const SyslogReport report = sender.close();
    reader.join();
    EXPECT_EQ(second.find("line50."), std::string::npos) << "more is kept than allowed";
    EXPECT_NE(second.find("line95."), std::string::npos);
    EXPECT_EQ(report.sent, 100U);
    EXPECT_GT(report.sentAgain, 10U);
    EXPECT_EQ(report.connections, 2U);
    EXPECT_TRUE(report.readToTheEnd);
}

TEST(SyslogSenderTest, HandsOverWhatCameJustBeforeTheEnd)
{
    const Collector collector;
    for (int i = 0; i < 300; ++i) {
        SyslogSender sender(collector.address(), SyslogFormat("h", "a", "1"));
        const int connection = collector.takeConnection();
        std::thread reader([connection] {
            readUntil("no such line", connection);
            ::close(connection);
        });
        sender.forward("wakes it", 0);
        for (volatile int spin = 0; spin < 30 * i; ++spin) // meets the sender at each step of its work
            ;
        sender.forward("last", 0);
        const SyslogReport report = sender.close();
        reader.join();
        ASSERT_EQ(report.unsent, 0U) << i;
        ASSERT_TRUE(report.readToTheEnd) << i;
    }
}

TEST(SyslogSocketTest, DoesNotTakeACollectorThatEndsEarlyForOneThatReadEverything)
{
    const Collector collector;
    SyslogSocket socket;
    const auto deadline = SyslogSocket::Clock::now() + std::chrono::seconds(10);
    ASSERT_TRUE(socket.open(collector.address(), deadline));
    ::close(collector.takeConnection());
    std::string text = "unread";
    const iovec piece{text.data(), text.size()};
    EXPECT_EQ(socket.send(&piece, 1), text.size());
    EXPECT_FALSE(socket.finish(deadline));
}

TEST(SyslogSenderTest, EndsInTimeWithACollectorThatIsAwayOrDoesNotRead)
{
    const Collector deaf; // its system accepts, nobody reads
    SyslogLimits limits;
    limits.queuedLines = 1'000;
    limits.keptBytes = 0;
    limits.end = std::chrono::milliseconds(50);
    const Collector away(false);
    for (const SyslogAddress &address : {deaf.address(), away.address()}) {
        SyslogSender sender(address, SyslogFormat("h", "a", "1"), limits);
        for (int i = 0; i < 20'000; ++i)
            sender.forward(std::string(2'000, 'x'), 0);
        const auto begin = std::chrono::steady_clock::now();
        const SyslogReport report = sender.close();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
        EXPECT_EQ(report.lines, 20'000U);
        EXPECT_EQ(report.lines + report.gaps, report.sent + report.dropped + report.unsent);
        EXPECT_GT(report.unsent, 700U);
        EXPECT_FALSE(report.readToTheEnd);
    }
}

TEST(SyslogAddressTest, HasAHostAndAPort)
{
    SyslogAddress address;
    ASSERT_TRUE(parseSyslogAddress("[::1]:601", address));
    EXPECT_EQ(address.host + ' ' + address.port, "::1 601");
    EXPECT_TRUE(parseSyslogAddress("logs.lab:65535", address));
    for (const char *wrong :
         {"", "host", ":514", "host:", "host:x", "::1:514", "[]:1", "[:1", "h:0", "h:65536"})
        EXPECT_FALSE(parseSyslogAddress(wrong, address)) << wrong;
}

} // namespace
