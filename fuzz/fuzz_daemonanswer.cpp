// What the debug daemon sends: stale bytes, answers in pieces, or the end of the connection.

#include "../tests/platform/peer.h"
#include "fuzzcheck.h"
#include "lowlevelfunctions/daemonlink.h"

#include <QTemporaryDir>

#include <cstring>
#include <fstream>
#include <memory>
#include <thread>

using Zorvan::DaemonLink;

namespace {

constexpr std::size_t answerLength = 4;
const char *const ownName = "_daemonanswer"; // this program looks like a daemon that runs

class Daemon
{
public:
    Daemon()
    {
        qputenv("ZORVAN_PROGRAMDATA", "/dev/null");
        qputenv("TEMP", m_folder.path().toLocal8Bit());
        std::ofstream(m_folder.filePath(QStringLiteral("DebugDaemonRunning_fuzz.lock")).toStdString())
            << m_peer.port() << "\n1\n";
    }
    void sendStale(std::string_view bytes)
    {
        if (!m_link)
            connect();
        m_peer.write(bytes);
    }
    int answer(std::string_view first, std::string_view second)
    {
        std::thread answering([&] {
            require(m_peer.read(m_request.size()) == m_request);
            m_peer.write(first);
            m_peer.write(second);
            if (first.size() + second.size() < answerLength)
                m_peer.close();
        });
        m_link->lock();
        const int answer = m_link->ask(m_request);
        m_link->unlock();
        answering.join();
        if (first.size() + second.size() < answerLength)
            m_link.reset();
        return answer;
    }

private:
    void connect()
    {
        int port = 0;
        int secondPort = 0;
        m_link = std::make_unique<DaemonLink>(ownName);
        require(m_link->setUp(port, secondPort, "fuzz") && port == m_peer.port() && secondPort == 1);
        m_peer.accept();
    }

    const std::string m_request = "<assert>why</assert>";
    const QTemporaryDir m_folder{QStringLiteral("/dev/shm/daemon-XXXXXX")};
    Zorvan::platform::tests::Peer m_peer;
    std::unique_ptr<DaemonLink> m_link;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Daemon daemon;
    Input input(data, size);
    const unsigned kind = input.byte();
    daemon.sendStale(input.bytes(input.byte()));
    // A new connection takes a fifth of a second: only few inputs end the old one.
    constexpr unsigned fewest = 250;
    std::string bytes(
        input.bytes(kind < fewest ? input.rest.size() : std::min(input.rest.size(), answerLength - 1)));
    if (kind < fewest && bytes.size() < answerLength)
        bytes.resize(answerLength);
    std::int32_t expected = DaemonLink::noAnswer;
    if (bytes.size() >= answerLength)
        std::memcpy(&expected, bytes.data(), answerLength);
    const std::string_view first = std::string_view(bytes).substr(0, kind % (answerLength + 1));
    require(daemon.answer(first, std::string_view(bytes).substr(first.size())) == expected);
    return 0;
}
