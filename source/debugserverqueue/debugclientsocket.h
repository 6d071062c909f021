#pragma once

#include <QByteArray>
#include <QTcpSocket>

namespace Zorvan {

class DebugServerSocket;

/// The connection to one remote client. GUI thread only; belongs to its server.
class DebugClientSocket final : public QTcpSocket
{
    Q_OBJECT

public:
    explicit DebugClientSocket(DebugServerSocket &server);

    /// Takes over the descriptor of an accepted connection.
    [[nodiscard]] bool adopt(qintptr descriptor);

    /// Whether the client takes its output too slowly to be waited for.
    [[nodiscard]] bool isTooFarBehind() const;
    /// Sends bytes with the next flush; nothing if the connection has ended. Calls nobody.
    void append(const QByteArray &bytes);
    void flushIfConnected();

    Q_SIGNAL void socketClosed(DebugClientSocket *client);
    Q_SLOT void connectionClosed();
    /// Executes the complete lines that have come. What comes while they are executed is executed next.
    Q_SLOT void dataReady();

private:
    [[nodiscard]] QByteArray takeLines();

    DebugServerSocket &m_server;
    QByteArray m_received; ///< of a line whose end has not come
    bool m_isExecuting = false;
};

} // namespace Zorvan
