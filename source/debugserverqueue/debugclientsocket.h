#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
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

    /// Whether the client has left 64 MiB unread and takes nothing of it, or has left so much unread that it
    /// does not matter what it takes.
    [[nodiscard]] bool isTooFarBehind();
    /// Sends bytes with the next flush; nothing if the connection has ended. Calls nobody.
    void append(const QByteArray &bytes);
    void flushIfConnected();

    /// Closes the connection without telling anybody. Waits until \a end for the client to take what was
    /// sent.
    void closeDown(const QDeadlineTimer &end);
    /// Deletes itself once no command of this client is executed any more.
    void deleteWhenIdle();

    Q_SIGNAL void socketClosed(DebugClientSocket *client);
    Q_SLOT void connectionClosed();
    /// Executes the complete lines that have come. What comes while they are executed is executed next.
    Q_SLOT void dataReady();

private:
    void executeLines();
    void lookAgain();
    [[nodiscard]] QByteArray takeLines();

    DebugServerSocket &m_server;
    QByteArray m_received; ///< of a line whose end has not come
    qint64 m_appended = 0; ///< bytes so far
    qint64 m_lastRecord = 0; ///< bytes of the record appended last
    qint64 m_taken = 0; ///< bytes that had gone out when the client last took something
    QDeadlineTimer m_patience; ///< from then on
    bool m_isExecuting = false;
    bool m_looksAgain = false; ///< a timer runs that will call dataReady()
    bool m_isForgotten = false;
};

} // namespace Zorvan
