#pragma once

/// Clients on plain sockets of the loopback interface. What fails here ends the program. Header only.

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace bench {

inline void check(bool succeeded, const char *what)
{
    if (!succeeded) {
        std::perror(what);
        std::exit(1);
    }
}

/// A connection for the calling thread, which waits for what it asks.
class RemoteClient
{
public:
    explicit RemoteClient(quint16 port)
    {
        sockaddr_in address{AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
        const auto *const general = reinterpret_cast<const sockaddr *>(&address);
        const int room = 1 << 20; // for any batch: what a narrow window does is not the server's time
        setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
        check(connect(m_socket, general, sizeof address) == 0, "connect");
    }
    ~RemoteClient() { close(m_socket); }
    RemoteClient(const RemoteClient &) = delete;
    RemoteClient &operator=(const RemoteClient &) = delete;

    [[nodiscard]] int socket() const { return m_socket; }

    void send(std::string_view bytes)
    {
        check(::send(m_socket, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()), "send");
    }

    /// Drops what comes, up to and including \a text.
    void readUntil(std::string_view text)
    {
        char buffer[65536];
        std::size_t found = 0;
        while ((found = m_received.find(text)) == std::string::npos) {
            m_received.erase(0, m_received.size() - std::min(m_received.size(), text.size()));
            const ssize_t size = recv(m_socket, buffer, sizeof buffer, 0);
            check(size > 0, "recv");
            m_received.append(buffer, static_cast<std::size_t>(size));
        }
        m_received.erase(0, found + text.size());
    }

private:
    const int m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::string m_received;
};

/// Clients of which one thread takes, and counts, all lines. The thread with the event loop makes it, calls
/// all functions, and is woken when the lines have come.
class Drain
{
public:
    /// \a lines: what each client gets at once.
    Drain(quint16 port, int clients, long lines)
        : m_missing(lines * clients)
    {
        while (clients-- > 0) {
            m_clients.push_back(std::make_unique<RemoteClient>(port));
            QCoreApplication::processEvents(); // a server accepts some fifty unseen connections, not all
        }
        m_thread = std::thread([this] { takeLines(); });
        await(0);
    }
    ~Drain()
    {
        for (const auto &client : m_clients)
            shutdown(client->socket(), SHUT_RDWR);
        m_thread.join();
    }

    /// Each client is going to get so many lines more.
    void expect(long lines) { m_missing += lines * static_cast<long>(m_clients.size()); }

    /// Handles events until no more than \a lines are missing, of all clients together.
    void await(long lines)
    {
        m_awaited = lines;
        while (m_missing > lines)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

private:
    void takeLines()
    {
        std::vector<char> buffer(256 * 1024);
        std::vector<pollfd> open;
        for (const auto &client : m_clients)
            open.push_back({client->socket(), POLLIN, 0});
        const auto hasEnded = [&](const pollfd &client) {
            return client.revents != 0 && !takeFrom(client.fd, buffer);
        };
        while (!open.empty()) {
            check(poll(open.data(), open.size(), -1) > 0, "poll");
            open.erase(std::remove_if(open.begin(), open.end(), hasEnded), open.end());
        }
    }

    /// False at the end of the connection.
    bool takeFrom(int socket, std::vector<char> &buffer)
    {
        const ssize_t size = recv(socket, buffer.data(), buffer.size(), 0);
        if (size <= 0)
            return false;
        const long lines = std::count(buffer.data(), buffer.data() + size, '\n');
        if (m_missing.fetch_sub(lines) - lines <= m_awaited)
            m_loop->wakeUp();
        return true;
    }

    std::vector<std::unique_ptr<RemoteClient>> m_clients;
    QAbstractEventDispatcher *const m_loop = QAbstractEventDispatcher::instance();
    std::atomic<long> m_missing;
    std::atomic<long> m_awaited{0};
    std::thread m_thread;
};

} // namespace bench
