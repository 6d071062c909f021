#include "debug/descriptions.h"

#include "platform/lock.h"

#include <map>
#include <memory>

namespace Zorvan {

namespace {

/// Grows with the number of different lists that were ever set, which hosts keep small.
struct Pool
{
    platform::Mutex mutex;
    std::map<std::vector<std::string>, std::unique_ptr<Descriptions>> lists ZORVAN_GUARDED_BY(mutex);
};

Pool &pool()
{
    static auto *object = new Pool; // never destroyed: the interface handed out pointers into it
    return *object;
}

std::vector<std::string> copyTexts(int count, const char *const *texts)
{
    std::vector<std::string> copies;
    if (texts == nullptr)
        return copies;
    for (int i = 0; count == -1 ? texts[i] != nullptr : i < count; ++i)
        copies.emplace_back(texts[i] ? texts[i] : "");
    return copies;
}

} // namespace

Descriptions::Descriptions(std::vector<std::string> texts)
    : m_texts(std::move(texts))
{
    for (const std::string &text : m_texts)
        m_pointers.push_back(text.c_str());
}

std::string_view Descriptions::text(int index) const
{
    return index >= 0 && index < count() ? std::string_view(m_texts[static_cast<std::size_t>(index)])
                                         : std::string_view();
}

const Descriptions *Descriptions::intern(int count, const char *const *texts)
{
    std::vector<std::string> copies = copyTexts(count, texts);
    const platform::Locked guard(pool().mutex);
    std::unique_ptr<Descriptions> &entry = pool().lists[copies];
    if (!entry)
        entry = std::make_unique<Descriptions>(std::move(copies));
    return entry.get();
}

const Descriptions *Descriptions::none()
{
    static const Descriptions *const empty = intern(0, nullptr);
    return empty;
}

} // namespace Zorvan
