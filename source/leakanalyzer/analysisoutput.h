#pragma once

#include <zorvan/debug.h>

#include <cstdint>

/// Where the results of the analysis tools go: to the handler that the host installed, or nowhere.
///
/// Any thread, with none of the analyzer's locks held. The handler is called in the thread that has something
/// to tell, in several threads at once if need be.
namespace Zorvan::analysis {

/// Returns when no other thread is inside an earlier handler any more; at once from within a handler.
void setOutputHandler(IAnalysisOutputInterface *handler);
/// The same without waiting, for the thread that an earlier handler may be waiting for.
void takeOverOutput(IAnalysisOutputInterface *handler);
/// Takes the handler away, if it is the one installed. Returns when no other thread is inside it any more; at
/// once from within a handler.
void removeOutputHandler(IAnalysisOutputInterface *handler);
/// Whether there is anybody to tell.
[[nodiscard]] bool hasOutputHandler();

// What the tools have to say of themselves comes under these names.
inline constexpr const char *analyzerSource = "Leak/Method Analyzer";
inline constexpr const char *leakAnalyzerSource = "Leak Analyzer";
inline constexpr const char *methodAnalyzerSource = "Method Analyzer";

/// Formats a text and hands it out under a source position, which may be null.
void emitText(const char *source, int line, const char *format, ...) ZORVAN_PRINTF_FORMAT(3, 4);

/// Keeps the present handler from going while this object lives.
class Delivery
{
public:
    Delivery();
    ~Delivery();
    Delivery(const Delivery &) = delete;
    Delivery &operator=(const Delivery &) = delete;

    /// Null if none is installed.
    [[nodiscard]] IAnalysisOutputInterface *handler() const { return m_handler; }
    [[nodiscard]] const void *thread() const { return m_thread; }

private:
    friend class OutputHandler;

    const void *m_thread;
    IAnalysisOutputInterface *m_handler = nullptr;
    Delivery *m_next = nullptr; // of all in progress
    std::uint64_t m_number = 0;
};

/// Calls \a call with the present handler, if there is one.
template <typename Call>
void deliver(Call call)
{
    if (!hasOutputHandler())
        return;
    const Delivery delivery;
    if (IAnalysisOutputInterface *const handler = delivery.handler())
        call(*handler);
}

/// For fork(): see platform::aroundFork().
void holdOutputForFork();
void releaseOutput();
void releaseOutputInChild();

} // namespace Zorvan::analysis
