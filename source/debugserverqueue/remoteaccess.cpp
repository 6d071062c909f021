#include "debugserverqueue/remoteaccess.h"

#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/librarynotice.h"
#include "host/hosthandlers.h"

#include <atomic>
#include <limits>
#include <utility>

namespace Zorvan {

namespace {

std::atomic<bool> s_isAllowed{false};

QHostAddress addressOf(const ServerPlace &place)
{
    if (place.address.isEmpty())
        return QHostAddress(QHostAddress::AnyIPv4);
    return place.address == QLatin1String("localhost") ? QHostAddress(QHostAddress::LocalHost)
                                                       : QHostAddress(place.address);
}

/// What is wrong with a place without trying it; empty if nothing is.
QString faultOf(const ServerPlace &place)
{
    if (place.port < 0 || place.port > std::numeric_limits<quint16>::max())
        return QStringLiteral("not a port number");
    return addressOf(place).isNull() ? QStringLiteral("not an IP address") : QString();
}

void reportFault(const ServerPlace &place, const QString &fault)
{
    const QHostAddress address = addressOf(place);
    libraryNotice(QStringLiteral("++++ remote access: cannot listen on %1, port %2: %3")
                      .arg(address.isNull() ? place.address : address.toString())
                      .arg(place.port)
                      .arg(fault));
}

/// Nobody could know a port that the system has chosen.
void reportChosenPort(const QHostAddress &address, int port)
{
    libraryNotice(
        QStringLiteral("++++ remote access: listening on %1, port %2").arg(address.toString()).arg(port));
}

/// With room for the line end: all clients are sent this one copy.
QByteArray recordOf(std::string_view lines)
{
    const int size = static_cast<int>(lines.size());
    QByteArray record;
    record.reserve(size + 2);
    return record.append(lines.data(), size);
}

} // namespace

ServerPlace ServerPlace::read()
{
    ServerPlace place;
    place.port = host::readInteger(QStringLiteral("serverPort"), place.port);
    place.address = host::readString(QStringLiteral("serverAddress"), QString()).trimmed();
    return place;
}

RemoteAccess::RemoteAccess()
{
    s_isAllowed.store(false);
    guibridge::setClientCount(0);
}

RemoteAccess::~RemoteAccess() = default;

bool RemoteAccess::isAllowed()
{
    return s_isAllowed.load();
}

void RemoteAccess::setOpen(bool open)
{
    m_isOpen = open;
    s_isAllowed.store(open);
}

void RemoteAccess::open(const ServerPlace &place)
{
    setOpen(true);
    const QString fault = faultOf(place);
    if (!fault.isEmpty()) {
        reportFault(place, fault);
        return;
    }
    m_server.reset(new DebugServerSocket(static_cast<quint16>(place.port), addressOf(place)));
    if (!m_server->isListening())
        reportFault(place, m_server->errorString());
    else if (place.port == 0)
        reportChosenPort(m_server->serverAddress(), m_server->serverPort());
}

void RemoteAccess::dropLaggards()
{
    if (m_server)
        m_server->dropLaggards();
}

void RemoteAccess::send(std::string_view lines)
{
    m_server->send(recordOf(lines));
}

void RemoteAccess::send(QByteArray lines)
{
    m_server->send(std::move(lines));
}

void RemoteAccess::close()
{
    setOpen(false);
    m_server.reset();
    Debug::setClientCount(0);
}

void RemoteAccess::closeDetached()
{
    if (m_server == nullptr)
        return;
    m_server.reset();
    if (!guibridge::queueExists())
        Debug::setClientCount(0);
}

} // namespace Zorvan
