#include "debugserverqueue/debugserversocket.h"

#include "debugserverqueue/debugclientsocket.h"
#include "debugserverqueue/debugxmlparser.h"
#include "debugserverqueue/greeting.h"
#include "debugserverqueue/librarynotice.h"

#include <zorvan/debug.h>

#include <QNetworkProxy>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace Zorvan {

namespace {

using namespace std::chrono_literals;

constexpr int mostRunningUnits = 16; // inside each other: each one has its event loop on the stack
constexpr auto acceptPause = 100ms; // the shortage of descriptors will hardly be over sooner

} // namespace

DebugServerSocket::Activity::Activity(DebugServerSocket &server)
    : m_server(server)
{
    ++m_server.m_activities;
}

DebugServerSocket::Activity::~Activity()
{
    if (--m_server.m_activities > 0)
        return;
    m_server.deleteForgotten();
    if (m_server.m_isClosed)
        m_server.deleteLater();
}

DebugServerSocket::DebugServerSocket(quint16 port, const QHostAddress &address, QObject *parent)
    : QTcpServer(parent)
{
    // Not in incomingConnection(): the code that calls it needs the server afterwards.
    connect(this, &QTcpServer::newConnection, this, &DebugServerSocket::welcomeArrivals);
    connect(this, &QTcpServer::acceptError, this, &DebugServerSocket::pauseAfterError);
    setProxy(QNetworkProxy::NoProxy); // a host's proxy is for what it fetches
    listen(address, port);
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

void DebugServerSocket::incomingConnection(qintptr descriptor)
{
    auto *const client = new DebugClientSocket(*this);
    if (!client->adopt(descriptor)) {
        delete client;
        return;
    }
    connect(client, &DebugClientSocket::socketClosed, this, &DebugServerSocket::socketClosed);
    m_arrivals.push_back(client);
}

void DebugServerSocket::welcomeArrivals()
{
    const Activity activity(*this);
    m_acceptsAgain = true;
    while (!m_arrivals.empty()) {
        DebugClientSocket *const client = m_arrivals.front();
        m_arrivals.erase(m_arrivals.begin());
        welcome(client);
    }
}

void DebugServerSocket::welcome(DebugClientSocket *client)
{
    m_clients.push_back(client);
    client->append(greeting());
    Debug::setClientCount(clientCount());
    client->flushIfConnected();
}

void DebugServerSocket::pauseAfterError()
{
    const Activity activity(*this);
    QTimer::singleShot(acceptPause, this, &QTcpServer::resumeAccepting);
    if (std::exchange(m_acceptsAgain, false))
        libraryNotice(QStringLiteral("++++ remote access: cannot accept a client: ") + errorString());
}

void DebugServerSocket::socketClosed(DebugClientSocket *client)
{
    const Activity activity(*this);
    m_arrivals.erase(std::remove(m_arrivals.begin(), m_arrivals.end(), client), m_arrivals.end());
    const auto found = std::find(m_clients.begin(), m_clients.end(), client);
    m_forgotten.push_back(client);
    if (found == m_clients.end())
        return;
    m_clients.erase(found);
    Debug::setClientCount(clientCount());
}

void DebugServerSocket::deleteForgotten()
{
    for (DebugClientSocket *const client : std::exchange(m_forgotten, {}))
        client->deleteLater(); // Qt's own code may be at work in it
}

void DebugServerSocket::append(QByteArray record)
{
    record += "\r\n";
    for (DebugClientSocket *const client : m_clients)
        client->append(record); // they share it until it is sent
}

void DebugServerSocket::send(QByteArray record)
{
    const Activity activity(*this);
    for (DebugClientSocket *const client : Clients(m_clients)) {
        if (client->isTooFarBehind())
            drop(*client, QStringLiteral("it does not read its output"));
    }
    append(std::move(record)); // to all before anything of the host can come in between
    flushAll();
}

void DebugServerSocket::flushAll()
{
    for (DebugClientSocket *const client : Clients(m_clients)) // one that has gone leaves the list meanwhile
        client->flushIfConnected();
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
    return m_runningUnits < mostRunningUnits && !m_isClosed;
}

void DebugServerSocket::execute(const QByteArray &lines)
{
    const QString unit = QString::fromUtf8(lines);
    if (unit.trimmed().isEmpty())
        return;
    const Activity activity(*this);
    send("<clientMessage>" + unit.toLatin1() + "</clientMessage>");
    runUnit(unit);
}

void DebugServerSocket::runUnit(const QString &unit)
{
    const bool wasLast = ++m_runningUnits == mostRunningUnits;
    DebugXmlParser parser(unit);
    while (!m_isClosed && parser.executeNext()) {}
    --m_runningUnits;
    if (wasLast)
        askAgain();
}

/// For the clients that could not execute anything meanwhile.
void DebugServerSocket::askAgain()
{
    for (DebugClientSocket *const client : m_clients)
        QMetaObject::invokeMethod(client, &DebugClientSocket::dataReady, Qt::QueuedConnection);
}

/// What happens to the connections from here on is nobody's business.
void DebugServerSocket::closeDown()
{
    m_isClosed = true;
    close();
    for (const Clients *const list : {&m_arrivals, &m_clients, &m_forgotten}) {
        for (DebugClientSocket *const client : *list) {
            client->disconnect();
            client->flushIfConnected();
            client->abort();
        }
    }
    m_arrivals.clear();
    m_clients.clear();
}

} // namespace Zorvan
