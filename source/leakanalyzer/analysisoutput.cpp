#include "leakanalyzer/analysisoutput.h"

#include "leakanalyzer/insideanalyzer.h"
#include "platform/lock.h"

#include <atomic>
#include <cstdio>
#include <string>

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
        while (isElsewhere([handler](const Delivery &delivery) { return delivery.m_handler != handler; }))
            m_delivered.wait(m_mutex);
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
        while (isElsewhere([handler](const Delivery &delivery) { return delivery.m_handler == handler; }))
            m_delivered.wait(m_mutex);
    }

    void begin(Delivery &delivery)
    {
        const platform::Locked guard(m_mutex);
        delivery.m_handler = m_handler.load(std::memory_order_relaxed);
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
        Delivery **place = &m_deliveries;
        while (*place != nullptr) {
            if ((*place)->m_thread == platform::currentThreadId())
                place = &(*place)->m_next;
            else
                *place = (*place)->m_next;
        }
    }

private:
    /// Whether another thread is in a delivery of that kind.
    template <typename Kind>
    bool isElsewhere(Kind isOfKind) const ZORVAN_REQUIRES(m_mutex)
    {
        for (const Delivery *delivery = m_deliveries; delivery != nullptr; delivery = delivery->m_next) {
            if (delivery->m_thread != platform::currentThreadId() && isOfKind(*delivery))
                return true;
        }
        return false;
    }

    platform::Mutex m_mutex;
    platform::WaitCondition m_delivered;
    std::atomic<IAnalysisOutputInterface *> m_handler{nullptr}; // written with the lock held
    Delivery *m_deliveries ZORVAN_GUARDED_BY(m_mutex) = nullptr;
};

namespace {

OutputHandler &outputHandler()
{
    static auto *const handler =
        new OutputHandler; // never destroyed: methods are measured until the very end
    return *handler;
}

std::string formatted(const char *format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
    if (!text.empty())
        std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

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
    std::string text;
    {
        const InsideAnalyzer guard;
        va_list arguments;
        va_start(arguments, format);
        text = formatted(format, arguments);
        va_end(arguments);
    }
    deliver([&](IAnalysisOutputInterface &handler) { handler.textOutput(source, line, text.c_str()); });
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
