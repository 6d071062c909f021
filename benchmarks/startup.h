#pragma once

/// What the children of bench_startup share. Header only: they link nothing but what they measure.

#include <chrono>
#include <cstdio>
#include <cstring>

namespace bench {

/// Nanoseconds of a clock that all processes share.
inline long long now()
{
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

/// Kilobytes of an entry ("Rss:") for the whole process; 0 if the kernel does not tell.
inline long residentKilobytes(const char *entry)
{
    long kilobytes = 0;
    if (FILE *const file = std::fopen("/proc/self/smaps_rollup", "re")) {
        char line[256];
        while (std::fgets(line, sizeof line, file) != nullptr) {
            if (std::strncmp(line, entry, std::strlen(entry)) == 0)
                std::sscanf(line + std::strlen(entry), "%ld", &kilobytes);
        }
        std::fclose(file);
    }
    return kilobytes;
}

/// Tells the parent when the first line was written, and what memory the process has then.
inline void report(long long firstLine)
{
    std::printf("%lld %ld %ld\n", firstLine, residentKilobytes("Rss:"), residentKilobytes("Private_Dirty:"));
}

} // namespace bench
