#pragma once

#include <zorvan/debug.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace Zorvan::test {

/// A host over a map: what a test stores is what the library reads. Safe to use from several threads.
class MapHost : public IUtilityInterface
{
public:
    /// Installs itself; takes itself away again at its end.
    MapHost() { Debug::setUtilityCallbackHandler(this); }
    ~MapHost() override { Debug::setUtilityCallbackHandler(nullptr); }

    void store(const char *key, const char *value);
    void store(const char *key, int value);
    /// What is stored under "key" of the group "DebugServer"; empty if nothing.
    [[nodiscard]] QString stored(const char *key);
    /// How often each key was read so far.
    [[nodiscard]] int reads(const char *key);
    /// The keys in the order in which they were written.
    [[nodiscard]] std::vector<std::string> written();
    /// The lines that came through the line tap so far; empties the list.
    std::vector<std::string> takeLines();
    /// How many of them contain a text; empties the list, too.
    std::ptrdiff_t linesWith(const char *text);

    bool boxesAllowed = true;
    std::atomic<quint64> counter{0};
    std::atomic<double> frequency{1e6};
    std::atomic<quint64> countsPerFrequency{0}; ///< how long it takes to ask for it
    std::function<void(const QString &key)> onRead; ///< called, without a lock, for every read

    int readIntegerSetting(const char *group, const QString &key, int defaultValue) override;
    QString readStringSetting(const char *group, const QString &key, const QString &defaultValue) override;
    void writeStringSetting(const char *group, const QString &key, const QString &value) override;
    void outputLine(const QString &line) override;
    bool messageBoxesAllowed() override { return boxesAllowed; }
    double counterFrequency() override
    {
        counter += countsPerFrequency;
        return frequency;
    }
    quint64 readCounter() override { return counter; }

private:
    QString lookUp(const char *group, const QString &key, const QString &defaultValue);

    std::mutex m_mutex;
    std::map<std::string, QString> m_values; // by "group/key"
    std::map<std::string, int> m_reads;
    std::vector<std::string> m_written;
    std::vector<std::string> m_lines;
};

} // namespace Zorvan::test
