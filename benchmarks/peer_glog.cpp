#include "peers.h"

#include <benchmark/benchmark.h>
#include <glog/logging.h>

namespace bench {

namespace {

/// Formats each message and drops it.
class FormattingSink final : public google::LogSink
{
public:
    void send(google::LogSeverity severity, const char * /*path*/, const char *file, int line,
              const google::LogMessageTime &time, const char *message, std::size_t size) override
    {
        const std::string text = ToString(severity, file, line, time, message, size);
        benchmark::DoNotOptimize(text.data());
    }
};

Subject refused()
{
    return {"glog, disabled level", repeated([] { VLOG(1) << messageText; })};
}

Subject toFile(const std::string &folder)
{
    FLAGS_logbuflevel = -1; // flush every line
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    google::InitGoogleLogging("bench");
    google::SetLogDestination(google::GLOG_INFO, (folder + "glog-").c_str());
    return {"glog to a file", repeated([] { LOG(INFO) << messageText; })};
}

Subject formatted()
{
    static FormattingSink sink;
    return {"glog, formatting only",
            repeated([] { LOG_TO_SINK_BUT_NOT_TO_LOGFILE(&sink, INFO) << messageText; })};
}

const bool s_added = addPeer({"glog", refused, toFile, formatted});

} // namespace

} // namespace bench
