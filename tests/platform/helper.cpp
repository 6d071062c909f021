/// Connects to the port of the first argument, sends each further argument with a NUL after it, and lives
/// until the other end closes the connection.

#include "platform/tcpsocket.h"

#include <chrono>
#include <cstdlib>
#include <string>

int main(int count, char **arguments)
{
    Zorvan::platform::TcpSocket socket;
    if (count < 2 || !socket.connect("127.0.0.1", static_cast<std::uint16_t>(std::atoi(arguments[1]))))
        return 1;
    std::string report;
    for (int i = 2; i < count; ++i)
        report.append(arguments[i]).push_back('\0');
    socket.send(report);
    socket.waitReadable(std::chrono::milliseconds(-1));
    return 0;
}
