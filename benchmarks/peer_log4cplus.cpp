#include "peers.h"

#include <atomic>
#include <benchmark/benchmark.h>
#include <log4cplus/asyncappender.h>
#include <log4cplus/fileappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#include <sstream>
#include <thread>

namespace bench {

namespace {

/// Formats each message and drops it; the library's own null appender does not even format.
class FormattingAppender final : public log4cplus::Appender
{
public:
    FormattingAppender() = default;
    ~FormattingAppender() override { destructorImpl(); }
    void close() override { closed = true; }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        log4cplus::tstring &line = formatEvent(event);
        benchmark::DoNotOptimize(line.data());
    }
};

/// Counts what has come to the file.
class CountingFile final : public log4cplus::FileAppender
{
public:
    using FileAppender::FileAppender;
    ~CountingFile() override { destructorImpl(); }
    [[nodiscard]] long lines() const { return m_lines.load(); }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        FileAppender::append(event);
        m_lines.fetch_add(1);
    }

private:
    std::atomic<long> m_lines{0};
};

log4cplus::Logger makeLogger(const char *name, log4cplus::SharedAppenderPtr appender)
{
    static const log4cplus::Initializer s_initializer;
    appender->setLayout(
        std::make_unique<log4cplus::PatternLayout>("%D{%H:%M:%S.%q}: (%15t thread) <%c> <%p>: %m%n"));
    log4cplus::Logger logger = log4cplus::Logger::getInstance(name);
    logger.setLogLevel(log4cplus::INFO_LOG_LEVEL);
    logger.removeAllAppenders(); // of an earlier comparison: the name stands for the same logger
    logger.addAppender(std::move(appender));
    return logger;
}

Subject refused()
{
    const log4cplus::Logger logger =
        makeLogger("Refused", log4cplus::SharedAppenderPtr(new FormattingAppender));
    return {"log4cplus, disabled level", repeated([logger] { LOG4CPLUS_DEBUG(logger, messageText); })};
}

Subject toFile(const std::string &folder)
{
    constexpr bool flushEachLine = true;
    const log4cplus::SharedAppenderPtr appender(
        new log4cplus::FileAppender(folder + "log4cplus.log", std::ios_base::trunc, flushEachLine));
    const log4cplus::Logger logger = makeLogger("File", appender);
    return {"log4cplus to a file", repeated([logger] { LOG4CPLUS_INFO(logger, messageText); })};
}

Subject toFileLater(const std::string &folder)
{
    constexpr unsigned places = 8192;
    constexpr bool flushEachLine = false;
    auto *const file = new CountingFile(folder + "log4cplus-later.log", std::ios_base::trunc, flushEachLine);
    const log4cplus::Logger logger = makeLogger("Later",
                                                log4cplus::SharedAppenderPtr(new log4cplus::AsyncAppender(
                                                    log4cplus::SharedAppenderPtr(file), places)));
    const auto handedOver = std::make_shared<std::atomic<long>>(0);
    Subject subject{"log4cplus to a file, asynchronous", [logger, handedOver](int calls) {
                        for (int i = 0; i < calls; ++i)
                            LOG4CPLUS_INFO(logger, messageText);
                        handedOver->fetch_add(calls);
                    }};
    subject.settle = [file, handedOver] {
        while (file->lines() < *handedOver)
            std::this_thread::yield();
    };
    subject.consumed = true;
    return subject;
}

Subject formatted()
{
    const log4cplus::Logger logger =
        makeLogger("Formatted", log4cplus::SharedAppenderPtr(new FormattingAppender));
    return {"log4cplus, formatting only", repeated([logger] { LOG4CPLUS_INFO(logger, messageText); })};
}

const bool s_added = addPeer({"log4cplus", refused, toFile, formatted, nullptr, toFileLater});

} // namespace

} // namespace bench
