#include "lowlevelfunctions/systemlog.h"

#include "lowlevelfunctions/logchannel.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "lowlevelfunctions/tracehistory.h"
#include "platform/errornumber.h"
#include "platform/files.h"
#include "platform/lock.h"
#include "platform/process.h"

#include <zorvan/debug.h>

#include <atomic>
#include <exception>
#include <map>
#include <memory>

namespace Zorvan {

namespace {

/// The channels by the hash of their tags. Channels are shared: one that is in use outlives dropChannels().
class ChannelTable
{
public:
    std::shared_ptr<simpleDebugMutex> channel(const char *tag);
    void dropChannels();
    void hold() ZORVAN_NO_THREAD_SAFETY_ANALYSIS;
    void release() ZORVAN_NO_THREAD_SAFETY_ANALYSIS;

private:
    platform::Mutex m_mutex;
    std::map<std::uint64_t, std::shared_ptr<simpleDebugMutex>> m_channels ZORVAN_GUARDED_BY(m_mutex);
};

/// Tags of the same hash share a channel. Bytes count as signed on every processor.
std::uint64_t tagHash(const char *tag)
{
    if (tag == nullptr)
        return 0;
    const std::string_view bytes(tag);
    std::uint64_t hash = bytes.size();
    for (const char byte : bytes)
        hash = hash * 31 + static_cast<std::uint64_t>(static_cast<signed char>(byte));
    return hash;
}

std::shared_ptr<simpleDebugMutex> ChannelTable::channel(const char *tag)
{
    const std::uint64_t hash = tagHash(tag);
    const platform::Locked guard(m_mutex);
    if (const auto found = m_channels.find(hash); found != m_channels.end())
        return found->second;
    auto made = std::make_shared<simpleDebugMutex>(tag); // first: an entry is never without its channel
    m_channels.emplace(hash, made);
    return made;
}

void ChannelTable::dropChannels()
{
    std::map<std::uint64_t, std::shared_ptr<simpleDebugMutex>> dropped;
    const platform::Locked guard(m_mutex);
    dropped.swap(m_channels);
}

void ChannelTable::hold()
{
    m_mutex.lock();
    for (auto &entry : m_channels)
        entry.second->lock();
}

void ChannelTable::release()
{
    for (auto &entry : m_channels)
        entry.second->unlock();
    m_mutex.unlock();
}

ChannelTable &channelTable()
{
    static auto *table = new ChannelTable; // never destroyed: threads may log until the process is gone
    return *table;
}

std::atomic<bool> s_closed{false};

/// The way of messages that come when the library is being unloaded: everything but the file system may be
/// gone.
void appendDuringShutdown(const char *format, va_list *arguments)
{
    const std::string line = "++++ message during shutdown: " + formatLogMessage(format, arguments) + '\n';
    platform::AppendFile(logPath(nullptr, 0).c_str()).write(line);
}

void holdLowlevelLocks()
{
    traceHistory().hold();
    channelTable().hold();
    holdLowlevelProperties();
}

void releaseLowlevelLocks()
{
    releaseLowlevelProperties();
    channelTable().release();
    traceHistory().release();
}

} // namespace

// Without memory the message is lost: the caller may be a destructor or a handler of Qt.
void gyxLog(const char *tag, const char *file, int line, const char *format, va_list *arguments)
try {
    const platform::ErrorNumberKept kept;
    if (s_closed.load(std::memory_order_relaxed)) {
        appendDuringShutdown(format, arguments);
        return;
    }
    const std::shared_ptr<simpleDebugMutex> channel = channelTable().channel(tag);
    kept.restore(); // "%m" prints the caller's, not that of a channel being made
    channel->write(file, line, format, arguments);
} catch (const std::exception &) {
    return;
}

void gyxLog(const char *file, int line, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    gyxLog(nullptr, file, line, format, &arguments);
    va_end(arguments);
}

void dropLogChannels()
{
    channelTable().dropChannels();
}

void closeLogTable()
{
    s_closed.store(true, std::memory_order_relaxed);
}

void registerLowlevelForkHandlers()
{
    static const bool registered = [] {
        platform::aroundFork(holdLowlevelLocks, releaseLowlevelLocks, releaseLowlevelLocks);
        return true;
    }();
    static_cast<void>(registered);
}

} // namespace Zorvan
