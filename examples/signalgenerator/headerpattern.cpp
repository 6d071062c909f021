#include "headerpattern.h"

#include <algorithm>

namespace SignalGenerator {

namespace {

// Letters of commands are ASCII whatever the locale.
bool isLower(char c)
{
    return c >= 'a' && c <= 'z';
}

char upper(char c)
{
    return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

std::string toUpper(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

Keyword::Keyword(std::string_view mixedCase)
    : longForm(toUpper(mixedCase))
{
    std::copy_if(mixedCase.begin(), mixedCase.end(), std::back_inserter(shortForm),
                 [](char c) { return !isLower(c); });
}

bool Keyword::matches(std::string_view upperCase) const
{
    return upperCase == shortForm || upperCase == longForm;
}

std::vector<Keyword> keywordList(std::string_view list)
{
    std::vector<Keyword> keywords;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find('|', begin), list.size());
        std::string_view keyword = list.substr(begin, end - begin);
        keyword.remove_prefix(keyword.substr(0, 1) == ":" ? 1 : 0);
        keywords.emplace_back(keyword);
        begin = end + 1;
    }
    return keywords;
}

HeaderPattern::HeaderPattern(std::string_view pattern)
{
    while (!pattern.empty()) {
        const bool optional = pattern.front() == '[';
        pattern.remove_prefix(optional ? 1 : 0);
        // A node ends at its bracket, or where the next one begins; a colon behind '|' belongs to the node.
        std::size_t end = 1;
        while (end < pattern.size() && pattern[end] != ']' && pattern[end] != '['
               && (pattern[end] != ':' || pattern[end - 1] == '|'))
            ++end;
        m_nodes.push_back({optional, keywordList(pattern.substr(0, end))});
        pattern.remove_prefix(optional ? end + 1 : end);
    }
}

bool HeaderPattern::matches(const std::vector<std::string> &names) const
{
    // The places in the pattern that the names so far can lead to: more than one because of the optional
    // nodes.
    std::vector<bool> places(m_nodes.size() + 1);
    places.front() = true;
    skipOptionalNodes(places);
    for (const std::string &name : names) {
        std::vector<bool> next(places.size());
        for (std::size_t i = 0; i < m_nodes.size(); ++i)
            next[i + 1] = places[i] && m_nodes[i].matches(name);
        skipOptionalNodes(next);
        places = next;
    }
    return places.back();
}

bool HeaderPattern::Node::matches(std::string_view upperCase) const
{
    return std::any_of(alternatives.begin(), alternatives.end(),
                       [upperCase](const Keyword &keyword) { return keyword.matches(upperCase); });
}

void HeaderPattern::skipOptionalNodes(std::vector<bool> &places) const
{
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (places[i] && m_nodes[i].optional)
            places[i + 1] = true;
    }
}

} // namespace SignalGenerator
