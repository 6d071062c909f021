#include "debugserverqueue/debugclientsocket.h"

#include "debugserverqueue/debugserversocket.h"
#include "platform/peersocket.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace Zorvan {

namespace {

using namespace std::chrono_literals;

constexpr qint64 mebibyte = 1 << 20;
constexpr qint64 mostUnfinishedBytes = mebibyte; // of a line
constexpr qint64 unreadByDeafClient = 64 * mebibyte;
constexpr qint64 mostUnread = 512 * mebibyte; // who lags so far behind never comes up
constexpr int largestPiece = 65536; // bytes handed to QTcpSocket
constexpr auto patience = 500ms; // for a client that takes nothing
constexpr auto lookAgainAfter = 100ms;

} // namespace

DebugClientSocket::DebugClientSocket(DebugServerSocket &server)
    : QTcpSocket(&server)
    , m_server(server)
{
    connect(this, &QAbstractSocket::disconnected, this, &DebugClientSocket::connectionClosed);
    connect(this, &QIODevice::readyRead, this, &DebugClientSocket::dataReady);
    connect(this, &QIODevice::bytesWritten, this, &DebugClientSocket::sendWaiting);
}

bool DebugClientSocket::adopt(qintptr descriptor)
{
    if (!setSocketDescriptor(descriptor))
        return false;
    setReadBufferSize(mostUnfinishedBytes);
    setSocketOption(LowDelayOption, 1); // records go out as they are, a person waits for them
    return true;
}

// One batch may be larger than all limits, and its readers need their time for it.
bool DebugClientSocket::isTooFarBehind()
{
    const qint64 unread = unsentBytes() - m_lastRecord;
    const qint64 taken = m_sent - unsentBytes();
    if (unread <= unreadByDeafClient || taken > m_taken) {
        m_taken = taken;
        m_patience.setRemainingTime(patience);
    }
    return unread > mostUnread || (unread > unreadByDeafClient && m_patience.hasExpired());
}

// Writing to a socket without a connection would raise a warning, which becomes a line, which is sent again.
void DebugClientSocket::send(const QByteArray &bytes)
{
    if (state() != ConnectedState)
        return;
    m_sent += bytes.size();
    m_lastRecord = bytes.size();
    m_waitingBytes += bytes.size();
    m_waiting.push_back(bytes);
    sendWaiting();
}

/// Straight to the system. QTcpSocket, which would copy everything, gets no more than one piece of what the
/// system does not take, and tells when that has gone. It also finds out about errors.
void DebugClientSocket::sendWaiting()
{
    while (!m_waiting.empty() && bytesToWrite() == 0 && state() == ConnectedState) {
        const QByteArray &first = m_waiting.front();
        m_sentOfFirst += platform::sendAtOnce(socketDescriptor(), first.constData() + m_sentOfFirst,
                                              first.size() - m_sentOfFirst);
        if (m_sentOfFirst < first.size()) {
            const int piece = std::min(first.size() - m_sentOfFirst, largestPiece);
            write(first.constData() + m_sentOfFirst, piece);
            m_sentOfFirst += piece;
        }
        if (m_sentOfFirst == first.size()) {
            m_waitingBytes -= first.size();
            m_waiting.pop_front();
            m_sentOfFirst = 0;
        }
    }
}

void DebugClientSocket::closeDown(const QDeadlineTimer &end)
{
    disconnect();
    sendWaiting();
    while (unsentBytes() > 0 && !end.hasExpired()
           && waitForBytesWritten(static_cast<int>(end.remainingTime())))
        sendWaiting();
    if (state() == ConnectedState)
        platform::shutDown(socketDescriptor()); // a process made by fork() may still have it
    abort();
    deleteWhenIdle();
}

void DebugClientSocket::deleteWhenIdle()
{
    m_isForgotten = true;
    m_waiting.clear();
    if (!m_isExecuting)
        deleteLater();
}

void DebugClientSocket::connectionClosed()
{
    Q_EMIT socketClosed(this);
}

void DebugClientSocket::dataReady()
{
    if (std::exchange(m_isExecuting, true))
        return;
    const DebugServerSocket::Activity activity(m_server);
    executeLines();
    m_isExecuting = false;
    if (m_isForgotten)
        deleteLater();
}

void DebugClientSocket::executeLines()
{
    while (m_server.canExecute()) {
        const QByteArray lines = takeLines();
        if (lines.isEmpty())
            return;
        m_server.execute(lines);
    }
    lookAgain();
}

void DebugClientSocket::lookAgain()
{
    if (std::exchange(m_looksAgain, true))
        return;
    QTimer::singleShot(lookAgainAfter, this, [this] {
        m_looksAgain = false;
        dataReady();
    });
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
