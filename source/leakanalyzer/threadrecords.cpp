#include "leakanalyzer/threadrecords.h"

#include "leakanalyzer/methodids.h"
#include "leakanalyzer/sourcenames.h"
#include "platform/clock.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace Zorvan::analysis {

namespace detail {
ZORVAN_THREAD_WORD ThreadRecord *s_threadRecord = nullptr;
} // namespace detail

using detail::s_threadRecord;

namespace {

constexpr unsigned firstTableBits = 4;
constexpr MethodPosition callingOverhead{0, nullptr, 0, "calling overhead"};

/// The records, which are never freed: a thread may use its own until the very end. Those of ended threads
/// stay for the reports; after a clear other threads get them.
class Registry
{
public:
    struct Entry
    {
        ThreadRecord *record = nullptr;
        bool isThreadAlive = false;
    };

    /// An ended thread's record goes to the next thread with its number.
    ThreadRecord &take(std::uint64_t thread, bool isAlive) ZORVAN_REQUIRES(analyzerLock())
    {
        auto place = m_threads.find(thread);
        if (place == m_threads.end())
            place = m_threads.insert({thread, {unusedRecord(), isAlive}}).first;
        place->second.isThreadAlive = isAlive;
        return *place->second.record;
    }

    void markEnded(std::uint64_t thread) ZORVAN_REQUIRES(analyzerLock())
    {
        const auto place = m_threads.find(thread);
        if (place != m_threads.end())
            place->second.isThreadAlive = false;
    }

    [[nodiscard]] PlainVector<ThreadRecord *> records() const ZORVAN_REQUIRES(analyzerLock())
    {
        PlainVector<ThreadRecord *> records;
        for (const auto &[thread, entry] : m_threads)
            records.push_back(entry.record);
        return records;
    }

    /// Gives the records of ended threads free. The caller has to clear them, with the lock released.
    void dropEnded() ZORVAN_REQUIRES(analyzerLock())
    {
        for (auto place = m_threads.begin(); place != m_threads.end();) {
            if (place->second.isThreadAlive) {
                ++place;
                continue;
            }
            m_unused.push_back(place->second.record);
            place = m_threads.erase(place);
        }
    }

    /// Only \a mine is alive, as \a thread. Records that were being written are not looked at again.
    void keepInChild(ThreadRecord *mine, std::uint64_t thread) ZORVAN_REQUIRES(analyzerLock())
    {
        for (auto place = m_threads.begin(); place != m_threads.end();) {
            place->second.isThreadAlive = false;
            if (place->second.record == mine || place->second.record->lock().isHeld())
                place = m_threads.erase(place);
            else
                ++place;
        }
        m_unused.clear(); // another thread may have been clearing them
        if (mine != nullptr)
            m_threads[thread] = {mine, true};
    }

private:
    ThreadRecord *unusedRecord()
    {
        if (m_unused.empty())
            return makeLasting<ThreadRecord>();
        ThreadRecord *const record = m_unused.back();
        m_unused.pop_back();
        return record;
    }

    std::map<std::uint64_t, Entry, std::less<>, PlainMemory<std::pair<const std::uint64_t, Entry>>>
        m_threads; // by the system's number
    PlainVector<ThreadRecord *> m_unused;
};

Registry &registry() ZORVAN_REQUIRES(analyzerLock())
{
    static auto *const registry = makeLasting<Registry>(); // methods are measured until the very end
    return *registry;
}

ZORVAN_THREAD_WORD bool s_hasThreadEnded = false;

/// Notices the end of its thread. Methods that are measured later, by destructors of other thread_local
/// objects, register the thread anew: as one that has ended, since nothing tells when it really has. A clear
/// may then give its record to another thread, too.
class ThreadEnd
{
public:
    ThreadEnd() = default;
    ~ThreadEnd()
    {
        s_threadRecord = nullptr;
        s_hasThreadEnded = true;
        const platform::Locked guard(analyzerLock());
        registry().markEnded(m_thread);
    }
    ThreadEnd(const ThreadEnd &) = delete;
    ThreadEnd &operator=(const ThreadEnd &) = delete;

    void watch(std::uint64_t thread) { m_thread = thread; }

private:
    std::uint64_t m_thread = 0;
};

thread_local ThreadEnd s_threadEnd;

PlainVector<ThreadRecord *> threadRecords()
{
    const platform::Locked guard(analyzerLock());
    return registry().records();
}

} // namespace

MethodTable::MethodTable()
{
    resize(firstTableBits);
}

MethodStatistics &MethodTable::add(unsigned id)
{
    if ((m_methods.size() + 1) * 2 > m_places.size())
        resize(m_bits + 1);
    MethodStatistics &method = m_methods.emplace_back().method;
    method.id = id;
    std::size_t place = firstPlace(id);
    while (m_places[place].method != nullptr)
        place = nextPlace(place);
    m_places[place] = {id, &method};
    return method;
}

void MethodTable::clear()
{
    m_methods.clear();
    resize(firstTableBits);
}

void MethodTable::resize(unsigned bits)
{
    m_places = PlainVector<Place>(std::size_t{1} << bits); // first: it may throw
    m_bits = bits;
    for (auto &[method] : m_methods) {
        std::size_t place = firstPlace(method.id);
        while (m_places[place].method != nullptr)
            place = nextPlace(place);
        m_places[place] = {method.id, &method};
    }
}

PairingFaults ThreadRecord::start(const MethodPosition &method, std::uint64_t stamp)
{
    PairingFaults faults;
    std::int64_t extra = 0;
    if (method.id != callingOverhead.id)
        extra = measureOneself(method.name, stamp, faults);
    MethodStatistics &statistics = enter(method, faults);
    statistics.startStamp = platform::cycleCounter();
    statistics.overheadCycles += static_cast<std::int64_t>(statistics.startStamp - stamp) + extra;
    return faults;
}

// The start and the end of a method that does nothing, with its id made from the method's name: what they
// cost stands for what the readings around a measurement do not see. They share one reading: every one costs
// as much as all the rest.
std::int64_t ThreadRecord::measureOneself(const char *methodName, std::uint64_t stamp, PairingFaults &faults)
{
    MethodStatistics &oneself = enter(callingOverhead, faults);
    leave(faults);
    static_cast<void>(sourceIndex(methodName));
    oneself.startStamp = platform::cycleCounter();
    const auto cost = static_cast<std::int64_t>(oneself.startStamp - stamp);
    oneself.overheadCycles += cost;
    putOffOpenMethods(cost);
    return cost;
}

PairingFaults ThreadRecord::end(unsigned id, std::uint64_t stamp)
{
    PairingFaults faults;
    if (m_methods.isEmpty()) {
        faults.unknownMethod = true;
        return faults;
    }
    MethodStatistics *const method = m_methods.find(id);
    leave(faults);
    if (method == nullptr) {
        faults.unknownMethod = true;
        return faults;
    }
    const std::uint64_t elapsed = stamp - method->startStamp;
    const std::uint64_t endStamp = platform::cycleCounter();
    putOffOpenMethods(static_cast<std::int64_t>((endStamp - stamp) + elapsed));
    method->overheadCycles += static_cast<std::int64_t>(endStamp - stamp);
    if (static_cast<std::int64_t>(elapsed) >= 0)
        method->totalCycles += static_cast<std::int64_t>(elapsed);
    else // the counter of another processor may be behind
        method->totalCycles += method->overheadCycles / method->calls;
    method->startStamp = endStamp;
    return faults;
}

/// What the open methods are not to be charged with. A recursive method is open at several depths, but is
/// charged from one start only.
void ThreadRecord::putOffOpenMethods(std::int64_t cycles)
{
    ++m_lastPutOff;
    for (int depth = 1; depth <= m_depth; ++depth) {
        MethodStatistics &method = *m_open[static_cast<std::size_t>(depth)];
        if (std::exchange(method.lastPutOff, m_lastPutOff) != m_lastPutOff)
            method.startStamp += static_cast<std::uint64_t>(cycles);
    }
}

MethodStatistics &ThreadRecord::enter(const MethodPosition &method, PairingFaults &faults)
{
    MethodStatistics *statistics = m_methods.find(method.id);
    if (statistics == nullptr)
        statistics = &added(method);
    else
        ++statistics->calls;
    if (++m_depth >= maximumDepth) {
        m_depth = 0;
        faults.tooManyStarts = true;
    }
    m_open[static_cast<std::size_t>(m_depth)] = statistics;
    return *statistics;
}

void ThreadRecord::leave(PairingFaults &faults)
{
    if (--m_depth >= 0)
        return;
    m_depth = 0;
    faults.tooManyEnds = true;
}

MethodStatistics &ThreadRecord::added(const MethodPosition &method)
{
    MethodStatistics &statistics = m_methods.add(method.id);
    statistics.line = method.line;
    const platform::Locked guard(analyzerLock());
    statistics.file = nameCopy(method.file);
    if (const char *const name = nameCopy(method.name))
        statistics.name = name;
    return statistics;
}

const MethodStatistics *ThreadRecord::find(unsigned id) const
{
    return m_methods.find(id);
}

void ThreadRecord::clear()
{
    m_methods.clear();
    m_depth = 0;
}

void ThreadRecord::appendTo(PlainVector<MeasuredMethod> &methods) const
{
    const std::uint64_t thread = m_thread;
    m_methods.visit([&](const MethodStatistics &method) { methods.push_back({thread, method}); });
}

// The record's lock must not be taken under the analyzer lock. In between, a report may show the methods of
// the last thread that had the record.
ThreadRecord &detail::registerThisThread()
{
    const std::uint64_t thread = platform::kernelThreadId();
    if (!s_hasThreadEnded)
        s_threadEnd.watch(thread);
    ThreadRecord *record = nullptr;
    {
        const platform::Locked guard(analyzerLock());
        record = &registry().take(thread, !s_hasThreadEnded);
    }
    const platform::Locked guard(record->lock());
    record->setThread(thread);
    record->forgetOpenMethods();
    s_threadRecord = record;
    return *record;
}

PlainVector<MeasuredMethod> measuredMethods()
{
    PlainVector<MeasuredMethod> methods;
    for (ThreadRecord *const record : threadRecords()) {
        const platform::Locked guard(record->lock());
        record->appendTo(methods);
    }
    std::sort(methods.begin(), methods.end(), [](const MeasuredMethod &left, const MeasuredMethod &right) {
        return std::tie(left.thread, left.statistics.id) < std::tie(right.thread, right.statistics.id);
    });
    return methods;
}

void clearThreadRecords()
{
    PlainVector<ThreadRecord *> records;
    {
        const platform::Locked guard(analyzerLock());
        records = registry().records();
        registry().dropEnded();
    }
    for (ThreadRecord *const record : records) {
        const platform::Locked guard(record->lock());
        record->clear();
    }
}

void adoptRecordsInChild()
{
    const std::uint64_t thread = platform::kernelThreadId();
    if (s_threadRecord != nullptr && s_threadRecord->lock().isHeld())
        s_threadRecord = nullptr; // another thread was clearing it
    try {
        const platform::Locked guard(analyzerLock());
        registry().keepInChild(s_threadRecord, thread);
    } catch (const std::bad_alloc &) {
        s_threadRecord = nullptr;
    }
    if (s_threadRecord == nullptr)
        return;
    if (!s_hasThreadEnded)
        s_threadEnd.watch(thread);
    const platform::Locked guard(s_threadRecord->lock());
    s_threadRecord->setThread(thread);
}

} // namespace Zorvan::analysis
