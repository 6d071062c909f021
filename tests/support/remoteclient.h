#pragma once

#include "support/maphost.h"

#include <QByteArray>
#include <QTcpSocket>

#include <ostream>

/// How a failed comparison shows bytes.
inline void PrintTo(const QByteArray &bytes, std::ostream *out)
{
    *out << '"' << bytes.toStdString() << '"';
}

namespace Zorvan::test {

/// A remote client with a real connection, in the event loop of the test. It reads only when it is asked for
/// something: with a small read buffer of its socket, the network fills up meanwhile.
class RemoteClient
{
public:
    /// Connects to this machine.
    explicit RemoteClient(quint16 port);
    [[nodiscard]] bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }

    /// Runs the event loop until the bytes that were not taken yet contain a text; false if they never do.
    [[nodiscard]] bool waitFor(const QByteArray &text);
    /// Waits for the end of the greeting and takes it.
    [[nodiscard]] bool waitForGreeting();
    /// What has come so far. It comes once.
    QByteArray take();
    /// Waits for a text and takes everything up to its end; what is there, if the text does not come.
    QByteArray takeUntil(const QByteArray &text);

    /// Sends at once.
    void send(const QByteArray &bytes);
    /// Ends the connection in good order.
    void close() { m_socket.disconnectFromHost(); }
    /// Breaks the connection off: the other side gets an error.
    void reset();
    [[nodiscard]] bool waitForDisconnect();
    QTcpSocket &socket() { return m_socket; }

private:
    QTcpSocket m_socket;
    QByteArray m_received;
};

/// Opens remote access at a port of 127.0.0.1 that the system chooses and returns it, 0 on failure. Needs a
/// started library and an application; takes the lines of the host.
[[nodiscard]] quint16 openRemoteAccess(MapHost &host);

} // namespace Zorvan::test
