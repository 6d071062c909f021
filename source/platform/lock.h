#pragma once

/// Locks, wait condition, thread and hand-over, annotated for two checkers: Clang's -Wthread-safety reads the
/// ZORVAN_... attributes, ThreadSanitizer the acquire/release marks. Both are nothing in an ordinary build.
///
/// Everything is built on std: ThreadSanitizer cannot see into the distribution's Qt, so a QMutex would be
/// reported as a race. Nothing here belongs to Qt, and nothing needs an application object.
///
/// Order in which locks may be taken; whoever holds one takes only locks further down:
///   1. module table (recursive; also held while host callbacks run, see docs/embedding.md)
///   2. output file; texts of classes and levels (both only with the module table held: see fork() there)
///   3. hook registry (no handler is called under it)
///   4. delivery of a batch of lines (no host code under it)
///   5. lines that wait for the GUI thread
///   6. posting to the queue (then only Qt's own locks); the answer to a request (leaf)
///   7. debug daemon link (until its answer has come; no host code, no Qt call under it)
///   8. trace-point history
///   9. channel table of the system log, then one channel (no host code, no Qt call under them)
///  10. low-level properties (leaf)
/// The analyzer has an order of its own and takes none of the above: a thread's own measurements, the
/// analyzer lock, then the queue of releases or the blocks of operator new (leaves); its output is handed out
/// with none of them held.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

#if defined(__clang__)
#define ZORVAN_ANNOTATE(x) __attribute__((x))
#else
#define ZORVAN_ANNOTATE(x)
#endif

#define ZORVAN_CAPABILITY(x) ZORVAN_ANNOTATE(capability(x))
#define ZORVAN_SCOPED_CAPABILITY ZORVAN_ANNOTATE(scoped_lockable)
#define ZORVAN_GUARDED_BY(x) ZORVAN_ANNOTATE(guarded_by(x))
#define ZORVAN_REQUIRES(...) ZORVAN_ANNOTATE(requires_capability(__VA_ARGS__))
#define ZORVAN_EXCLUDES(...) ZORVAN_ANNOTATE(locks_excluded(__VA_ARGS__))
#define ZORVAN_ACQUIRE(...) ZORVAN_ANNOTATE(acquire_capability(__VA_ARGS__))
#define ZORVAN_RELEASE(...) ZORVAN_ANNOTATE(release_capability(__VA_ARGS__))
#define ZORVAN_TRY_ACQUIRE(...) ZORVAN_ANNOTATE(try_acquire_capability(__VA_ARGS__))
#define ZORVAN_RETURN_CAPABILITY(x) ZORVAN_ANNOTATE(lock_returned(x))
#define ZORVAN_NO_THREAD_SAFETY_ANALYSIS ZORVAN_ANNOTATE(no_thread_safety_analysis)

#if defined(__SANITIZE_THREAD__)
#define ZORVAN_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZORVAN_TSAN 1
#endif
#endif

#if defined(ZORVAN_TSAN)
extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);
#endif

namespace Zorvan::platform {

/// Tells ThreadSanitizer that everything written before handOver(object) is seen after takeOver(object).
/// Use around code that synchronises where the sanitizer cannot look, such as Qt's event queue.
inline void handOver([[maybe_unused]] void *object)
{
#if defined(ZORVAN_TSAN)
    __tsan_release(object);
#endif
}

inline void takeOver([[maybe_unused]] void *object)
{
#if defined(ZORVAN_TSAN)
    __tsan_acquire(object);
#endif
}

/// Plain mutual exclusion: not recursive, any thread, never throws in correct use.
class ZORVAN_CAPABILITY("mutex") Mutex
{
public:
    Mutex() = default; // constexpr where std::mutex is: static locks then work in every static constructor
    Mutex(const Mutex &) = delete;
    Mutex &operator=(const Mutex &) = delete;

    void lock() ZORVAN_ACQUIRE()
    {
        m_mutex.lock();
        takeOver(this);
    }
    bool tryLock() ZORVAN_TRY_ACQUIRE(true)
    {
        if (!m_mutex.try_lock())
            return false;
        takeOver(this);
        return true;
    }
    void unlock() ZORVAN_RELEASE()
    {
        handOver(this);
        m_mutex.unlock();
    }

private:
    friend class WaitCondition;
    std::mutex m_mutex;
};

/// Mutual exclusion that its owner may take again.
///
/// A waiter first spins for as long as some file writes take before it sleeps, and a thread that comes back
/// at once lets it go first: printing threads then hand the lock to each other without the scheduler. The
/// owner survives fork(): a lock held by the forking thread can be released in the child.
class ZORVAN_CAPABILITY("mutex") RecursiveLock
{
public:
    RecursiveLock() = default;
    RecursiveLock(const RecursiveLock &) = delete;
    RecursiveLock &operator=(const RecursiveLock &) = delete;

    void lock() ZORVAN_ACQUIRE();
    void unlock() ZORVAN_RELEASE();
    /// True if the calling thread holds the lock.
    [[nodiscard]] bool isMine() const;
    /// How often the calling thread holds it; 0 if it does not.
    [[nodiscard]] int depth() const { return isMine() ? m_depth : 0; }

    /// Call in the child of a fork(), by the thread that held the lock over it: the waiters are not there.
    void forgetWaiters() { m_spinners.store(0, std::memory_order_relaxed); }

private:
    void letWaitersGoFirst();
    void acquireContended();

    std::mutex m_mutex;
    std::atomic<const void *> m_owner{nullptr};
    std::atomic<int> m_spinners{0}; // waiters that have spun for a while
    int m_depth = 0; // only the owner touches it
};

/// Holds a lock for a scope. Works with every lock of the library that has lock() and unlock().
template <typename Lock>
class ZORVAN_SCOPED_CAPABILITY Locked
{
public:
    explicit Locked(Lock &lock) ZORVAN_ACQUIRE(lock)
        : m_lock(lock)
    {
        m_lock.lock();
    }
    ~Locked() ZORVAN_RELEASE() { m_lock.unlock(); }
    Locked(const Locked &) = delete;
    Locked &operator=(const Locked &) = delete;

private:
    Lock &m_lock;
};

/// Waits for a change of state guarded by a Mutex. Waits may end early: re-check the state in a loop.
class WaitCondition
{
public:
    void wait(Mutex &mutex) ZORVAN_REQUIRES(mutex);
    /// False if \a limit passed without a wake-up.
    bool waitFor(Mutex &mutex, std::chrono::milliseconds limit) ZORVAN_REQUIRES(mutex);
    void wakeOne() { m_condition.notify_one(); }
    void wakeAll() { m_condition.notify_all(); }
    /// Call in the child of a fork(), with the mutex held over it: waking waiters that are not there would
    /// wait for them, and so would the destructor of what they waited for.
    void forgetWaiters() { new (&m_condition) std::condition_variable; }

private:
    std::condition_variable m_condition;
};

/// A joined thread: the destructor waits for its end.
class Thread
{
public:
    Thread() = default;
    template <typename Function>
    explicit Thread(Function function)
        : m_thread(std::move(function))
    {}
    Thread(Thread &&) = default;
    Thread &operator=(Thread &&other) noexcept
    {
        join();
        m_thread = std::move(other.m_thread);
        return *this;
    }
    ~Thread() { join(); }

    void join()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

private:
    std::thread m_thread;
};

/// Opaque, pointer-sized id of the calling thread, as the system's own debuggers show it.
[[nodiscard]] void *currentThreadId();
/// The system's number of the calling thread: not given to another thread at once when this one has ended.
/// Cheap: asked for once per thread, and again in the child of a fork().
[[nodiscard]] std::uint64_t kernelThreadId();

} // namespace Zorvan::platform
