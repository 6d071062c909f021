#include "peers.h"

#include <benchmark/benchmark.h>
#include <log4cplus/fileappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#include <sstream>

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

log4cplus::Logger makeLogger(const char *name, log4cplus::SharedAppenderPtr appender)
{
    static const log4cplus::Initializer s_initializer;
    appender->setLayout(
        std::make_unique<log4cplus::PatternLayout>("%D{%H:%M:%S.%q}: (%15t thread) <%c> <%p>: %m%n"));
    log4cplus::Logger logger = log4cplus::Logger::getInstance(name);
    logger.setLogLevel(log4cplus::INFO_LOG_LEVEL);
    logger.addAppender(std::move(appender));
    return logger;
}

Subject toFile(const std::string &folder)
{
    constexpr bool flushEachLine = true;
    const log4cplus::SharedAppenderPtr appender(
        new log4cplus::FileAppender(folder + "log4cplus.log", std::ios_base::trunc, flushEachLine));
    const log4cplus::Logger logger = makeLogger("File", appender);
    return {"log4cplus to a file", repeated([logger] { LOG4CPLUS_INFO(logger, messageText); })};
}

Subject formatted()
{
    const log4cplus::Logger logger =
        makeLogger("Formatted", log4cplus::SharedAppenderPtr(new FormattingAppender));
    return {"log4cplus, formatting only", repeated([logger] { LOG4CPLUS_INFO(logger, messageText); })};
}

const bool s_added = addPeer({"log4cplus", nullptr, toFile, formatted});

} // namespace

} // namespace bench
