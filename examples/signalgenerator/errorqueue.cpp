#include "errorqueue.h"

#include "print.h"

#include <algorithm>
#include <utility>

namespace SignalGenerator {

namespace {

struct CodeText
{
    int code;
    const char *text;
};

constexpr CodeText codeTexts[] = {
    {ErrorCode::NoError, "No error"},
    {ErrorCode::Syntax, "Syntax error"},
    {ErrorCode::DataType, "Data type error"},
    {ErrorCode::ParameterNotAllowed, "Parameter not allowed"},
    {ErrorCode::MissingParameter, "Missing parameter"},
    {ErrorCode::UndefinedHeader, "Undefined header"},
    {ErrorCode::ExponentTooLarge, "Exponent too large"},
    {ErrorCode::InvalidSuffix, "Invalid suffix"},
    {ErrorCode::InvalidString, "Invalid string data"},
    {ErrorCode::InvalidBlock, "Invalid block data"},
    {ErrorCode::SettingsConflict, "Settings conflict"},
    {ErrorCode::OutOfRange, "Data out of range"},
    {ErrorCode::IllegalValue, "Illegal parameter value"},
    {ErrorCode::NameNotFound, "File name not found"},
    {ErrorCode::QueueOverflow, "Queue overflow"},
    {ErrorCode::ReferenceMissing, "External reference missing"},
    {ErrorCode::Unlevelled, "Output unlevelled"},
};

std::string textOf(int code)
{
    const auto *const found = std::find_if(std::begin(codeTexts), std::end(codeTexts),
                                           [code](const CodeText &entry) { return entry.code == code; });
    return found == std::end(codeTexts) ? "Device-specific error" : found->text;
}

std::string entry(int code, const std::string &detail)
{
    std::string text = detail.empty() ? textOf(code) : textOf(code) + ';' + detail;
    std::replace(text.begin(), text.end(), '"', '\''); // a quote would end the text early
    return std::to_string(code) + ",\"" + text + '"';
}

} // namespace

void ErrorQueue::push(int code, const std::string &detail)
{
    const std::string added = entry(code, detail);
    print(Module::Scpi, Level::Error, "%s%s%s", Color::red, added.c_str(), Color::plain);
    bool overflow = false;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        overflow = m_entries.size() == capacity;
        if (overflow)
            m_entries.back() = entry(ErrorCode::QueueOverflow, {});
        else
            m_entries.push_back(added);
    }
    if (overflow)
        print(Module::Scpi, Level::Error, "%serror queue is full, %s is lost%s", Color::red, added.c_str(),
              Color::plain);
}

std::string ErrorQueue::take()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_entries.empty())
        return entry(ErrorCode::NoError, {});
    std::string oldest = std::move(m_entries.front());
    m_entries.pop_front();
    return oldest;
}

std::string ErrorQueue::takeAll()
{
    std::string all = take();
    while (count() > 0)
        all += ',' + take();
    return all;
}

std::size_t ErrorQueue::count() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_entries.size();
}

void ErrorQueue::clear()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_entries.clear();
}

} // namespace SignalGenerator
