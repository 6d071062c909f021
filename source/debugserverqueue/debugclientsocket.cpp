#include "debugserverqueue/debugclientsocket.h"

#include "debugserverqueue/debugserversocket.h"

#include <QScopedValueRollback>

namespace Zorvan {

namespace {

constexpr int mostUnfinishedBytes = 1 << 20; // of a line
constexpr qint64 mostUnsentBytes = qint64(64) << 20;

} // namespace

DebugClientSocket::DebugClientSocket(DebugServerSocket &server)
    : QTcpSocket(&server)
    , m_server(server)
{
    connect(this, &QAbstractSocket::disconnected, this, &DebugClientSocket::connectionClosed);
    connect(this, &QIODevice::readyRead, this, &DebugClientSocket::dataReady);
}

bool DebugClientSocket::adopt(qintptr descriptor)
{
    if (!setSocketDescriptor(descriptor))
        return false;
    setReadBufferSize(mostUnfinishedBytes);
    setSocketOption(LowDelayOption, 1); // records go out as they are, a person waits for them
    setSocketOption(KeepAliveOption, 1); // finds out about peers that vanished
    return true;
}

bool DebugClientSocket::isTooFarBehind() const
{
    return bytesToWrite() > mostUnsentBytes;
}

// Writing to a socket without a connection would raise a warning, which becomes a line, which is sent again.
void DebugClientSocket::append(const QByteArray &bytes)
{
    if (state() == ConnectedState)
        write(bytes);
}

void DebugClientSocket::flushIfConnected()
{
    if (state() == ConnectedState)
        flush();
}

void DebugClientSocket::connectionClosed()
{
    Q_EMIT socketClosed(this);
}

void DebugClientSocket::dataReady()
{
    if (m_isExecuting)
        return;
    const QScopedValueRollback<bool> executing(m_isExecuting, true);
    const DebugServerSocket::Activity activity(m_server);
    while (m_server.canExecute()) {
        const QByteArray lines = takeLines();
        if (lines.isEmpty())
            return;
        m_server.execute(lines);
    }
}

/// All complete lines that have come; empty if there is none.
QByteArray DebugClientSocket::takeLines()
{
    if (!isOpen())
        return {};
    const QByteArray fresh = read(mostUnfinishedBytes - m_received.size());
    const int end = fresh.lastIndexOf('\n') + 1; // no line ends in what came before
    if (end == 0) {
        m_received += fresh;
        if (m_received.size() >= mostUnfinishedBytes)
            m_server.drop(*this, QStringLiteral("a line of more than 1 MiB"));
        return {};
    }
    QByteArray lines = m_received + fresh.left(end);
    m_received = fresh.mid(end);
    return lines;
}

} // namespace Zorvan
