#pragma once

#include <deque>
#include <mutex>
#include <stdexcept>
#include <string>

namespace SignalGenerator {

/// Error numbers of the remote control: -1xx commands, -2xx execution, -3xx device, positive ones of the
/// hardware.
namespace ErrorCode {
constexpr int NoError = 0;
constexpr int Syntax = -102;
constexpr int DataType = -104;
constexpr int ParameterNotAllowed = -108;
constexpr int MissingParameter = -109;
constexpr int UndefinedHeader = -113;
constexpr int ExponentTooLarge = -123;
constexpr int InvalidSuffix = -131;
constexpr int InvalidString = -151;
constexpr int InvalidBlock = -161;
constexpr int SettingsConflict = -221;
constexpr int OutOfRange = -222;
constexpr int IllegalValue = -224;
constexpr int NameNotFound = -256;
constexpr int QueueOverflow = -350;
constexpr int ReferenceMissing = 20;
constexpr int Unlevelled = 50;
} // namespace ErrorCode

/// Thrown by whatever refuses a command; what() is the detail behind the standard text, usually the offending
/// input.
class ScpiError : public std::runtime_error
{
public:
    ScpiError(int code, const std::string &detail)
        : std::runtime_error(detail)
        , m_code(code)
    {}
    [[nodiscard]] int code() const { return m_code; }

private:
    int m_code;
};

/// The instrument's error queue with its event status register. Any thread.
class ErrorQueue
{
public:
    static constexpr std::size_t capacity = 20;

    /// The entry that would not fit any more turns the last one into a queue overflow.
    void push(int code, const std::string &detail);
    /// Takes the oldest entry as <code>,"<text>;<detail>"; 0,"No error" when there is none.
    [[nodiscard]] std::string take();
    /// Takes all entries, separated by commas.
    [[nodiscard]] std::string takeAll();
    [[nodiscard]] std::size_t count() const;
    void clear();

private:
    mutable std::mutex m_mutex; // guards the members below
    std::deque<std::string> m_entries;
};

} // namespace SignalGenerator
