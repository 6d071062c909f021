#include "debugserverqueue/debugclientsocket.h"

#include "debugserverqueue/debugserversocket.h"
#include "platform/peersocket.h"

#include <QTimer>

#include <utility>

namespace Zorvan {

namespace {

using namespace std::chrono_literals;

constexpr qint64 mebibyte = 1 << 20;
constexpr qint64 mostUnfinishedBytes = mebibyte; // of a line
constexpr qint64 unreadByDeafClient = 64 * mebibyte;
constexpr qint64 mostUnread = 128 * mebibyte; // who lags so far behind hardly comes up
constexpr auto patience = 2000ms; // for a client that takes nothing
constexpr auto lookAgainAfter = 100ms;

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
    m_notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
    m_notifier->setEnabled(false);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &DebugClientSocket::sendWaiting);
    return true;
}

// A single batch may be larger than all limits, and its readers need their time for it.
bool DebugClientSocket::isTooFarBehind()
{
    if (!sendWaiting())
        return false;
    const qint64 unread = m_waitingBytes - m_waiting.front().size();
    if (unread <= unreadByDeafClient || m_taken > m_takenAtLook) {
        m_takenAtLook = m_taken;
        m_patience.setRemainingTime(patience);
    }
    return unread > mostUnread || (unread > unreadByDeafClient && m_patience.hasExpired());
}

void DebugClientSocket::send(const QByteArray &bytes)
{
    if (state() != ConnectedState)
        return;
    m_waitingBytes += bytes.size();
    m_waiting.push_back(bytes);
    sendWaiting();
}

/// Straight to the system: QTcpSocket would copy everything, and have the process ignore SIGPIPE. It still
/// finds out about the end of the connection.
bool DebugClientSocket::sendWaiting()
{
    while (!m_waiting.empty()) {
        const QByteArray &first = m_waiting.front();
        const int sent = platform::sendAtOnce(socketDescriptor(), first.constData() + m_sentOfFirst,
                                              first.size() - m_sentOfFirst);
        if (sent < 0)
            forgetWaiting();
        if (sent <= 0)
            break;
        m_taken += sent;
        m_sentOfFirst += sent;
        if (m_sentOfFirst == first.size()) {
            m_waitingBytes -= first.size();
            m_waiting.pop_front();
            m_sentOfFirst = 0;
        }
    }
    m_notifier->setEnabled(!m_waiting.empty());
    return !m_waiting.empty();
}

void DebugClientSocket::forgetWaiting()
{
    m_waiting.clear();
    m_waitingBytes = 0;
    m_sentOfFirst = 0;
}

void DebugClientSocket::fallSilent()
{
    disconnect();
}

void DebugClientSocket::end()
{
    m_notifier->setEnabled(false);
    if (state() == ConnectedState)
        platform::shutDown(socketDescriptor()); // a process made by fork() may still have it
    abort();
    deleteWhenIdle();
}

void DebugClientSocket::deleteWhenIdle()
{
    m_isForgotten = true;
    forgetWaiting();
    if (!m_isExecuting)
        deleteLater();
}

void DebugClientSocket::connectionClosed()
{
    m_notifier->setEnabled(false);
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
