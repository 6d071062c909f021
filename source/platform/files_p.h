#pragma once

#include <cstddef>
#include <cstdint>

namespace Zorvan::platform {

/// A regular file opened for reading. Devices, pipes and folders are refused: reading them could wait for
/// ever.
class RegularFile
{
public:
    enum class Accept {
        Any,
        Trusted, ///< as readTrustedFile() says
    };

    explicit RegularFile(const char *path, Accept accept = Accept::Any);
    ~RegularFile();
    RegularFile(const RegularFile &) = delete;
    RegularFile &operator=(const RegularFile &) = delete;

    [[nodiscard]] bool isOpen() const;
    /// Bytes read; 0 at the end, -1 on failure.
    std::int64_t read(char *buffer, std::size_t capacity);

private:
    std::intptr_t m_handle;
};

[[nodiscard]] bool isFolder(const char *path);
[[nodiscard]] bool isSeparator(char c);

/// Makes one folder. Failure shows in isFolder().
void makeFolder(const char *path);

} // namespace Zorvan::platform
