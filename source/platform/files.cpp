#include "platform/files.h"

#include "platform/files_p.h"

#include <algorithm>
#include <utility>

namespace Zorvan::platform {
namespace {

constexpr std::size_t blockBytes = 64 * 1024;

bool readStart(RegularFile &file, std::size_t limitBytes, std::string &content)
{
    content.clear();
    if (!file.isOpen())
        return false;
    std::int64_t length = 1;
    while (length > 0 && content.size() < limitBytes) {
        const std::size_t before = content.size();
        content.resize(before + std::min(blockBytes, limitBytes - before));
        length = file.read(content.data() + before, content.size() - before);
        content.resize(before + static_cast<std::size_t>(std::max<std::int64_t>(length, 0)));
    }
    if (length < 0)
        content.clear();
    return length >= 0;
}

} // namespace

std::int64_t countLineFeeds(const char *path)
{
    RegularFile file(path);
    if (!file.isOpen())
        return -1;
    std::string block(blockBytes, '\0');
    std::int64_t lineFeeds = 0;
    std::int64_t length = 0;
    while ((length = file.read(block.data(), block.size())) > 0)
        lineFeeds += std::count(block.data(), block.data() + length, '\n');
    return length < 0 ? -1 : lineFeeds;
}

bool readFileStart(const char *path, std::size_t limitBytes, std::string &content)
{
    RegularFile file(path);
    return readStart(file, limitBytes, content);
}

bool readTrustedFile(const char *path, std::size_t limitBytes, std::string &content)
{
    RegularFile file(path, RegularFile::Accept::Trusted);
    if (!readStart(file, limitBytes + 1, content))
        return false;
    const bool isShort = content.size() <= limitBytes;
    if (!isShort)
        content.clear();
    return isShort;
}

bool replaceFile(const char *path, std::string_view content)
{
    return AppendFile(path, AppendFile::Start::Empty).write(content);
}

void discardFile(const char *path)
{
    if (fileExists(path) && !removeRegularFile(path))
        AppendFile(path).truncate();
}

bool makeFolders(const char *path)
{
    if (path == nullptr || *path == '\0')
        return false;
    if (isFolder(path))
        return true;
    std::string part(path);
    for (std::size_t i = 1; i < part.size(); ++i) {
        if (!isSeparator(part[i]))
            continue;
        const char separator = std::exchange(part[i], '\0');
        makeFolder(part.c_str());
        part[i] = separator;
    }
    makeFolder(path);
    return isFolder(path);
}

} // namespace Zorvan::platform
