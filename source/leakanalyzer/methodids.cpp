#include "leakanalyzer/methodids.h"

#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/insideanalyzer.h"
#include "leakanalyzer/methodtiming.h"
#include "leakanalyzer/plainmemory.h"

#include <cstring>

namespace Zorvan::analysis {

namespace {

constexpr unsigned firstTableBits = 8;
constexpr int disabledIndex = -1;
const char *const disabledText = "<disabled>";
const char s_noText = '\0'; // its address stands for null, which marks free places

struct Source
{
    std::atomic<const char *> text{nullptr}; // stored last: who sees it sees the index, too
    int index = 0;
};

/// Hash table that is read without a lock, also while a source is added. Sources are never removed.
class SourceTable
{
public:
    /// \a outgrown may still be read by others, and is kept.
    SourceTable(unsigned bits, const SourceTable *outgrown)
        : m_outgrown(outgrown)
        , m_bits(bits)
        , m_sources(std::size_t{1} << bits)
    {
        if (m_outgrown == nullptr)
            return;
        for (const Source &source : m_outgrown->m_sources) {
            if (const char *const text = source.text.load(std::memory_order_relaxed))
                add(text, source.index);
        }
    }

    [[nodiscard]] unsigned bits() const { return m_bits; }
    [[nodiscard]] bool isFull() const { return m_used * 2 >= m_sources.size(); }

    [[nodiscard]] const Source *find(const char *text) const
    {
        for (std::size_t place = firstPlace(text);; place = nextPlace(place)) {
            const char *const found = m_sources[place].text.load(std::memory_order_acquire);
            if (found == text)
                return &m_sources[place];
            if (found == nullptr)
                return nullptr;
        }
    }

    void add(const char *text, int index)
    {
        std::size_t place = firstPlace(text);
        while (m_sources[place].text.load(std::memory_order_relaxed) != nullptr)
            place = nextPlace(place);
        m_sources[place].index = index;
        m_sources[place].text.store(text, std::memory_order_release);
        ++m_used;
    }

private:
    [[nodiscard]] std::size_t firstPlace(const char *text) const
    {
        constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15;
        return (reinterpret_cast<std::uintptr_t>(text) * goldenRatio) >> (64 - m_bits);
    }
    [[nodiscard]] std::size_t nextPlace(std::size_t place) const
    {
        return (place + 1) & (m_sources.size() - 1);
    }

    const SourceTable *const m_outgrown;
    const unsigned m_bits;
    std::size_t m_used = 0; // only whoever adds looks at it
    PlainVector<Source> m_sources; // never more than half full
};

std::atomic<SourceTable *> s_sources{nullptr}; // replaced with the analyzer lock held; never destroyed
int s_nextIndex ZORVAN_GUARDED_BY(analyzerLock()) = 0;

const Source *knownSource(const char *text)
{
    const SourceTable *const sources = s_sources.load(std::memory_order_acquire);
    return sources == nullptr ? nullptr : sources->find(text);
}

SourceTable &tableWithRoom() ZORVAN_REQUIRES(analyzerLock())
{
    SourceTable *sources = s_sources.load(std::memory_order_relaxed);
    if (sources == nullptr || sources->isFull()) {
        const unsigned bits = sources == nullptr ? firstTableBits : sources->bits() + 1;
        sources = makeLasting<SourceTable>(bits, sources);
        s_sources.store(sources, std::memory_order_release);
    }
    return *sources;
}

int addedSource(const char *text)
{
    const platform::Locked guard(analyzerLock());
    if (const Source *const source = knownSource(text)) // another thread was faster
        return source->index;
    SourceTable &sources = tableWithRoom();
    const int index = std::strcmp(text, disabledText) == 0 ? disabledIndex : s_nextIndex++;
    sources.add(text, index);
    return index;
}

} // namespace

int sourceIndex(const char *text)
{
    const char *const key = text == nullptr ? &s_noText : text;
    const Source *const source = knownSource(key);
    return source == nullptr ? addedSource(key) : source->index;
}

int makeMethodId(const char *file, int line)
{
    if (!isTimeTracked() || InsideAnalyzer::isActive())
        return -1;
    try {
        return static_cast<int>(static_cast<unsigned>(line)
                                + static_cast<unsigned>(sourceIndex(file)) * 65536U);
    } catch (const std::bad_alloc &) {
        return -1;
    }
}

} // namespace Zorvan::analysis
