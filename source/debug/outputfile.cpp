#include "debug/outputfile.h"

#include <zorvan/debug.h>

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

#include <optional>

namespace Zorvan {

namespace {

constexpr qint64 fallbackMaximum = 10'000'000;
constexpr int fallbackMaximumMegabytes = 9; // as the message has always said
constexpr qint64 bytesPerMegabyte = 1'048'576;

/// Half of what the caller may still write to the disk that holds \a fileName, if the system knows.
std::optional<qint64> halfOfFreeSpace(const QString &fileName)
{
    QDir folder = QFileInfo(fileName).absoluteDir();
    while (!folder.exists() && !folder.isRoot())
        folder.setPath(QFileInfo(folder.path()).path());
    const QStorageInfo disk(folder);
    if (!disk.isValid() || disk.bytesTotal() <= 0)
        return std::nullopt;
    return disk.bytesAvailable() / 2;
}

} // namespace

OutputFile &outputFile()
{
    static auto *file = new OutputFile; // never destroyed: static objects of the host may print
    return *file;
}

void OutputFile::setName(const QString &name)
{
    const platform::Locked guard(m_lock);
    m_name = name;
    m_path = name.toStdString(); // UTF-8
}

QString OutputFile::name() const
{
    const platform::Locked guard(m_lock);
    return m_name;
}

void OutputFile::setMaximumSize(qint64 bytes)
{
    const platform::Locked guard(m_lock);
    m_maximum = bytes;
    m_effectiveMaximum = notDerived;
    m_nothingPending.store(false, std::memory_order_relaxed);
}

qint64 OutputFile::maximumSize() const
{
    const platform::Locked guard(m_lock);
    return m_maximum;
}

void OutputFile::beginRun()
{
    const platform::Locked guard(m_lock);
    m_firstWritePending = true;
    m_nothingPending.store(false, std::memory_order_relaxed);
}

void OutputFile::append(std::string &line, Writing writing)
{
    if (writing == Writing::Off && m_nothingPending.load(std::memory_order_relaxed))
        return;
    const platform::Locked guard(m_lock);
    const bool beginsRun = m_firstWritePending;
    m_firstWritePending = false;
    if (beginsRun && writing == Writing::On)
        platform::discardFile(m_path.c_str());
    if (m_effectiveMaximum == notDerived)
        deriveMaximum();
    m_nothingPending.store(true, std::memory_order_relaxed);
    if (writing == Writing::Off)
        return;
    line += "\r\n";
    write(line);
    line.resize(line.size() - 2);
}

void OutputFile::appendSaved(const std::string &lines)
{
    const platform::Locked guard(m_lock);
    platform::AppendFile(m_path.c_str()).write(lines);
}

void OutputFile::deriveMaximum()
{
    m_effectiveMaximum = m_maximum;
    if (m_effectiveMaximum <= 0) {
        // Asking for the disk goes through Qt, which may print: the answer until then keeps that from coming
        // back.
        m_effectiveMaximum = fallbackMaximum;
        const std::optional<qint64> half = halfOfFreeSpace(m_name);
        m_effectiveMaximum = half.value_or(0);
        if (half)
            gyxLog(nullptr, 0, "Debug::println() found maximum allowed output file size of %d MBytes\n",
                   static_cast<int>(*half / bytesPerMegabyte));
    }
    if (m_effectiveMaximum <= 0) {
        m_effectiveMaximum = fallbackMaximum;
        gyxLog(nullptr, 0, "Debug::println() fixed maximum allowed output file size to %d MBytes\n",
               fallbackMaximumMegabytes);
    }
}

void OutputFile::write(const std::string &bytes)
{
    {
        platform::AppendFile file(m_path.c_str());
        if (!file.isOpen())
            return;
        const std::int64_t size = file.size();
        if (size <= m_effectiveMaximum) {
            writeLine(file, size, bytes);
            return;
        }
    }
    platform::discardFile(m_path.c_str());
    platform::AppendFile file(m_path.c_str());
    writeLine(file, 0, bytes);
}

/// A full disk may take a part of a line: the next one does not go on where it stopped.
void OutputFile::writeLine(platform::AppendFile &file, std::int64_t size, const std::string &bytes)
{
    if (m_endsTorn && size > 0 && !file.write("\r\n"))
        return;
    m_endsTorn = !file.write(bytes) && file.size() > size;
}

} // namespace Zorvan
