#include "lowlevelfunctions/daemonlink.h"

#include "lowlevelfunctions/daemonlockfile.h"
#include "lowlevelfunctions/systemlog.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/process.h"
#include "platform/standardoutput.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <cstring>

namespace Zorvan {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int searchPasses = 10;
constexpr milliseconds searchPause(500);
constexpr int connectAttempts = 10;
constexpr milliseconds connectPause(200);
constexpr milliseconds sendLimit(5000);
constexpr milliseconds atOnce(0);
constexpr milliseconds unlimited(-1);
constexpr milliseconds farewellLimit(1000);
constexpr milliseconds holderLimit(500);

/// Waits until the holder of the lock has come to \a condition. False: it does not; perhaps its thread was
/// killed, which must not stop the end of the process.
template <typename Condition>
bool holderComesTo(Condition condition)
{
    constexpr milliseconds step(1);
    for (milliseconds waited(0); !condition(); waited += step) {
        if (waited >= holderLimit)
            return false;
        platform::sleepFor(step);
    }
    return true;
}

std::string boxRequest(std::string_view title, std::string_view text, int type,
                       const std::array<std::uint32_t, 4> &buttons)
{
    const std::string_view separator = "[#]";
    std::string request = "<msgbox>" + std::to_string(type);
    request.append(separator).append(title).append(separator).append(text);
    for (const std::uint32_t button : buttons) {
        if (button != 0)
            request.append(separator).append(std::to_string(button));
    }
    return request + "</msgbox>";
}

} // namespace

DaemonLink::DaemonLink(std::string program)
    : m_program(std::move(program))
{}

void DaemonLink::lock() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    m_lock.lock();
}

void DaemonLink::unlock() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    m_lock.unlock();
}

bool DaemonLink::tryLock() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    return m_lock.tryLock();
}

bool DaemonLink::lockUnlessWaiting(bool &isMine) ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    return holderComesTo([&] { return (isMine = tryLock()) || m_isWaiting; });
}

bool DaemonLink::setUp(int &daemonPort, int &secondPort, const char *instanceName)
{
    const platform::Locked guard(*this);
    return findAndConnect(daemonPort, secondPort, instanceName);
}

bool DaemonLink::findAndConnect(int &daemonPort, int &secondPort, const char *instanceName)
{
    if (m_isInitialised)
        return m_isFound;
    m_isFinished = false; // an end before the first request does not count
    m_instanceName = daemonInstanceName(instanceName == nullptr ? "assertion" : instanceName);
    daemonPort = -1;
    secondPort = -1;
    gyxLog(nullptr, 0, "++++ testing server installation...\n");
    const DaemonLockFile file = search();
    if (file.isComplete()) {
        m_port = daemonPort = file.daemonPort;
        secondPort = file.secondPort;
        m_isFound = true;
    }
    if (m_isFound)
        connect();
    m_isInitialised = true;
    return m_isFound;
}

void DaemonLink::ensureSetUp()
{
    int daemonPort = -1;
    int secondPort = -1;
    findAndConnect(daemonPort, secondPort, nullptr);
}

/// Waits for a complete lock file of a living daemon. A daemon is started in the first pass only.
DaemonLockFile DaemonLink::search()
{
    const std::string path = daemonLockFilePath(m_instanceName);
    for (int pass = 0; pass < searchPasses; ++pass) {
        // Read last: a daemon that has just come up may have replaced the file that another one left behind.
        const bool isRunning =
            platform::fileExists(path.c_str()) && platform::isProcessRunning(m_program.c_str());
        const DaemonLockFile file = isRunning ? readDaemonLockFile(path) : DaemonLockFile();
        if (file.parts > 0) {
            if (file.isComplete())
                return file;
            platform::writeStandardError("opened port count: " + std::to_string(file.parts) + '\n');
        } else if (pass == 0 && !startDaemon()) {
            return {};
        }
        platform::sleepFor(searchPause);
    }
    return {};
}

bool DaemonLink::startDaemon()
{
    gyxLog(nullptr, 0, "++++ starting debug daemon process...\n");
    m_isFound = platform::startDetached(m_program, {m_instanceName})
        || platform::startDetached(m_program + ".exe", {m_instanceName});
    return m_isFound;
}

// A daemon that was started but told no port is tried at the port known so far; that fails like any other.
void DaemonLink::connect()
{
    gyxLog(nullptr, 0, "++++ connecting to server...\n");
    for (int attempt = 0; attempt < connectAttempts && !m_isUp; ++attempt) {
        platform::sleepFor(connectPause);
        m_socket.connect("127.0.0.1", static_cast<std::uint16_t>(m_port));
        m_isUp = m_socket.state() == nativeTCPSocket::State::Connected;
    }
    m_socket.setBlocking(false);
    m_isOpen = m_isUp;
    if (m_isFinished && m_isOpen.exchange(false))
        m_socket.close(); // finish() came too early to do it
    gyxLog(nullptr, 0, "++++ server running!\n");
}

/// False: the daemon did not take all of \a request in time. With a part of it the connection is of no more
/// use: whatever followed would be taken for the rest.
bool DaemonLink::send(std::string_view request, milliseconds limit)
{
    const auto end = steady_clock::now() + limit;
    std::string_view rest = request;
    while (!m_isFinished) {
        const std::int64_t sent = m_socket.send(rest);
        rest.remove_prefix(static_cast<std::size_t>(std::max<std::int64_t>(sent, 0)));
        if (rest.empty())
            return true;
        const milliseconds left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
        if (sent < 0 || left <= atOnce || !m_socket.waitWritable(left))
            break;
    }
    if (rest.size() < request.size())
        m_socket.shutDown();
    return false;
}

void DaemonLink::dropPendingBytes()
{
    std::array<char, 256> bytes{};
    std::int64_t received = 1;
    for (std::size_t left = m_socket.pendingBytes(); left > 0 && received > 0;) {
        received = m_socket.receive(bytes.data(), std::min(bytes.size(), left));
        left -= static_cast<std::size_t>(std::max<std::int64_t>(received, 0));
    }
}

int DaemonLink::ask(std::string_view request)
{
    dropPendingBytes();
    if (!send(request, sendLimit))
        return sendingFailed;
    m_isWaiting = true;
    std::array<char, sizeof(std::int32_t)> bytes{};
    std::size_t length = 0;
    std::int64_t received = 1;
    while (length < bytes.size() && received > 0 && m_socket.waitReadable(unlimited)) {
        received = m_socket.receive(bytes.data() + length, bytes.size() - length);
        length += received > 0 ? static_cast<std::size_t>(received) : 0;
    }
    m_isWaiting = false;
    std::int32_t answer = noAnswer;
    if (length == bytes.size())
        std::memcpy(&answer, bytes.data(), bytes.size());
    return answer;
}

void DaemonLink::sendProgress(std::string_view word) ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    bool isMine = false;
    lockUnlessWaiting(isMine);
    if (!isMine)
        return;
    ensureSetUp();
    if (m_isUp)
        send("<progress>" + std::string(word) + "</progress>", atOnce);
    unlock();
}

int DaemonLink::showBox(std::string_view title, std::string_view text, int type,
                        const std::array<std::uint32_t, 4> &buttons)
{
    const platform::Locked guard(*this);
    ensureSetUp();
    return m_isUp ? ask(boxRequest(title, text, type, buttons)) : noAnswer;
}

void DaemonLink::finish() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    m_isFinished = true;
    if (!m_isOpen.exchange(false))
        return;
    // Between the pieces of another request the word would mean nothing. Once nobody was seen to send, nobody
    // will any more.
    const std::string_view farewell = "<exit/>";
    bool isMine = false;
    if (lockUnlessWaiting(isMine) && m_socket.send(farewell) == static_cast<std::int64_t>(farewell.size()))
        m_socket.waitReadable(farewellLimit);
    m_socket.shutDown(); // whoever waits for an answer leaves at once
    if (!isMine && !holderComesTo([&] { return tryLock(); }))
        return; // only the descriptor stays open
    m_socket.close();
    unlock();
}

// Closing the copy leaves the parent's connection alone, which shutting it down would not.
DaemonLink *DaemonLink::inChild()
{
    m_socket.close();
    auto *const link = new DaemonLink(m_program);
    link->m_parents = this;
    return link;
}

namespace {

std::atomic<DaemonLink *> s_link{nullptr};

void renewLinkInChild()
{
    s_link = s_link.load()->inChild();
}

} // namespace

DaemonLink &daemonLink()
{
    static const bool made = [] {
        s_link = new DaemonLink("DebugDaemon");
        platform::aroundFork(nullptr, nullptr, renewLinkInChild);
        return true;
    }();
    static_cast<void>(made);
    return *s_link.load();
}

bool initDebugDaemon(int &daemonPort, int &secondPort, const char *instanceName)
{
    return daemonLink().setUp(daemonPort, secondPort, instanceName);
}

void exitDebugDaemon()
{
    daemonLink().finish();
    dropLogChannels();
}

} // namespace Zorvan
