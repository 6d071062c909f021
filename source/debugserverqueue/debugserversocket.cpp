#include "debugserverqueue/debugserversocket.h"

#include "debugserverqueue/debugclientsocket.h"
#include "debugserverqueue/debugxmlparser.h"
#include "debugserverqueue/greeting.h"
#include "debugserverqueue/librarynotice.h"
#include "platform/descriptors.h"
#include "platform/peersocket.h"

#include <zorvan/debug.h>

#include <QDeadlineTimer>
#include <QNetworkProxy>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace Zorvan {

namespace {

using namespace std::chrono_literals;

constexpr int mostRunningUnits = 16; // inside each other: each one has its event loop on the stack
constexpr int spareDescriptors = 16; // clients leave them to the host, for its files and threads
constexpr auto acceptPause = 100ms; // the shortage of descriptors will hardly be over sooner
constexpr auto lastWait = 300ms; // for all clients to take the last records

/// Whether there is one that has not taken everything.
bool sendWaiting(const std::vector<DebugClientSocket *> &clients)
{
    bool waits = false;
    for (DebugClientSocket *const client : clients)
        waits = client->sendWaiting() || waits;
    return waits;
}

int s_runningUnits = 0; // of all servers: a server may be closed and opened again below a unit

} // namespace

DebugServerSocket::Activity::Activity(DebugServerSocket &server)
    : m_server(server)
{
    ++m_server.m_activities;
}

DebugServerSocket::Activity::~Activity()
{
    if (--m_server.m_activities == 0 && m_server.m_isClosed)
        m_server.deleteLater();
}

DebugServerSocket::DebugServerSocket(quint16 port, const QHostAddress &address, QObject *parent)
    : QTcpServer(parent)
{
    setProxy(QNetworkProxy::NoProxy); // a host's proxy is for what it fetches
    if (!listen(address, port))
        return;
    // QTcpServer itself does not notice that it runs out of descriptors: it would try again without a pause.
    pauseAccepting();
    m_notifier = std::make_unique<QSocketNotifier>(socketDescriptor(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &DebugServerSocket::acceptClient);
}

DebugServerSocket::~DebugServerSocket()
{
    closeDown();
}

void DebugServerSocket::Disposal::operator()(DebugServerSocket *server) const
{
    server->closeDown();
    if (server->m_activities == 0)
        delete server;
}

/// One at each turn of the event loop, however many wait.
void DebugServerSocket::acceptClient()
{
    const Activity activity(*this);
    const std::string shortage = platform::descriptorShortage(spareDescriptors);
    if (!shortage.empty()) {
        pauseAfter(shortage);
        return;
    }
    const platform::Accepted accepted = platform::acceptPeer(socketDescriptor());
    if (!accepted.fault.empty())
        pauseAfter(accepted.fault);
    else if (accepted.socket >= 0)
        incomingConnection(accepted.socket);
}

void DebugServerSocket::pauseAfter(const std::string &fault)
{
    m_notifier->setEnabled(false);
    QTimer::singleShot(acceptPause, this, [this] { m_notifier->setEnabled(!m_isClosed); });
    if (std::exchange(m_reportsFaults, false))
        libraryNotice(QStringLiteral("++++ remote access: cannot accept a client: ")
                      + QString::fromStdString(fault));
}

void DebugServerSocket::incomingConnection(qintptr descriptor)
{
    auto *const client = new DebugClientSocket(*this);
    if (!client->adopt(descriptor)) {
        delete client;
        platform::closeSocket(descriptor);
        return;
    }
    m_reportsFaults = true;
    connect(client, &DebugClientSocket::socketClosed, this, &DebugServerSocket::socketClosed);
    m_clients.push_back(client);
    client->send(greeting());
    Debug::setClientCount(clientCount());
}

void DebugServerSocket::socketClosed(DebugClientSocket *client)
{
    const Activity activity(*this);
    const auto found = std::find(m_clients.begin(), m_clients.end(), client);
    if (found == m_clients.end())
        return;
    m_clients.erase(found);
    Debug::setClientCount(clientCount());
    client->deleteWhenIdle();
}

void DebugServerSocket::dropLaggards()
{
    const Activity activity(*this);
    // Each notice may lead to anything, also to the end of clients.
    for (const QPointer<DebugClientSocket> &client :
         std::vector<QPointer<DebugClientSocket>>(m_clients.begin(), m_clients.end())) {
        if (client && client->isTooFarBehind())
            drop(*client, QStringLiteral("it does not read its output"));
    }
}

void DebugServerSocket::send(QByteArray record)
{
    record += "\r\n";
    for (DebugClientSocket *const client : m_clients)
        client->send(record);
}

void DebugServerSocket::drop(DebugClientSocket &client, const QString &reason)
{
    const Activity activity(*this);
    const QString notice = QStringLiteral("++++ remote client %1, port %2 dropped: %3")
                               .arg(client.peerAddress().toString())
                               .arg(client.peerPort())
                               .arg(reason);
    client.abort();
    libraryNotice(notice);
}

bool DebugServerSocket::canExecute() const
{
    return s_runningUnits < mostRunningUnits && !m_isClosed;
}

void DebugServerSocket::execute(const QByteArray &lines)
{
    const QString unit = QString::fromUtf8(lines.constData(), lines.size()); // also behind a NUL
    if (unit.trimmed().isEmpty())
        return;
    const Activity activity(*this);
    dropLaggards();
    send("<clientMessage>" + unit.toLatin1() + "</clientMessage>");
    ++s_runningUnits;
    DebugXmlParser parser(unit);
    while (!m_isClosed && parser.executeNext()) {}
    --s_runningUnits;
}

void DebugServerSocket::closeDown()
{
    if (std::exchange(m_isClosed, true))
        return;
    if (m_notifier) {
        m_notifier->setEnabled(false);
        platform::shutDown(socketDescriptor()); // a process made by fork() may still have it
    }
    close();
    const std::vector<DebugClientSocket *> clients = std::exchange(m_clients, {});
    for (DebugClientSocket *const client : clients)
        client->fallSilent();
    const QDeadlineTimer end(lastWait);
    while (sendWaiting(clients) && !end.hasExpired())
        QThread::msleep(1);
    for (DebugClientSocket *const client : clients)
        client->end();
}

} // namespace Zorvan
