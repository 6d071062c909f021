#include "peers.h"

#include <atomic>
#include <benchmark/benchmark.h>
#include <spdlog/async.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace bench {

namespace {

/// Formats each message and drops it; the library's own null sink does not even format.
class FormattingSink final : public spdlog::sinks::base_sink<std::mutex>
{
public:
    [[nodiscard]] int flushes() const { return m_flushes.load(); }

protected:
    void sink_it_(const spdlog::details::log_msg &message) override
    {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        benchmark::DoNotOptimize(line.data());
    }
    void flush_() override { m_flushes.fetch_add(1); }

private:
    std::atomic<int> m_flushes{0};
};

constexpr const char *linePattern = "%H:%M:%S.%f: (%15t thread) <%n> <%l>: %v";

std::shared_ptr<spdlog::details::thread_pool> newThread()
{
    constexpr std::size_t places = 8192;
    return std::make_shared<spdlog::details::thread_pool>(places, 1);
}

std::shared_ptr<spdlog::logger> makeLogger(std::shared_ptr<spdlog::sinks::sink> sink)
{
    auto logger = std::make_shared<spdlog::logger>("Measured", std::move(sink));
    logger->set_pattern(linePattern);
    logger->flush_on(spdlog::level::trace);
    return logger;
}

Subject refused()
{
    const auto logger = makeLogger(std::make_shared<FormattingSink>());
    logger->set_level(spdlog::level::warn);
    return {"spdlog, disabled level", repeated([logger] { logger->info(messageText); })};
}

Subject toFile(const std::string &folder)
{
    const auto logger =
        makeLogger(std::make_shared<spdlog::sinks::basic_file_sink_mt>(folder + "spdlog.log"));
    return {"spdlog to a file", repeated([logger] { logger->info(messageText); })};
}

Subject toFileLater(const std::string &folder)
{
    static const auto thread = newThread();
    const auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(folder + "spdlog-later.log");
    const auto logger = std::make_shared<spdlog::async_logger>("Measured", sink, thread);
    logger->set_pattern(linePattern);
    Subject subject{"spdlog to a file, asynchronous", repeated([logger] { logger->info(messageText); })};
    subject.settle = [] {
        while (thread->queue_size() > 0)
            std::this_thread::yield();
    };
    subject.consumed = true;
    return subject;
}

Subject formatted()
{
    const auto logger = makeLogger(std::make_shared<FormattingSink>());
    return {"spdlog, formatting only", repeated([logger] { logger->info(messageText); })};
}

Subject handedOver(const std::string &line)
{
    static const auto thread = newThread();
    const auto sink = std::make_shared<FormattingSink>();
    const auto logger = std::make_shared<spdlog::async_logger>("Measured", sink, thread);
    logger->set_pattern("%v");
    Subject subject{"spdlog, asynchronous logger", repeated([logger, line] { logger->info(line); })};
    subject.settle = [logger, sink, asked = std::make_shared<std::atomic<int>>(0)] {
        const int own = asked->fetch_add(1) + 1;
        logger->flush();
        while (sink->flushes() < own)
            std::this_thread::yield();
    };
    subject.consumed = true;
    return subject;
}

const bool s_added = addPeer({"spdlog", refused, toFile, formatted, handedOver, toFileLater});

} // namespace

} // namespace bench
