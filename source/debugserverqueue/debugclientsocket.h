#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QSocketNotifier>
#include <QTcpSocket>

#include <deque>
#include <memory>

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
    /// does not matter what it takes. The record sent last does not count. Ask before each record: it looks
    /// at what has happened since.
    [[nodiscard]] bool isTooFarBehind();
    /// Sends bytes as soon as the client takes them, and now if it does; nothing if the connection has ended.
    /// Calls nobody: locks may be held.
    void send(const QByteArray &bytes);
    /// Sends what the client has not taken yet, as far as it takes it now. False: nothing waits any more.
    bool sendWaiting();

    /// From here on the client is told nothing that comes of its connection, nor is anybody else.
    void fallSilent();
    /// Ends the connection, whatever waits.
    void end();
    /// Deletes itself once no command of this client is executed any more.
    void deleteWhenIdle();

    Q_SIGNAL void socketClosed(DebugClientSocket *client);
    Q_SLOT void connectionClosed();
    /// Executes the complete lines that have come. What comes while they are executed is executed next.
    Q_SLOT void dataReady();

private:
    void forgetWaiting();
    void executeLines();
    void lookAgain();
    [[nodiscard]] QByteArray takeLines();

    DebugServerSocket &m_server;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< tells when the client takes what waits
    QByteArray m_received; ///< of a line whose end has not come
    std::deque<QByteArray> m_waiting; ///< records that the client has not taken; shared with other clients
    int m_sentOfFirst = 0; ///< bytes of the first one that were sent
    qint64 m_waitingBytes = 0; ///< of all of them, the first one whole
    qint64 m_taken = 0; ///< bytes that the client has taken so far
    qint64 m_takenAtLook = 0; ///< when it was last seen to take something
    QDeadlineTimer m_patience; ///< from then on
    bool m_isExecuting = false;
    bool m_looksAgain = false; ///< a timer runs that will call dataReady()
    bool m_isForgotten = false;
};

} // namespace Zorvan
