#pragma once

#include "debugserverqueue/debugserversocket.h"

#include <QString>

#include <string_view>

namespace Zorvan {

/// Where remote clients find the host, as it is written in the host's settings.
struct ServerPlace
{
    QString address; ///< empty: every IPv4 address of the machine
    int port = 23;

    /// Asks the host, which may do anything, even end the library.
    static ServerPlace read();
};

/// The port for remote clients, open or closed. GUI thread.
class RemoteAccess
{
public:
    RemoteAccess();
    ~RemoteAccess();
    RemoteAccess(const RemoteAccess &) = delete;
    RemoteAccess &operator=(const RemoteAccess &) = delete;

    /// What the last request was that was carried out; also if the port could not be opened.
    [[nodiscard]] bool isOpen() const { return m_isOpen; }
    /// The same of the object made last. Any thread.
    [[nodiscard]] static bool isAllowed();

    /// Prints a notice if the place is no good. Printing may end the library, this object included.
    void open(const ServerPlace &place);
    void close();
    /// The same for a queue that is not in use any more: leaves alone what its successor has set.
    void closeDetached();

    [[nodiscard]] bool hasClients() const { return m_server && m_server->clientCount() > 0; }
    /// Drops the clients that do not read. Printing the notices may end the library, this object included.
    void dropLaggards();
    /// Sends a batch of lines to all clients. With clients only. Calls nobody: locks may be held.
    void send(std::string_view lines);
    void send(QByteArray lines);

private:
    void setOpen(bool open);

    bool m_isOpen = false;
    DebugServerSocket::Owner m_server;
};

} // namespace Zorvan
