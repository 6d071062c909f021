// The bytes of a remote client, in whatever pieces they come: complete lines are units, which come back as
// they were understood.

#include "debugserverqueue/debugserversocket.h"
#include "debugserverqueue/greeting.h"
#include "fuzzapplication.h"
#include "fuzzcheck.h"
#include "fuzzhost.h"

#include <QTcpSocket>

using namespace Zorvan;

namespace {

class Client
{
public:
    Client()
    {
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), m_server.serverPort());
        m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        require(received(greeting()));
    }
    void send(std::string_view piece)
    {
        m_socket.write(piece.data(), static_cast<qint64>(piece.size()));
        m_socket.flush();
        QCoreApplication::processEvents();
    }
    /// Whether these bytes come next.
    bool received(const QByteArray &expected)
    {
        while (m_socket.bytesAvailable() < expected.size())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return m_socket.read(expected.size()) == expected;
    }
    bool isSilent() const { return m_socket.bytesAvailable() == 0; }

private:
    DebugServerSocket m_server{0, QHostAddress(QHostAddress::LocalHost)};
    QTcpSocket m_socket;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    startApplication();
    static Host host;
    static Client &client = *new Client;
    Input input(data, size);
    std::string pending;
    while (!input.rest.empty()) {
        const std::size_t length = input.byte();
        std::string piece(input.bytes(length));
        piece += input.rest.empty() ? "\n" : "";
        client.send(piece);
        pending += piece;
        const std::size_t end = pending.rfind('\n') + 1;
        const QString unit = QString::fromStdString(pending.substr(0, end));
        pending.erase(0, end);
        if (!unit.trimmed().isEmpty())
            require(client.received("<clientMessage>" + unit.toLatin1() + "</clientMessage>\r\n"));
        require(client.isSilent());
    }
    return 0;
}
