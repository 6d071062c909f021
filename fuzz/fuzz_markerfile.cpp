// Marker files that users load, and what is found with such a marker.

#include "debugwindow/filteredtextbuffer.h"
#include "debugwindow/markerfile.h"
#include "fuzzcheck.h"

#include <QTemporaryDir>

#include <fstream>

using namespace Zorvan;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t longestLine = 4094;
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/markers-XXXXXX"));
    const QString path = markerfile::withSuffix(folder.filePath(QStringLiteral("fuzzed")));
    require(folder.isValid() && markerfile::withSuffix(path) == path);
    Input input(data, size);
    const std::string_view content = input.rest;
    std::ofstream(path.toStdString(), std::ios::binary)
        .write(content.data(), static_cast<std::streamsize>(size));

    const QString marker = markerfile::load(path);
    const std::size_t end = std::min(content.find('\n'), size - 1) + 1; // the line feed belongs to the line
    require(marker.toLatin1().toStdString() == content.substr(0, std::min(end, longestLine)));

    // Saved it gets a line feed of its own; beyond the longest line both are cut.
    markerfile::save(path, marker);
    const QString again = markerfile::load(path);
    require(again.startsWith(marker) && again.size() <= marker.size() + 1);

    CFilteredTextBuffer buffer;
    buffer.addPattern(marker);
    require(buffer.patterns() == marker);
    const std::string bytes = marker.toLatin1().toStdString();
    const bool canOccur = bytes.find('\0') == std::string::npos;
    require((buffer.match(content).position >= 0) == canOccur);
    input.bytes(1);
    const std::size_t plain = canOccur ? input.rest.find(bytes) : std::string_view::npos;
    require(buffer.match(input.rest).position == static_cast<std::int64_t>(plain));
    return 0;
}
