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
        const bool colon = begin < end && list[begin] == ':';
        keywords.emplace_back(list.substr(begin + colon, end - begin - colon));
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
               && (pattern[end] != ':' || pattern[end - 1] == '|')) {
            ++end;
        }
        m_nodes.push_back({optional, keywordList(pattern.substr(0, end))});
        pattern.remove_prefix(optional ? end + 1 : end);
    }
}

bool HeaderPattern::matches(const std::vector<std::string> &nodes) const
{
    return matchesFrom(0, nodes, 0);
}

bool HeaderPattern::Node::matches(std::string_view upperCase) const
{
    return std::any_of(alternatives.begin(), alternatives.end(),
                       [upperCase](const Keyword &keyword) { return keyword.matches(upperCase); });
}

bool HeaderPattern::matchesFrom(std::size_t node, const std::vector<std::string> &names,
                                std::size_t name) const
{
    if (node == m_nodes.size()) {
        return name == names.size();
    }
    const bool taken = name < names.size() && m_nodes[node].matches(names[name]);
    return (taken && matchesFrom(node + 1, names, name + 1))
        || (m_nodes[node].optional && matchesFrom(node + 1, names, name));
}

} // namespace SignalGenerator
