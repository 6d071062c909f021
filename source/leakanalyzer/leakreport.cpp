#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/leakrecords.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/sourcenames.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <tuple>

namespace Zorvan::analysis {

namespace {

/// A source position and a size of blocks; in the order of the report.
struct LeakGroup
{
    const char *source;
    int line;
    std::size_t size;

    [[nodiscard]] auto key() const
    {
        return std::tuple(reinterpret_cast<std::uintptr_t>(source), line, size);
    }
};

struct Freed
{
    void operator()(void *block) const { std::free(block); }
};

/// What the report is about, as it was at one moment.
struct LeakSnapshot
{
    std::unique_ptr<LeakGroup, Freed> groups; // one for each block; null: no memory. Not from operator new.
    std::size_t blocks = 0;
    LeakStatistics statistics;

    [[nodiscard]] LeakGroup *begin() const { return groups.get(); }
    [[nodiscard]] LeakGroup *end() const { return groups == nullptr ? nullptr : groups.get() + blocks; }
};

LeakSnapshot takeSnapshot()
{
    LeakSnapshot snapshot;
    const AnalyzerTurn turn;
    LeakRecords &records = leakRecords();
    records.workOffReleases();
    snapshot.statistics = records.statistics();
    snapshot.blocks = records.blocks().count();
    snapshot.groups.reset(static_cast<LeakGroup *>(std::malloc(snapshot.blocks * sizeof(LeakGroup))));
    LeakGroup *next = snapshot.begin();
    if (next != nullptr)
        records.blocks().forEach([&](const LiveBlock &block) {
            *next++ = {block.source, block.line, block.size};
        });
    return snapshot;
}

void emitGroups(const LeakSnapshot &snapshot, const char *sourceFilter)
{
    std::sort(snapshot.begin(), snapshot.end(),
              [](const LeakGroup &a, const LeakGroup &b) { return a.key() < b.key(); });
    for (const LeakGroup *group = snapshot.begin(); group != snapshot.end();) {
        const LeakGroup *const next =
            std::find_if(group, static_cast<const LeakGroup *>(snapshot.end()),
                         [group](const LeakGroup &other) { return other.key() != group->key(); });
        if (passesFilter(group->source, sourceFilter)) {
            emitText(group->source, group->line,
                     "++++++++++++++++++++++++++++++ memory leak with %d bytes occurred %d times\n",
                     static_cast<int>(group->size), static_cast<int>(next - group));
        }
        group = next;
    }
}

void emitStatistics(const LeakStatistics &statistics)
{
    emitText(leakAnalyzerSource, __LINE__, "******************************  avg memory usage was %d bytes\n",
             statistics.averageBytes);
    emitText(leakAnalyzerSource, __LINE__, "******************************  avg memory usage was %d blocks\n",
             statistics.averageBlocks);
    emitText(leakAnalyzerSource, __LINE__, "****************************** peak memory usage was %d bytes\n",
             statistics.peakBytes);
    emitText(leakAnalyzerSource, __LINE__, "****************************** peak memory usage was %d blocks\n",
             statistics.peakBlocks);
    emitText(leakAnalyzerSource, __LINE__,
             "****************************** peak alloc fifo usage was %d requests\n",
             statistics.peakRequests);
    emitText(leakAnalyzerSource, __LINE__,
             "****************************** peak del fifo usage was %d requests\n", statistics.peakReleases);
}

} // namespace

void dumpLeaks(const char *sourceFilter)
{
    if (!isRunning())
        return;
    const LeakSnapshot snapshot = takeSnapshot();
    if (snapshot.blocks == 0)
        emitText(leakAnalyzerSource, __LINE__,
                 "------------------------------ no memory leaks in tracked code found\n");
    else if (snapshot.groups == nullptr)
        emitText(leakAnalyzerSource, __LINE__,
                 "------------------------------ not enough memory to list the %d blocks that are alive\n",
                 static_cast<int>(snapshot.blocks));
    else
        emitGroups(snapshot, sourceFilter);
    emitStatistics(snapshot.statistics);
}

} // namespace Zorvan::analysis
