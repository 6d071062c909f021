#include "leakanalyzer/analysisoutput.h"

#include "platform/lock.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace Zorvan::analysis {

/// The installed handler, and the calls to it that are in progress. A leaf lock: no handler is called under
/// it.
class OutputHandler
{
public:
    [[nodiscard]] bool isInstalled() const { return m_handler.load(std::memory_order_acquire) != nullptr; }

    void replace(IAnalysisOutputInterface *handler)
    {
        const platform::Locked guard(m_mutex);
        m_handler.store(handler);
        waitFor([handler](const Delivery &delivery) { return delivery.m_handler != handler; });
    }

    void takeOver(IAnalysisOutputInterface *handler)
    {
        const platform::Locked guard(m_mutex);
        m_handler.store(handler);
    }

    void remove(IAnalysisOutputInterface *handler)
    {
        const platform::Locked guard(m_mutex);
        if (m_handler.load(std::memory_order_relaxed) == handler)
            m_handler.store(nullptr);
        waitFor([handler](const Delivery &delivery) { return delivery.m_handler == handler; });
    }

    void begin(Delivery &delivery)
    {
        const platform::Locked guard(m_mutex);
        delivery.m_handler = m_handler.load(std::memory_order_relaxed);
        delivery.m_number = ++m_lastNumber;
        delivery.m_next = m_deliveries;
        m_deliveries = &delivery;
    }

    void end(const Delivery &delivery)
    {
        const platform::Locked guard(m_mutex);
        Delivery **place = &m_deliveries;
        while (*place != &delivery)
            place = &(*place)->m_next;
        *place = delivery.m_next;
        m_delivered.wakeAll();
    }

    void hold() ZORVAN_ACQUIRE(m_mutex) { m_mutex.lock(); }
    void release() ZORVAN_RELEASE(m_mutex) { m_mutex.unlock(); }
    /// In the child of a fork() the other threads are not there any more, nor what they are about to end.
    void dropOtherThreads() ZORVAN_REQUIRES(m_mutex)
    {
        m_delivered.forgetWaiters();
        Delivery **place = &m_deliveries;
        while (*place != nullptr) {
            if ((*place)->m_thread == platform::currentThreadId())
                place = &(*place)->m_next;
            else
                *place = (*place)->m_next;
        }
    }

private:
    /// Until the deliveries of a kind that are in progress now have ended. Not from within a delivery: two
    /// handlers that take themselves away would wait for each other.
    template <typename Kind>
    void waitFor(Kind isOfKind) ZORVAN_REQUIRES(m_mutex)
    {
        const std::uint64_t last = m_lastNumber;
        const void *const thread = platform::currentThreadId();
        if (has([thread](const Delivery &delivery) { return delivery.m_thread == thread; }))
            return;
        while (has([&](const Delivery &delivery) { return delivery.m_number <= last && isOfKind(delivery); }))
            m_delivered.wait(m_mutex);
    }

    template <typename Kind>
    [[nodiscard]] bool has(Kind isOfKind) const ZORVAN_REQUIRES(m_mutex)
    {
        for (const Delivery *delivery = m_deliveries; delivery != nullptr; delivery = delivery->m_next) {
            if (isOfKind(*delivery))
                return true;
        }
        return false;
    }

    platform::Mutex m_mutex;
    platform::WaitCondition m_delivered;
    std::atomic<IAnalysisOutputInterface *> m_handler{nullptr}; // written with the lock held
    Delivery *m_deliveries ZORVAN_GUARDED_BY(m_mutex) = nullptr;
    std::uint64_t m_lastNumber ZORVAN_GUARDED_BY(m_mutex) = 0; // of a delivery
};

namespace {

OutputHandler &outputHandler()
{
    static auto *const handler =
        new OutputHandler; // never destroyed: methods are measured until the very end
    return *handler;
}

/// A formatted text. One that is too long for the memory there is, is cut.
class FormattedText
{
public:
    FormattedText(const char *format, va_list arguments)
    {
        va_list again;
        va_copy(again, arguments);
        const int length = std::vsnprintf(m_short, sizeof m_short, format, again);
        va_end(again);
        if (length < 0)
            m_short[0] = '\0';
        const std::size_t bytes = length < 0 ? 1 : static_cast<std::size_t>(length) + 1;
        if (bytes > sizeof m_short)
            m_long = static_cast<char *>(std::malloc(bytes));
        if (m_long != nullptr)
            std::vsnprintf(m_long, bytes, format, arguments);
    }
    ~FormattedText() { std::free(m_long); }
    FormattedText(const FormattedText &) = delete;
    FormattedText &operator=(const FormattedText &) = delete;

    [[nodiscard]] const char *text() const { return m_long != nullptr ? m_long : m_short; }

private:
    char m_short[512];
    char *m_long = nullptr;
};

} // namespace

Delivery::Delivery()
    : m_thread(platform::currentThreadId())
{
    outputHandler().begin(*this);
}

Delivery::~Delivery()
{
    outputHandler().end(*this);
}

void setOutputHandler(IAnalysisOutputInterface *handler)
{
    outputHandler().replace(handler);
}

void takeOverOutput(IAnalysisOutputInterface *handler)
{
    outputHandler().takeOver(handler);
}

void removeOutputHandler(IAnalysisOutputInterface *handler)
{
    outputHandler().remove(handler);
}

bool hasOutputHandler()
{
    return outputHandler().isInstalled();
}

void emitText(const char *source, int line, const char *format, ...)
{
    if (!hasOutputHandler())
        return;
    va_list arguments;
    va_start(arguments, format);
    const FormattedText text(format, arguments);
    va_end(arguments);
    deliver([&](IAnalysisOutputInterface &handler) { handler.textOutput(source, line, text.text()); });
}

void holdOutputForFork() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    outputHandler().hold();
}

void releaseOutput() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    outputHandler().release();
}

void releaseOutputInChild() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    outputHandler().dropOtherThreads();
    outputHandler().release();
}

} // namespace Zorvan::analysis
