/// A debug daemon that does what its environment says, and ends when its last connection has ended:
///   TEMP            folder of its files: the lock file, "pid", "received-1" and so on for what came in on
///   the
///                   first and each further connection
///   DAEMON_LOCKFILE content of the lock file; "%" stands for its port. None is written if it is not set.
///   DAEMON_ANSWERS  words for the requests in turn; the last one stays:
///                     16384         this code
///                     pieces:16384  the same, byte by byte
///                     late:16384    after 50 ms
///                     twice:16384   the same, and four bytes too many
///                     short         two bytes and the end of the connection
///                     hangup        the end of the connection
///                     silent        nothing
///                     die           the end of the daemon
///   DAEMON_HABITS   "latecomer": listens only half a second after it wrote the lock file;
///                   "clinging": does not end its connection at <exit/>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned longestLife = 60; // seconds; a failed test leaves no daemon behind for long

struct Connection
{
    int socket = -1;
    int number = 0;
    std::string request; ///< what came in since the last answer
};

std::string environmentValue(const char *name)
{
    const char *const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string fileInFolder(const std::string &name)
{
    return environmentValue("TEMP") + '/' + name;
}

bool hasHabit(const char *habit)
{
    return environmentValue("DAEMON_HABITS") == habit;
}

/// Complete as soon as it can be seen.
void writeFile(const std::string &name, const std::string &content)
{
    const std::string path = fileInFolder(name);
    std::ofstream(path + ".new", std::ios::binary) << content;
    std::filesystem::rename(path + ".new", path);
}

class Daemon
{
public:
    explicit Daemon(const std::string &instanceName);
    void run();

private:
    void accept();
    void receive(Connection &connection);
    void answer(Connection &connection);
    static void hangUp(Connection &connection);
    std::string nextWord();

    int m_listener = socket(AF_INET, SOCK_STREAM, 0);
    int m_accepted = 0;
    std::vector<Connection> m_connections;
    std::istringstream m_words{environmentValue("DAEMON_ANSWERS")};
    std::string m_word;
};

Daemon::Daemon(const std::string &instanceName)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    bind(m_listener, generic, length);
    if (!hasHabit("latecomer"))
        listen(m_listener, 5);
    getsockname(m_listener, generic, &length);
    writeFile("pid", std::to_string(getpid()));
    std::string lockFile = environmentValue("DAEMON_LOCKFILE");
    if (const std::size_t place = lockFile.find('%'); place != std::string::npos)
        lockFile.replace(place, 1, std::to_string(ntohs(address.sin_port)));
    if (!lockFile.empty())
        writeFile("DebugDaemonRunning_" + instanceName + ".lock", lockFile);
    if (hasHabit("latecomer")) {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        listen(m_listener, 5);
    }
}

void Daemon::run()
{
    do {
        std::vector<pollfd> entries{{m_listener, POLLIN, 0}};
        for (const Connection &connection : m_connections)
            entries.push_back({connection.socket, POLLIN, 0});
        poll(entries.data(), entries.size(), -1);
        for (std::size_t i = 1; i < entries.size(); ++i) {
            if (entries[i].revents != 0)
                receive(m_connections[i - 1]);
        }
        if (entries[0].revents != 0)
            accept();
        for (std::size_t i = m_connections.size(); i-- > 0;) {
            if (m_connections[i].socket < 0)
                m_connections.erase(m_connections.begin() + static_cast<std::ptrdiff_t>(i));
        }
    } while (!m_connections.empty());
}

void Daemon::accept()
{
    const int connection = ::accept(m_listener, nullptr, nullptr);
    const int on = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    m_connections.push_back({connection, ++m_accepted, {}});
}

void Daemon::receive(Connection &connection)
{
    char buffer[4096];
    const ssize_t length = recv(connection.socket, buffer, sizeof buffer, 0);
    if (length <= 0) {
        hangUp(connection);
        return;
    }
    const std::string bytes(buffer, static_cast<std::size_t>(length));
    std::ofstream(fileInFolder("received-" + std::to_string(connection.number)),
                  std::ios::binary | std::ios::app)
        << bytes;
    connection.request += bytes;
    const auto has = [&](const char *text) { return connection.request.find(text) != std::string::npos; };
    if (has("<exit/>") && !hasHabit("clinging"))
        hangUp(connection);
    else if (has("</msgbox>") || has("</assert>"))
        answer(connection);
}

void Daemon::answer(Connection &connection)
{
    connection.request.clear();
    const std::string word = nextWord();
    const std::size_t pieceSize = word.rfind("pieces:", 0) == 0 ? 1 : sizeof(std::int32_t);
    if (word == "die")
        std::raise(SIGKILL);
    if (word == "short")
        send(connection.socket, "ab", 2, MSG_NOSIGNAL);
    if (word == "short" || word == "hangup")
        hangUp(connection);
    if (word.find_first_of("0123456789") == std::string::npos)
        return;
    if (word.rfind("late:", 0) == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const std::int32_t code = std::stoi(word.substr(word.find(':') + 1));
    if (word.rfind("twice:", 0) == 0) {
        const std::int32_t codes[] = {code, ~code};
        send(connection.socket, codes, sizeof codes, MSG_NOSIGNAL);
        return;
    }
    for (std::size_t sent = 0; sent < sizeof code; sent += pieceSize) {
        send(connection.socket, reinterpret_cast<const char *>(&code) + sent, pieceSize, MSG_NOSIGNAL);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void Daemon::hangUp(Connection &connection)
{
    close(connection.socket);
    connection.socket = -1;
}

std::string Daemon::nextWord()
{
    std::string word;
    if (m_words >> word)
        m_word = word;
    return m_word;
}

} // namespace

int main(int count, char **arguments)
{
    alarm(longestLife);
    if (count != 2)
        return 1;
    Daemon(arguments[1]).run();
    return 0;
}
