#include "support/remoteclient.h"

#include "support/guiapplication.h"

#include <QHostAddress>

#include <gtest/gtest.h>
#include <sys/socket.h>

namespace Zorvan::test {

RemoteClient::RemoteClient(quint16 port)
{
    m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    static_cast<void>(runUntil([this] {
        return isConnected() || m_socket.state() == QAbstractSocket::UnconnectedState; // refused
    }));
}

bool RemoteClient::waitFor(const QByteArray &text)
{
    return runUntil([&] {
        m_received += m_socket.readAll();
        return m_received.contains(text);
    });
}

bool RemoteClient::waitForGreeting()
{
    const QByteArray end = "</DebugServer>\r\n";
    return takeUntil(end).endsWith(end);
}

QByteArray RemoteClient::take()
{
    m_received += m_socket.readAll();
    return std::exchange(m_received, {});
}

QByteArray RemoteClient::takeUntil(const QByteArray &text)
{
    const bool came = waitFor(text);
    EXPECT_TRUE(came) << text.toStdString();
    const int length = came ? m_received.indexOf(text) + text.size() : m_received.size();
    const QByteArray taken = m_received.left(length);
    m_received.remove(0, length);
    return taken;
}

void RemoteClient::send(const QByteArray &bytes)
{
    m_socket.write(bytes);
    m_socket.flush();
}

void RemoteClient::reset()
{
    const linger atOnce{1, 0};
    setsockopt(static_cast<int>(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    m_socket.abort();
}

bool RemoteClient::waitForDisconnect()
{
    return runUntil([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; });
}

quint16 openRemoteAccess(MapHost &host)
{
    host.store("serverPort", 0);
    host.store("serverAddress", "127.0.0.1");
    host.takeLines();
    Debug::setClientsAllowed(true);
    const std::string notice = "++++ remote access: listening on 127.0.0.1, port ";
    quint16 port = 0;
    static_cast<void>(runUntil([&] {
        for (const std::string &line : host.takeLines()) {
            if (const std::size_t place = line.find(notice); place != std::string::npos)
                port = static_cast<quint16>(std::stoi(line.substr(place + notice.size())));
        }
        return port != 0;
    }));
    return port;
}

} // namespace Zorvan::test
