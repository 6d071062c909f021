#include "debugserverqueue/debugxmlparser.h"

#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/librarynotice.h"
#include "debugserverqueue/unitlimits.h"
#include "host/modulenames.h"
#include "host/patternlimits.h"

#include <zorvan/debug.h>

#include <algorithm>

namespace Zorvan {

namespace {

constexpr int greatestDepth = 256;

using Attributes = QXmlStreamAttributes;

bool has(const Attributes &attributes, const char *name)
{
    return attributes.hasAttribute(QLatin1String(name));
}

QString valueOf(const Attributes &attributes, const char *name)
{
    return attributes.value(QLatin1String(name)).toString();
}

/// The first module whose name contains the text, whatever the letter case; -1 if there is none. Names as
/// they stand in the line header: those of unused modules are empty.
moduleId moduleWith(const QString &text)
{
    const QString wanted = text.toLower();
    const host::ModuleNames names;
    for (int i = 0; i < names.count(); ++i) {
        if (names.name(i).toLower().contains(wanted))
            return i;
    }
    return -1;
}

/// One pass after the other, so that what one of them makes is seen by the next. Clients know the quotation
/// mark in no other spelling.
QString unescaped(QString text)
{
    return text.replace(QLatin1String("&lt;"), QLatin1String("<"))
        .replace(QLatin1String("&gt;"), QLatin1String(">"))
        .replace(QLatin1String("&amp;"), QLatin1String("&"))
        .replace(QLatin1String("&quout;"), QLatin1String("\""));
}

void executeHook(const Attributes &attributes)
{
    if (!has(attributes, "key"))
        return;
    const QByteArray key = valueOf(attributes, "key").toLatin1();
    const QByteArray parameters = valueOf(attributes, "parameters").toLatin1();
    Debug::activateHooks(key.constData(), parameters.constData());
}

void executeFilter(const Attributes &attributes)
{
    if (!has(attributes, "module") || !(has(attributes, "level") || has(attributes, "classes")))
        return;
    const moduleId module = moduleWith(valueOf(attributes, "module"));
    if (module < 0)
        return;
    if (has(attributes, "level"))
        Debug::enableLevel(module, valueOf(attributes, "level"));
    if (has(attributes, "classes"))
        Debug::enableClasses(module, valueOf(attributes, "classes"));
}

/// Every thread of the host pays for each of its lines: what a client asks for costs less than what the host
/// may choose itself.
void setOutputFilter(const QString &pattern)
{
    if (isCheap(pattern))
        Debug::setOutputFilter(pattern);
    else
        libraryNotice(QStringLiteral("++++ the output filter of a client costs too much, it is not used"));
}

/// "makedefault" counts only without an output filter: a client that wants both sends two elements.
void executeConfig(const Attributes &attributes)
{
    if (has(attributes, "enabledsettings"))
        Debug::enableSettings(valueOf(attributes, "enabledsettings"));
    if (has(attributes, "levelsfilter"))
        Debug::setLevelFilter(unescaped(valueOf(attributes, "levelsfilter")));
    if (has(attributes, "outputfilter"))
        setOutputFilter(unescaped(valueOf(attributes, "outputfilter")));
    else if (has(attributes, "makedefault"))
        guibridge::makeDefault();
}

struct Command
{
    const char *name;
    void (*execute)(const Attributes &attributes);
};

constexpr Command commands[] = {
    {"hook", executeHook},
    {"filter", executeFilter},
    {"config", executeConfig},
};

const Command *commandNamed(QStringView name)
{
    const auto *const found =
        std::find_if(std::begin(commands), std::end(commands),
                     [&](const Command &command) { return name == QLatin1String(command.name); });
    return found == std::end(commands) ? nullptr : found;
}

} // namespace

DebugXmlParser::DebugXmlParser(const QString &unit)
    : m_reader(harmlessPart(unit))
{
    // Commands have no namespaces, and looking one up takes longer the more there are around an element.
    m_reader.setNamespaceProcessing(false);
}

bool DebugXmlParser::executeNext()
{
    while (!m_reader.atEnd() && m_depth <= greatestDepth) {
        const QXmlStreamReader::TokenType token = m_reader.readNext();
        if (token == QXmlStreamReader::EndElement)
            --m_depth;
        if (token != QXmlStreamReader::StartElement || ++m_depth > greatestDepth)
            continue;
        if (const Command *const command = commandNamed(m_reader.name())) {
            command->execute(m_reader.attributes());
            return true;
        }
    }
    return false;
}

} // namespace Zorvan
