#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QSocketNotifier>
#include <QTcpServer>

#include <memory>
#include <string>
#include <vector>

namespace Zorvan {

class DebugClientSocket;

/// Serves remote clients: each one is greeted, gets every line of output and every command that any of them
/// sends, and has its own commands executed. Anybody who reaches the port may connect.
///
/// GUI thread only. Commands, and the notices printed here, lead into code of the host, which may run an
/// event loop or end the library; so a server is disposed of, never deleted.
class DebugServerSocket final : public QTcpServer
{
    Q_OBJECT

public:
    /// Listens at once; look at isListening().
    explicit DebugServerSocket(quint16 port,
                               const QHostAddress &address = QHostAddress(QHostAddress::AnyIPv4),
                               QObject *parent = nullptr);
    ~DebugServerSocket() override;

    /// Stops listening and closes all connections. What was sent to them goes out before, as far as they take
    /// it within 300 ms. The server is deleted as soon as nothing runs in it any more.
    struct Disposal
    {
        void operator()(DebugServerSocket *server) const;
    };
    using Owner = std::unique_ptr<DebugServerSocket, Disposal>;

    [[nodiscard]] int clientCount() const { return static_cast<int>(m_clients.size()); }
    /// Drops the clients that do not read what they are sent, with a notice each.
    void dropLaggards();
    /// Sends a record to every client. Lines in it are separated by line feeds. Calls nobody: locks may be
    /// held.
    void send(QByteArray record);

    /// Echoes what a client sent, one or more complete lines, and executes it as one unit.
    void execute(const QByteArray &lines);
    /// False while so many units wait for the loops of their boxes that further ones must wait, too.
    [[nodiscard]] bool canExecute() const;

    /// Closes the connection of a client and prints a notice.
    void drop(DebugClientSocket &client, const QString &reason);

    /// Forgets a client whose connection has ended.
    Q_SLOT void socketClosed(DebugClientSocket *client);

    /// While one exists the server is not deleted. For every function that may lead into code of the host.
    class Activity
    {
    public:
        explicit Activity(DebugServerSocket &server);
        ~Activity();
        Activity(const Activity &) = delete;
        Activity &operator=(const Activity &) = delete;

    private:
        DebugServerSocket &m_server;
    };

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void acceptClient();
    void pauseAfter(const std::string &fault);
    void closeDown();

    std::unique_ptr<QSocketNotifier> m_notifier; ///< tells that a client waits
    std::vector<DebugClientSocket *> m_clients; ///< in the order of their acceptance
    int m_activities = 0;
    bool m_isClosed = false;
    bool m_reportsFaults = true; ///< false from a failed accept to the next client
};

} // namespace Zorvan
