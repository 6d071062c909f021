#include "debugserverqueue/unitlimits.h"

namespace Zorvan {

namespace {

constexpr int mostAttributes = 100;

/// A walk through the markup of a text. It may misjudge what is not well-formed: the reader stops there
/// anyway.
class Markup
{
public:
    explicit Markup(const QString &text)
        : m_text(text)
    {}

    /// Goes to the next piece of markup; false if there is none.
    bool find()
    {
        m_at = m_text.indexOf(QLatin1Char('<'), m_at);
        return m_at >= 0;
    }
    [[nodiscard]] int position() const { return m_at; }

    /// Goes behind a comment, a CDATA section, a processing instruction or a tag. False, and it stays where
    /// it is, if it is none of them or a tag with too many attributes.
    bool skipHarmless()
    {
        if (startsWith("<!--"))
            return skipBehind("-->", 4);
        if (startsWith("<![CDATA["))
            return skipBehind("]]>", 9);
        if (startsWith("<?"))
            return skipBehind("?>", 2);
        return !startsWith("<!") && skipTag();
    }

private:
    [[nodiscard]] bool startsWith(const char *beginning) const
    {
        return QStringView(m_text).mid(m_at).startsWith(QLatin1String(beginning));
    }

    bool skipBehind(const char *end, int from)
    {
        const QLatin1String text(end);
        const int found = m_text.indexOf(text, m_at + from);
        m_at = found < 0 ? m_text.size() : found + text.size();
        return true;
    }

    bool skipTag()
    {
        int attributes = 0;
        int at = m_at + 1;
        while (at < m_text.size() && m_text[at] != QLatin1Char('>')) {
            const QChar character = m_text[at++];
            if (character != QLatin1Char('\'') && character != QLatin1Char('"'))
                continue;
            if (++attributes > mostAttributes)
                return false;
            const int end = m_text.indexOf(character, at);
            at = end < 0 ? m_text.size() : end + 1;
        }
        m_at = at;
        return true;
    }

    const QString &m_text;
    int m_at = 0;
};

} // namespace

QString harmlessPart(const QString &unit)
{
    Markup markup(unit);
    while (markup.find()) {
        if (!markup.skipHarmless())
            return unit.left(markup.position());
    }
    return unit;
}

} // namespace Zorvan
