#include "debug/patternlimits.h"

#include <QStringList>

#include <algorithm>
#include <vector>

namespace Zorvan {

namespace {

constexpr std::size_t greatestDepth = 50;
constexpr qint64 greatestWeight = 10000;
constexpr qint64 openEnded = 30; // "*", "+", "?", back references: what may match in several ways

/// Weighs an expression by the characters that it consists of when all repetitions are written out. It need
/// not be exact.
class Scale
{
public:
    explicit Scale(const QString &pattern)
        : m_pattern(pattern)
    {}

    [[nodiscard]] bool isTooHeavy()
    {
        while (m_at < m_pattern.size() && m_weight <= greatestWeight && m_outer.size() <= greatestDepth)
            weighNext();
        return m_weight > greatestWeight || m_outer.size() > greatestDepth;
    }

private:
    void weighNext()
    {
        const QChar character = m_pattern[m_at++];
        if (character == QLatin1Char('(')) {
            m_outer.push_back(m_weight);
            m_weight = 0;
        } else if (character == QLatin1Char(')') && !m_outer.empty()) {
            add(std::max<qint64>(m_weight, 1), m_outer.back());
            m_outer.pop_back();
        } else {
            add(weightOf(character), m_weight);
        }
    }

    /// Goes behind an atom that begins with \a character.
    qint64 weightOf(QChar character)
    {
        if (character == QLatin1Char('['))
            skipBehind(QLatin1Char(']'));
        if (character != QLatin1Char('\\') || m_at >= m_pattern.size())
            return 1;
        return m_pattern[m_at++].isDigit() ? openEnded : 1;
    }

    /// An atom, with the repetition that follows it.
    void add(qint64 atom, qint64 before) { m_weight = before + atom * repetition(); }

    qint64 repetition()
    {
        const QChar next = m_at < m_pattern.size() ? m_pattern[m_at] : QChar();
        if (next == QLatin1Char('*') || next == QLatin1Char('+') || next == QLatin1Char('?')) {
            ++m_at;
            return openEnded;
        }
        if (next != QLatin1Char('{'))
            return 1;
        const int begin = m_at + 1;
        skipBehind(QLatin1Char('}'));
        qint64 most = 1;
        for (const QString &count : m_pattern.mid(begin, m_at - begin - 1).split(QLatin1Char(',')))
            most = std::max<qint64>(most, count.toInt());
        return most;
    }

    void skipBehind(QChar end)
    {
        const int found = m_pattern.indexOf(end, m_at);
        m_at = found < 0 ? m_pattern.size() : found + 1;
    }

    const QString &m_pattern;
    int m_at = 0;
    qint64 m_weight = 0; ///< of the open group
    std::vector<qint64> m_outer; ///< of the groups around it
};

} // namespace

bool isAffordable(const QString &pattern)
{
    return !Scale(pattern).isTooHeavy();
}

} // namespace Zorvan
