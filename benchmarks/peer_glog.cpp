#include "peers.h"

#include <glog/logging.h>

namespace bench {

namespace {

Subject toFile(const std::string &folder)
{
    FLAGS_logbuflevel = -1; // flush every line
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    google::InitGoogleLogging("bench");
    google::SetLogDestination(google::GLOG_INFO, (folder + "glog-").c_str());
    return {"glog to a file", repeated([] { LOG(INFO) << messageText; })};
}

const bool s_added = addPeer({"glog", nullptr, toFile, nullptr});

} // namespace

} // namespace bench
