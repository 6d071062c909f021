// From one call of println() to its lines in the sinks.

#include "debug/displayflags.h"
#include "debug/lineheader.h"
#include "debug/moduletable.h"
#include "debug/outputfile.h"
#include "debug/outputfilter.h"
#include "debug/printing.h"
#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"
#include "host/normalizedname.h"
#include "platform/errornumber.h"
#include "platform/standardoutput.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace Zorvan {

namespace {

constexpr std::size_t receiverCapacity = 2048; // with the closing NUL
constexpr std::size_t fileNameCapacity = 2048;
constexpr int deepestCallback = 8;
constexpr std::size_t largestSpareBuffer = 65536;

/// What the output path keeps between lines. Guarded by the module table's lock.
struct OutputPath
{
    OutputFilter filter;
    std::string spareLine; ///< the buffer of the last line, so that most lines allocate nothing
    QString spareText; ///< the same for the line tap
    int callbackDepth = 0; ///< host callbacks running inside each other
};

OutputPath &outputPath() ZORVAN_REQUIRES(moduleTable().lock())
{
    static auto *path = new OutputPath; // never destroyed: static objects of the host may print
    return *path;
}

/// A line under construction. Lines that a callback prints meanwhile find no spare buffer and make their own.
class LineBuffer
{
public:
    explicit LineBuffer(OutputPath &path)
        : m_path(path)
        , m_bytes(std::move(path.spareLine))
    {
        m_bytes.clear();
    }
    ~LineBuffer()
    {
        if (m_bytes.capacity() <= largestSpareBuffer)
            m_path.spareLine = std::move(m_bytes);
    }
    LineBuffer(const LineBuffer &) = delete;
    LineBuffer &operator=(const LineBuffer &) = delete;

    [[nodiscard]] std::string &bytes() { return m_bytes; } // Latin-1

private:
    OutputPath &m_path;
    std::string m_bytes;
};

/// Counts a host callback for its duration.
class CallbackScope
{
public:
    explicit CallbackScope(OutputPath &path)
        : m_path(path)
    {
        ++m_path.callbackDepth;
    }
    ~CallbackScope() { --m_path.callbackDepth; }
    CallbackScope(const CallbackScope &) = delete;
    CallbackScope &operator=(const CallbackScope &) = delete;

private:
    OutputPath &m_path;
};

/// One byte for each UTF-16 unit, '?' for what Latin-1 does not have.
void appendLatin1(std::string &bytes, QStringView text)
{
    const std::size_t start = bytes.size();
    bytes.resize(start + static_cast<std::size_t>(text.size()));
    const char16_t *const from = text.utf16();
    char *const to = bytes.data() + start;
    for (qsizetype i = 0; i < text.size(); ++i)
        to[i] = from[i] < 256 ? static_cast<char>(from[i]) : '?';
}

/// There is no table: the text is the format of a message in the system log.
void logText(QStringView text, const char *file, int line)
{
    std::string format;
    appendLatin1(format, text);
    format += '\n';
    gyxLog(nullptr, file, line, format.c_str(), nullptr);
}

void callReceiver(OutputReceiver receiver, moduleId module, int cls, int level, const std::string &line)
{
    char text[receiverCapacity];
    const std::size_t length = std::min(line.size(), receiverCapacity - 1);
    std::memcpy(text, line.data(), length);
    text[length] = '\0';
    hookData data{module, level, cls, text};
    receiver(&data);
}

/// The tap sees the line as Latin-1 has left it. The text of the last call is used again unless the host kept
/// it.
void callLineTap(OutputPath &path, IUtilityInterface &tap, const std::string &line)
{
    QString text = std::move(path.spareText);
    text = QLatin1String(line.data(), static_cast<int>(line.size()));
    tap.outputLine(text);
    if (line.size() <= largestSpareBuffer)
        path.spareText = std::move(text);
}

void writeStandardOutput(std::string &line)
{
    line += '\n';
    platform::writeStandardOutput(line);
    line.resize(line.size() - 1);
}

OutputReceiver receiverOf(moduleId id) ZORVAN_REQUIRES(moduleTable().lock())
{
    const Module *const module = moduleTable().find(id);
    return module ? module->receiver : nullptr;
}

/// The sinks behind the filters: the file always; then the module's receiver, or the line tap and the queue
/// in the GUI thread, or the standard output in its place.
void deliver(OutputPath &path, moduleId module, int cls, int level, std::string &line)
    ZORVAN_REQUIRES(moduleTable().lock())
{
    const bool fileOn = displayflags::has(displayflags::word(), displayflags::fileOutput);
    outputFile().append(line, fileOn ? OutputFile::Writing::On : OutputFile::Writing::Off);
    if (path.callbackDepth >= deepestCallback)
        return; // a callback that prints its own lines without end
    const CallbackScope scope(path);
    if (const OutputReceiver receiver = receiverOf(module)) {
        callReceiver(receiver, module, cls, level, line);
        return;
    }
    if (IUtilityInterface *const tap = host::utilityHandler())
        callLineTap(path, *tap, line);
    if (!guibridge::handOver(line))
        writeStandardOutput(line);
}

/// Header, text, filters, sinks.
void printOneLine(moduleId module, int cls, QStringView text, int level) ZORVAN_REQUIRES(moduleTable().lock())
{
    OutputPath &path = outputPath();
    LineBuffer line(path);
    const unsigned flags = displayflags::word();
    {
        const CallbackScope scope(path);
        const bool tooDeep = path.callbackDepth > deepestCallback;
        appendLineHeader(line.bytes(), module, cls, level, flags,
                         tooDeep ? HostCalls::Forbidden : HostCalls::Allowed);
    }
    if (path.filter.isActive()) {
        const QString whole = fromLatin1(line.bytes()) + text.toString();
        if (!path.filter.passes(whole, displayflags::has(flags, displayflags::moduleName)))
            return;
    }
    appendLatin1(line.bytes(), text);
    deliver(path, module, cls, level, line.bytes());
}

/// Prints a message line by line. What it returns could not be printed: the library has stopped, perhaps in
/// the middle of the message.
std::optional<QStringView> printMessage(moduleId module, int cls, QStringView text, int level)
{
    const platform::ErrorNumberKept kept;
    const TableLock guard; // the lines of a message stay together
    while (ModuleTable::exists()) {
        const qsizetype end = text.indexOf(u'\n');
        if (end < 0) {
            printOneLine(module, cls, text, level);
            return std::nullopt;
        }
        printOneLine(module, cls, text.left(end), level);
        text = text.mid(end + 1);
        if (text.isEmpty())
            return std::nullopt; // a line feed at the end begins no line
    }
    return text;
}

} // namespace

// The same parameters in the same places as println() has: the call is a jump.
[[gnu::noinline]] void printUnlessRefused(moduleId module, int cls, const QString &text, int level,
                                          int /*reserved*/, const char *file, int line)
{
    if (!ModuleTable::exists()) {
        logText(text, file, line);
        return;
    }
    if (!Debug::isActive(module, level, cls))
        return;
    // A callback may change the caller's text while its lines are printed.
    const QString kept = text; // NOLINT(performance-unnecessary-copy-initialization)
    if (const std::optional<QStringView> rest = printMessage(module, cls, kept, level))
        logText(*rest, file, line);
}

void Debug::println(moduleId module, int cls, const QString &text, int level, int reserved, const char *file,
                    int line)
{
    if (ModuleTable::quickSwitches().isActive(module, level, cls, [] { return true; }))
        printUnlessRefused(module, cls, text, level, reserved, file, line);
}

void Debug::printFormattedString(moduleId module, int cls, int level, const QString &text)
{
    const TableLock guard;
    OutputPath &path = outputPath();
    const bool moduleNameShown = displayflags::has(displayflags::word(), displayflags::moduleName);
    if (path.filter.isActive() && !path.filter.passes(text, moduleNameShown))
        return;
    LineBuffer line(path);
    appendLatin1(line.bytes(), text);
    deliver(path, module, cls, level, line.bytes());
}

void Debug::clear()
{
    if (displayflags::has(displayflags::word(), displayflags::allowProgrammaticClear)
        && guibridge::queueExists())
        guibridge::clear();
}

namespace {

/// Not as a line of output: none passes.
void reportRefused(const char *filter, const QString &text)
{
    gyxLog("source/debug", __LINE__, "++++ %s filter of %d characters costs too much, no line passes\n",
           filter, static_cast<int>(text.size()));
}

} // namespace

void Debug::setOutputFilter(const QString &pattern)
{
    const TableLock guard;
    if (!outputPath().filter.setPattern(pattern))
        reportRefused("output", pattern);
}

QString Debug::getOutputFilter()
{
    const TableLock guard;
    return outputPath().filter.pattern();
}

void Debug::setLevelFilter(const QString &entries)
{
    const TableLock guard;
    if (!outputPath().filter.setEntries(entries))
        reportRefused("level", entries);
}

QString Debug::getLevelFilter()
{
    const TableLock guard;
    return outputPath().filter.entries();
}

void Debug::setOutputFileName(const char *name)
{
    const TableLock guard;
    outputFile().setName(QString::fromLatin1(name));
}

namespace {

/// The name that the calling thread was told last. Not in place: a library that is loaded at run time has
/// room for about a kilobyte of such variables, together with all others.
thread_local char *t_fileName = nullptr;

/// Frees it with the thread. What asks later, such as static objects, gets a new one.
struct FileNameEnd
{
    FileNameEnd() = default;
    FileNameEnd(const FileNameEnd &) = delete;
    FileNameEnd &operator=(const FileNameEnd &) = delete;
    ~FileNameEnd()
    {
        delete[] t_fileName;
        t_fileName = nullptr;
    }
};

} // namespace

const char *Debug::getOutputFileName()
{
    thread_local const FileNameEnd end;
    if (t_fileName == nullptr)
        t_fileName = new char[fileNameCapacity];
    const TableLock guard;
    const QByteArray name = outputFile().name().toLatin1().left(fileNameCapacity - 1);
    std::memcpy(t_fileName, name.constData(), static_cast<std::size_t>(name.size()) + 1);
    return t_fileName;
}

void Debug::setMaxOutputFileSize(qint64 bytes)
{
    const TableLock guard;
    outputFile().setMaximumSize(bytes);
}

qint64 Debug::getMaxOutputFileSize()
{
    const TableLock guard;
    return outputFile().maximumSize();
}

} // namespace Zorvan
