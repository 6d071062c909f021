// The lines of the debug window: storing, searching, marking and copying a million of them, and what they
// take in memory.

#include "debugwindow/protocolwidget.h"
#include "debugwindow/rowcopy.h"
#include "measure.h"
#include "platform/memory.h"
#include "table.h"

#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>

#include <algorithm>
#include <array>
#include <cstring>
#include <emmintrin.h>
#include <functional>
#include <map>
#include <optional>

using namespace bench;
using Zorvan::CFilteredTextBuffer;
using Zorvan::TextPattern;

namespace {

constexpr int lines = 1'000'000; // of 80 to 120 bytes
constexpr int batchLines = 1000;
constexpr int batches = 100; // different ones
constexpr int rounds = 5;
constexpr const char *rareText = "overtemperature of 4711"; // in one line, near the end

std::string makeLine(int number)
{
    if (number == lines - 100)
        return std::string(60, '-') + rareText;
    const char *const words[] = {"frequency set to", "level corrected by",
                                 "waiting for the settled signal of", "calibration table read from",
                                 "trigger armed on channel"};
    const unsigned random = static_cast<unsigned>(number) * 2654435761U >> 8U;
    std::string line = "12:34:56.789 <    Info>: <debug message>, SigGen, ";
    line += words[random % 5];
    line += ' ' + std::to_string(random) + (number % 3 == 0 ? " Hz, " : " dBm, ");
    line.resize(80 + random / 5 % 41, static_cast<char>('a' + random % 26));
    return line;
}

/// As they come from the queue: a thousand lines with line feeds between them.
struct Batches
{
    Batches()
    {
        for (int batch = 0; batch < batches; ++batch) {
            std::string text = makeLine(batch * batchLines);
            for (int i = 1; i < batchLines; ++i)
                text += '\n' + makeLine(batch * batchLines + i);
            strings.push_back(QString::fromLatin1(text.data(), static_cast<int>(text.size())));
            bytes.push_back(std::move(text));
        }
    }
    std::vector<QString> strings;
    std::vector<std::string> bytes;
};

/// The least that has to be stored, and the way to it that a program would take first.
struct PackedBlock
{
    void append(const QString &batch)
    {
        for (const QString &line : batch.split(QLatin1Char('\n'))) {
            const QByteArray bytes = line.toLatin1();
            starts.push_back(static_cast<std::uint32_t>(text.size()));
            text.insert(text.end(), bytes.constData(), bytes.constData() + bytes.size() + 1);
        }
    }
    void append(const std::string &line)
    {
        starts.push_back(static_cast<std::uint32_t>(text.size()));
        text.insert(text.end(), line.c_str(), line.c_str() + line.size() + 1);
    }
    [[nodiscard]] std::string_view line(std::size_t i) const
    {
        const std::size_t end = i + 1 < starts.size() ? starts[i + 1] : text.size();
        return {text.data() + starts[i], end - starts[i] - 1};
    }
    std::vector<char> text;
    std::vector<std::uint32_t> starts;
};

struct Way
{
    std::string name;
    std::function<void()> body;
    std::vector<double> times = {}; ///< ms
};

/// They take turns.
void takeTimes(int times, std::vector<Way> &ways)
{
    for (int round = 0; round < times; ++round) {
        for (Way &way : ways) {
            const double start = processorTime();
            way.body();
            way.times.push_back((processorTime() - start) * 1e-6);
        }
    }
}

void title(const std::string &text, const std::string &unit)
{
    say("\n### " + text + "\n\n| | " + unit + " | wanted | |\n|---|--:|---|---|\n");
}

void row(const std::string &what, double figure, int decimals, std::optional<double> wanted = {})
{
    say("| " + what + " | " + number(figure, decimals) + " | "
        + (wanted ? "<= " + number(*wanted, decimals) : "") + " | "
        + (!wanted                 ? ""
               : figure <= *wanted ? "OK"
                                   : "ABOVE")
        + " |\n");
}

template <typename Batch, typename Append>
void appendAll(const std::vector<Batch> &source, Append append)
{
    for (int i = 0; i < lines / batchLines; ++i)
        append(source[static_cast<std::size_t>(i % batches)]);
}

double timePlainTextEdit(const Batches &source)
{
    QPlainTextEdit edit;
    const double start = processorTime();
    for (const QString &text : source.strings)
        edit.appendPlainText(text);
    return (processorTime() - start) / (batches * batchLines);
}

/// A view that is not shown: it stores the lines and sees to the scroll bar and the memory limit.
void measureAppend(const Batches &source)
{
    std::optional<PackedBlock> packed;
    std::optional<Zorvan::QProtocolWidget> growing;
    Zorvan::QProtocolWidget ring;
    ring.buffer().setMaximumLineCount(50'000);
    const auto renew = [&growing] {
        growing.emplace();
        growing->buffer().setMaximumLineCount(0);
    };
    std::vector<Way> ways{
        {"split, toLatin1, packed block",
         [&] {
             packed.emplace();
             appendAll(source.strings, [&](const QString &text) { packed->append(text); });
         }},
        {"growing, from the batch QString",
         [&] {
             renew();
             appendAll(source.strings, [&](const QString &text) { growing->appendText(text); });
         }},
        {"growing, from Latin-1 bytes",
         [&] {
             renew();
             appendAll(source.bytes, [&](const std::string &text) { growing->appendText(text); });
         }},
        {"full ring, from the batch QString",
         [&] { appendAll(source.strings, [&](const QString &text) { ring.appendText(text); }); }},
        {"full ring, from Latin-1 bytes",
         [&] { appendAll(source.bytes, [&](const std::string &text) { ring.appendText(text); }); }},
    };
    takeTimes(rounds, ways);
    title("Appending a line, in batches of 1000", "ns");
    const double nanoseconds = 1e6 / lines;
    const double half = 0.55 * nanoseconds * median(ways[0].times);
    const std::optional<double> wanted[] = {{}, half, half, 90, 90};
    for (std::size_t i = 0; i < ways.size(); ++i)
        row(ways[i].name, nanoseconds * median(ways[i].times), 0, wanted[i]);
    row("QPlainTextEdit::appendPlainText(), 100,000 lines", timePlainTextEdit(source), 0);
}

void measureMemory(const Batches &source)
{
    title("Resident bytes for a line beyond its text", "bytes");
    double textBytes = 0;
    for (int i = 0; i < lines; ++i)
        textBytes += static_cast<double>(makeLine(i % (batches * batchLines)).size());
    const double step = static_cast<double>(Zorvan::platform::availablePhysicalMemory()) / 1024;
    const auto measure = [&](const std::string &what, auto append, std::optional<double> wanted) {
        const double before = residentBytes();
        append();
        row(what, (residentBytes() - before - textBytes) / lines, 1, wanted);
    };
    PackedBlock packed;
    measure("packed block, reserved",
            [&] {
                packed.text.reserve(static_cast<std::size_t>(textBytes) + lines);
                packed.starts.reserve(lines);
                appendAll(source.strings, [&](const QString &text) { packed.append(text); });
            },
            {});
    Zorvan::QProtocolWidget growing;
    growing.buffer().setMaximumLineCount(0);
    const auto append = [&source](Zorvan::QProtocolWidget &view) {
        return [&] { appendAll(source.strings, [&](const QString &text) { view.appendText(text); }); };
    };
    measure("growing; a growth step is " + number(step / lines, 1), append(growing), 5.5 + step / lines);
    Zorvan::QProtocolWidget ring;
    ring.buffer().setMaximumLineCount(50'000);
    append(ring)();
    const double full = residentBytes();
    append(ring)();
    append(ring)();
    row("full ring, two million lines later, in all", residentBytes() - full, 0, 65536);
}

void measureMemoryCheck()
{
    const auto wholeFile = [] {
        QFile file(QStringLiteral("/proc/meminfo"));
        static_cast<void>(file.open(QIODevice::ReadOnly) && !file.readAll().isEmpty());
    };
    constexpr int checks = 2000;
    const auto often = [](auto check) {
        return [check] {
            for (int i = 0; i < checks; ++i)
                check();
        };
    };
    std::vector<Way> ways{
        {"reading /proc/meminfo by QFile", often(wholeFile)},
        {"memory check", often([] { static_cast<void>(Zorvan::platform::availablePhysicalMemory()); })}};
    takeTimes(rounds, ways);
    title("Available memory, asked once for 500 lines", "us");
    for (const Way &way : ways)
        row(way.name, median(way.times) * 1000 / checks, 2);
    row("memory check, ns for a line", median(ways[1].times) * 1e6 / checks / 500, 1);
}

void fill(CFilteredTextBuffer &buffer, PackedBlock &packed)
{
    buffer.sizeGrowthSteps(Zorvan::platform::availablePhysicalMemory());
    buffer.setMaximumLineCount(0);
    for (int i = 0; i < lines; ++i) {
        const std::string line = makeLine(i);
        buffer.appendLine(line);
        packed.append(line);
    }
}

/// Only where the first and the last byte are right does it compare.
bool hasBetweenEnds(std::string_view line, std::string_view text)
{
    const __m128i first = _mm_set1_epi8(text.front());
    const __m128i last = _mm_set1_epi8(text.back());
    const auto at = [&line](std::size_t i) {
        __m128i bytes;
        std::memcpy(&bytes, line.data() + i, sizeof bytes);
        return bytes;
    };
    const std::size_t end = line.size() + 1 - text.size();
    for (std::size_t i = 0; i < end; i += 16) {
        const std::size_t place = std::min(i, end - 16);
        auto both = static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(
            _mm_cmpeq_epi8(at(place), first), _mm_cmpeq_epi8(at(place + text.size() - 1), last))));
        for (; both != 0; both &= both - 1) {
            const std::size_t candidate = place + static_cast<unsigned>(__builtin_ctz(both));
            if (std::memcmp(line.data() + candidate, text.data(), text.size()) == 0)
                return true;
        }
    }
    return false;
}

/// Visits every line that has the text.
std::vector<Way> waysToFind(const CFilteredTextBuffer &buffer, const PackedBlock &packed,
                            const std::string &text, std::array<long, 5> &hits)
{
    const QString string = QString::fromStdString(text);
    const auto each = [&packed, &hits](std::size_t way, auto hasText) {
        hits[way] = 0;
        for (std::size_t i = 0; i < packed.starts.size(); ++i)
            hits[way] += hasText(packed.line(i)) ? 1 : 0;
    };
    const auto inBlock = [&packed, &hits, text] {
        hits[1] = 0;
        std::size_t line = 0;
        for (const char *place = packed.text.data(); line < packed.starts.size(); ++hits[1]) {
            place = static_cast<const char *>(
                memmem(place, packed.text.data() + packed.text.size() - place, text.data(), text.size()));
            if (place == nullptr)
                return;
            const auto next =
                std::upper_bound(packed.starts.begin(), packed.starts.end(), place - packed.text.data());
            line = static_cast<std::size_t>(next - packed.starts.begin());
            place = packed.text.data() + (next != packed.starts.end() ? *next : packed.text.size());
        }
    };
    return {
        {"QString for each line",
         [=] {
             each(0, [&](std::string_view line) {
                 return QString::fromLatin1(line.data(), static_cast<int>(line.size())).contains(string);
             });
         }},
        {"memmem over the block", inBlock},
        {"SSE2, line by line",
         [=] { each(2, [&](std::string_view line) { return hasBetweenEnds(line, text); }); }},
        {"findDown()",
         [=, &buffer, &hits] {
             hits[3] = 0;
             const TextPattern pattern(string);
             for (std::int64_t row = -1; (row = buffer.findDown(pattern, row + 1)) >= 0;)
                 ++hits[3];
         }},
        {"findUp()",
         [=, &buffer, &hits] {
             hits[4] = 0;
             const TextPattern pattern(string);
             for (std::int64_t row = lines; (row = buffer.findUp(pattern, row - 1)) >= 0;)
                 ++hits[4];
         }},
    };
}

void measureFind(const CFilteredTextBuffer &buffer, const PackedBlock &packed)
{
    std::vector<double> down;
    title("All lines with a text, by a search for each next one", "ms");
    for (const char *const text :
         {rareText, "waiting for the", "no such text", "the set", "settled e", "zz"}) {
        std::array<long, 5> hits{};
        std::vector<Way> ways = waysToFind(buffer, packed, text, hits);
        takeTimes(rounds, ways);
        for (std::size_t i = 0; i < ways.size(); ++i) {
            const std::optional<double> wanted = i < 3 ? std::optional<double>() : 40;
            row('"' + std::string(text) + "\", " + std::to_string(hits[i]) + " lines: " + ways[i].name,
                median(ways[i].times), 1, wanted);
        }
        down.push_back(median(ways[3].times));
    }
    row("findDown(), median of all texts", median(down), 1, 25);
}

void measureRebuild(CFilteredTextBuffer &buffer, const PackedBlock &packed)
{
    title("Index of the marked lines", "ms");
    for (const int markers : {1, 4, 8, 64}) {
        buffer.setMarkedOutputOnly(false);
        buffer.clearPatterns();
        QStringList texts;
        for (int i = 0; i < markers; ++i)
            texts += i == 0 ? QLatin1String(rareText) : QStringLiteral("channel %1").arg(i * 31337 % 100000);
        for (const QString &text : texts)
            buffer.addPattern(text);
        std::vector<Way> ways{{"QString for each line",
                               [&] {
                                   std::vector<std::uint32_t> index;
                                   for (std::size_t i = 0; i < packed.starts.size(); ++i) {
                                       const QString line = QString::fromLatin1(
                                           packed.line(i).data(), static_cast<int>(packed.line(i).size()));
                                       if (std::any_of(texts.begin(), texts.end(), [&](const QString &text) {
                                               return line.contains(text);
                                           }))
                                           index.push_back(static_cast<std::uint32_t>(i));
                                   }
                               }},
                              {"setMarkedOutputOnly()", [&] {
                                   buffer.setMarkedOutputOnly(false);
                                   buffer.setMarkedOutputOnly(true);
                               }}};
        takeTimes(markers > 8 ? 1 : rounds, ways);
        const std::map<int, double> wanted{{1, 25}, {4, 80}, {8, 130}};
        const auto limit = wanted.find(markers);
        for (std::size_t i = 0; i < ways.size(); ++i)
            row(std::to_string(markers) + " markers, " + std::to_string(buffer.rowCount())
                    + " rows: " + ways[i].name,
                median(ways[i].times), 1,
                i == 1 && limit != wanted.end() ? std::optional<double>(limit->second)
                                                : std::optional<double>());
    }
    buffer.setMarkedOutputOnly(false);
    buffer.clearPatterns();
}

void measureCopy(const CFilteredTextBuffer &buffer)
{
    std::vector<Way> ways{
        {"row by row",
         [&] {
             QString text;
             for (int i = 0; i < lines; ++i) {
                 if (!text.isEmpty())
                     text += QLatin1Char('\n');
                 text += buffer.text(i);
             }
         }},
        {"copiedText()", [&] { static_cast<void>(Zorvan::copiedText(buffer, {})); }},
        {"forEachPiece(), as one",
         [&] {
             Zorvan::forEachPiece(buffer, Zorvan::mostBytesOfArray, [](const QByteArray &) { return true; });
         }},
    };
    takeTimes(rounds, ways);
    title("Copy of all lines", "ms");
    row(ways[0].name, median(ways[0].times), 1);
    row(ways[1].name, median(ways[1].times), 1, 60);
    row(ways[2].name, median(ways[2].times), 1);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    {
        const Batches source;
        measureMemory(source); // before memory that was given back could hide what it takes
        measureAppend(source);
    }
    measureMemoryCheck();
    CFilteredTextBuffer buffer;
    PackedBlock packed;
    fill(buffer, packed);
    measureFind(buffer, packed);
    measureRebuild(buffer, packed);
    measureCopy(buffer);
}
