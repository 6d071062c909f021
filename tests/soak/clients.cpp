#include "actors.h"

#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <random>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace Zorvan::soak {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

int connectTo(int port)
{
    const int peer = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    if (port > 0 && connect(peer, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return peer;
    close(peer);
    return -1;
}

/// Reads what has come, and keeps the beginning of an unfinished line; false at the end of the connection.
bool readMore(int peer, std::string &rest, Stream &stream, std::chrono::milliseconds patience)
{
    pollfd entry{peer, POLLIN, 0};
    if (poll(&entry, 1, static_cast<int>(patience.count())) <= 0)
        return true;
    char buffer[65536];
    const ssize_t size = recv(peer, buffer, sizeof buffer, 0);
    rest.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    const std::size_t end = rest.rfind('\n') + 1; // 0 if there is none
    stream.takeText(std::string_view(rest).substr(0, end));
    rest.erase(0, end);
    return size > 0;
}

/// Reads until the server ends the connection, for which it returns false, or the client leaves.
bool readOn(Round &round, std::size_t number, int peer, Connection &connection, unsigned seed)
{
    const bool isGuest = number != stayingClient;
    const auto leaving = Clock::now() + std::chrono::milliseconds(50 + seed % 300);
    const std::string command = "<hook key='soak_remote' parameters='" + std::to_string(seed) + "'/>\n";
    bool asks = isGuest && seed % 2 == 0;
    Stream &stream = connection.stream;
    std::string rest;
    while (readMore(peer, rest, stream, 10ms)) {
        beat(number);
        const auto last = stream.lines.empty() ? -1 : round.ledger.tapOrderOf(stream.lines.back());
        const bool isUpToDate = last >= connection.firstPossible;
        if (asks && isUpToDate) {
            asks = false;
            count("remote hooks asked for");
            send(peer, command.data(), command.size(), MSG_NOSIGNAL);
        }
        const bool isEnd = round.fence >= 0 && last >= round.fence;
        round.fenceSeen = round.fenceSeen || isEnd;
        if (!isEnd && (!isGuest || !isUpToDate || round.stop || Clock::now() < leaving))
            continue;
        if (!isEnd && seed % 3 == 0) {
            const linger atOnce{1, 0};
            setsockopt(peer, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
            return true;
        }
        shutdown(peer, SHUT_WR);
        while (readMore(peer, rest, stream, 1000ms)) {}
        return true;
    }
    return false;
}

} // namespace

Step clientActor(Round &round, std::size_t number, unsigned seed)
{
    return [&round, number, random = std::minstd_rand(seed)]() mutable {
        Connection connection;
        connection.firstPossible = round.ledger.tappedLines();
        const std::uint64_t stalls = round.stalls;
        if (const int peer = connectTo(round.port); peer >= 0) {
            ++round.connected;
            const bool hasLeft = readOn(round, number, peer, connection, static_cast<unsigned>(random()));
            close(peer);
            // When the loop has turned, the server has seen that the connection ended.
            for (const std::uint64_t turns = round.turns; round.turns < turns + 3;)
                std::this_thread::sleep_for(1ms);
            connection.lastPossible = round.ledger.tappedLines();
            // A server that closes waits for its clients, but not for ever.
            connection.mayLackItsEnd = hasLeft || round.stalls > stalls;
            --round.connected;
            const std::lock_guard guard(round.connectionsLock);
            round.connections.push_back(std::move(connection));
        }
        return std::chrono::milliseconds(random() % 40);
    };
}

} // namespace Zorvan::soak
