#pragma once

#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/brieflock.h"
#include "leakanalyzer/plainmemory.h"
#include "platform/threadlocal.h"

#include <array>
#include <cstdint>
#include <deque>

/// What each thread has measured. A thread writes only its own record; reports and clears reach them all.
namespace Zorvan::analysis {

/// One method in one thread. Cycles are those of platform::cycleCounter().
struct MethodStatistics
{
    unsigned id = 0;
    int line = 0;
    const char *file = nullptr; ///< the analyzer's own copy; null for its own method
    const char *name = ""; ///< the analyzer's own copy
    std::int64_t calls = 1;
    std::uint64_t startStamp = 0; ///< of the last start, plus what nested methods took; then of the last end
    std::int64_t totalCycles = 0; ///< without those of nested methods
    std::int64_t overheadCycles = 0; ///< what measuring cost
    std::uint64_t lastPutOff = 0; ///< number of the last time that the start stamp was put off
};

/// A row of a report.
struct MeasuredMethod
{
    std::uint64_t thread; ///< the system's number
    MethodStatistics statistics;
};

/// The methods of one thread by id; their addresses stay until clear(). Quick for few and for many.
class MethodTable
{
public:
    MethodTable();
    [[nodiscard]] bool isEmpty() const { return m_methods.empty(); }
    template <typename Visit>
    void visit(Visit visit) const
    {
        for (const OwnLine &line : m_methods)
            visit(line.method);
    }
    /// Null if there is none.
    [[nodiscard]] MethodStatistics *find(unsigned id) const
    {
        std::size_t place = firstPlace(id);
        while (m_places[place].method != nullptr && m_places[place].id != id)
            place = nextPlace(place);
        return m_places[place].method;
    }
    /// A new one; there must be none with that id.
    MethodStatistics &add(unsigned id);
    void clear();

private:
    struct alignas(64) OwnLine // cache lines that no other thread writes
    {
        MethodStatistics method;
    };
    struct Place
    {
        unsigned id = 0;
        MethodStatistics *method = nullptr;
    };
    [[nodiscard]] std::size_t firstPlace(unsigned id) const
    {
        constexpr unsigned goldenRatio = 0x9E3779B1U;
        return (id * goldenRatio) >> (32 - m_bits);
    }
    [[nodiscard]] std::size_t nextPlace(std::size_t place) const
    {
        return (place + 1) & (m_places.size() - 1);
    }
    void resize(unsigned bits);

    unsigned m_bits = 0;
    PlainVector<Place> m_places; // 2 to the power of m_bits, at most half of them used
    std::deque<OwnLine, PlainMemory<OwnLine>> m_methods;
};

/// What was wrong with the order of starts and ends, to be told when no lock is held any more.
struct PairingFaults
{
    bool tooManyStarts = false;
    bool tooManyEnds = false;
    bool unknownMethod = false;

    [[nodiscard]] bool any() const { return tooManyStarts || tooManyEnds || unknownMethod; }
};

struct MethodPosition
{
    unsigned id;
    const char *file;
    int line;
    const char *name;
};

/// The methods of a thread and those of them that are open. May be used while static and thread_local objects
/// are destroyed.
class alignas(64) ThreadRecord
{
public:
    /// The calling thread's record; null if it has not started a method.
    [[nodiscard]] static ThreadRecord *current();
    /// The same, made if need be. Throws std::bad_alloc.
    [[nodiscard]] static ThreadRecord &ofThisThread();

    [[nodiscard]] BriefLock &lock() ZORVAN_RETURN_CAPABILITY(m_lock) { return m_lock; }

    /// \a stamp: the counter when the start was asked for. Throws std::bad_alloc: it is not measured then.
    PairingFaults start(const MethodPosition &method, std::uint64_t stamp) ZORVAN_REQUIRES(m_lock);
    PairingFaults end(unsigned id, std::uint64_t stamp) ZORVAN_REQUIRES(m_lock);
    /// Null if there is none with that id.
    [[nodiscard]] const MethodStatistics *find(unsigned id) const ZORVAN_REQUIRES(m_lock);

    void setThread(std::uint64_t number) ZORVAN_REQUIRES(m_lock) { m_thread = number; }
    void forgetOpenMethods() ZORVAN_REQUIRES(m_lock) { m_depth = 0; }
    void clear() ZORVAN_REQUIRES(m_lock);
    void appendTo(PlainVector<MeasuredMethod> &methods) const ZORVAN_REQUIRES(m_lock);

private:
    static constexpr int maximumDepth = 99;

    std::int64_t measureOneself(const char *methodName, std::uint64_t stamp, PairingFaults &faults)
        ZORVAN_REQUIRES(m_lock);
    MethodStatistics &enter(const MethodPosition &method, PairingFaults &faults) ZORVAN_REQUIRES(m_lock);
    void leave(PairingFaults &faults) ZORVAN_REQUIRES(m_lock);
    void putOffOpenMethods(std::int64_t cycles) ZORVAN_REQUIRES(m_lock);
    MethodStatistics &added(const MethodPosition &method) ZORVAN_REQUIRES(m_lock);

    BriefLock m_lock;
    int m_depth ZORVAN_GUARDED_BY(m_lock) = 0;
    std::uint64_t m_thread ZORVAN_GUARDED_BY(m_lock) = 0;
    std::uint64_t m_lastPutOff ZORVAN_GUARDED_BY(m_lock) = 0;
    MethodTable m_methods ZORVAN_GUARDED_BY(m_lock);
    // By depth. The first place serves the start that exceeds the maximum.
    std::array<MethodStatistics *, maximumDepth + 1> m_open ZORVAN_GUARDED_BY(m_lock) = {};
};

namespace detail {
extern ZORVAN_THREAD_WORD ThreadRecord *s_threadRecord;
[[nodiscard]] ThreadRecord &registerThisThread();
} // namespace detail

inline ThreadRecord *ThreadRecord::current()
{
    return detail::s_threadRecord;
}

inline ThreadRecord &ThreadRecord::ofThisThread()
{
    ThreadRecord *const record = detail::s_threadRecord;
    return record == nullptr ? detail::registerThisThread() : *record;
}

/// All methods of all threads, by thread and id. Throws std::bad_alloc.
[[nodiscard]] PlainVector<MeasuredMethod> measuredMethods();
void clearThreadRecords();
/// For the child of a fork(): the forking thread goes on under another number, and what the others were just
/// writing is given up.
void adoptRecordsInChild();

} // namespace Zorvan::analysis
