#pragma once

#include "lowlevelfunctions/nativetcpsocket.h"
#include "lowlevelfunctions/simplecasmutex.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

namespace Zorvan {

struct DaemonLockFile;

/// The connection to the debug daemon, a program that shows dialogs for processes that cannot.
///
/// It is set up once, by the first request: a running daemon is found by its lock file or a daemon is
/// started, which takes up to nine seconds. Requests are short texts in Latin-1, sent as they are; some are
/// answered by four bytes. A request that the daemon has not taken whole after five seconds has failed; once
/// it got a part of one, so do all that follow. After finish() the link still counts as up, but sending
/// fails.
///
/// Any thread. The object is its own lock: who holds it has the link for itself, until its answer has come.
/// Host code and Qt are not called under it.
class ZORVAN_CAPABILITY("mutex") DaemonLink
{
public:
    /// A process is a daemon if its program's name contains \a program, which is also the program to start.
    explicit DaemonLink(std::string program);

    void lock() ZORVAN_ACQUIRE();
    void unlock() ZORVAN_RELEASE();

    /// What initDebugDaemon() does.
    bool setUp(int &daemonPort, int &secondPort, const char *instanceName) ZORVAN_EXCLUDES(this);
    /// For requests: sets the link up with the usual instance name unless it is set up.
    void ensureSetUp() ZORVAN_REQUIRES(this);
    [[nodiscard]] bool isUp() const ZORVAN_REQUIRES(this) { return m_isUp; }

    /// Values of ask() that are no answer. The daemon's own answers are codes of Qt's standard buttons.
    static constexpr int noAnswer = 0; ///< the connection ended before four bytes had come
    static constexpr int sendingFailed = 1;
    /// Sends \a request and waits for the four bytes of its answer, without a limit: only the daemon or
    /// finish() ends the wait. What the daemon sent before the request is no answer to it.
    int ask(std::string_view request) ZORVAN_REQUIRES(this);

    /// Tells that a dialog of this process is open or closed: "messageStart", "messageStop". No answer. For
    /// the GUI thread: once the link is set up, a notice is dropped rather than waited for, if the daemon
    /// does not take it at once or another thread has an open question or keeps the link for half a second.
    void sendProgress(std::string_view word) ZORVAN_EXCLUDES(this);
    /// Lets the daemon show a message box. The code of the button pressed, or as ask(); noAnswer also when
    /// the link is down. \a buttons are codes of Qt's standard buttons, 0 for none.
    int showBox(std::string_view title, std::string_view text, int type,
                const std::array<std::uint32_t, 4> &buttons) ZORVAN_EXCLUDES(this);

    /// Says good-bye and closes the connection; a request that waits for its answer ends. For the end of the
    /// process: takes two seconds at most, whatever the daemon and the holder of the lock do. A set-up that
    /// another thread is at leaves no connection behind.
    void finish() ZORVAN_EXCLUDES(this);

    /// For the child of a fork(): a new link for it, after closing its copy of the parent's connection. The
    /// old one, which other threads of the parent may just have held, is of no more use there.
    DaemonLink *inChild();

private:
    bool tryLock() ZORVAN_TRY_ACQUIRE(true);
    /// Waits until the lock is taken or its holder waits for an answer, for half a second at most; \a isMine
    /// is true if it was taken. False: neither came.
    bool lockUnlessWaiting(bool &isMine);
    bool findAndConnect(int &daemonPort, int &secondPort, const char *instanceName) ZORVAN_REQUIRES(this);
    bool send(std::string_view request, std::chrono::milliseconds limit) ZORVAN_REQUIRES(this);
    void dropPendingBytes() ZORVAN_REQUIRES(this);
    DaemonLockFile search() ZORVAN_REQUIRES(this);
    bool startDaemon() ZORVAN_REQUIRES(this);
    void connect() ZORVAN_REQUIRES(this);

    const std::string m_program;
    simpleCASMutex m_lock;
    std::atomic<bool> m_isWaiting{false}; // the lock's holder has sent its request and waits for the answer
    std::atomic<bool> m_isOpen{false}; // the socket is connected and nobody has begun to close it
    std::atomic<bool> m_isFinished{false}; // finish() was called since the set-up began: nothing more is sent

    // Connected and closed with the lock held; finish() uses it without in between. Does not block: whoever
    // waits for it says how long.
    nativeTCPSocket m_socket;
    std::string m_instanceName ZORVAN_GUARDED_BY(this);
    bool m_isInitialised ZORVAN_GUARDED_BY(this) = false;
    bool m_isFound ZORVAN_GUARDED_BY(this) = false; // a daemon runs, or was started
    bool m_isUp ZORVAN_GUARDED_BY(this) = false; // was connected once
    int m_port ZORVAN_GUARDED_BY(this) = -1;
    DaemonLink *m_parents = nullptr; // the link before a fork(), kept where leak checkers find it
};

/// The link of this process. Made when the library is loaded, never destroyed.
DaemonLink &daemonLink();

} // namespace Zorvan
