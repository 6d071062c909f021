#include "debugserverqueue/greeting.h"

#include "host/hookkeys.h"
#include "host/modulenames.h"
#include "host/tablestate.h"

#include <zorvan/debug.h>

namespace Zorvan {

namespace {

/// Records that become Latin-1 with CR LF behind each.
class Records
{
public:
    void add(const char *record) { (m_bytes += record) += "\r\n"; }
    void add(const QString &record) { (m_bytes += record.toLatin1()) += "\r\n"; }
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// A description as an entry of a list with commas.
QString listed(const char *description)
{
    return QString::fromLatin1(description)
        .remove(QLatin1Char('<'))
        .remove(QLatin1Char('>'))
        .remove(QLatin1Char(','))
        .trimmed();
}

/// Descriptions are replaced, but never freed while there is a table; see
/// Debug::getMessageClassDescriptions().
using Descriptions = const char **(*)(moduleId module, int *count);

QString list(const char *first, Descriptions descriptionsOf, moduleId module)
{
    QString text = QString::fromLatin1(first);
    int count = 0;
    const char **const descriptions = descriptionsOf(module, &count);
    for (int i = 0; i < count; ++i)
        text += QLatin1Char(',') + listed(descriptions[i]);
    return text;
}

QString enabledLevel(moduleId module)
{
    const int level = Debug::getClippingLevel(module);
    if (level == -1)
        return QStringLiteral("release");
    int count = 0;
    const char **const descriptions = Debug::getMessageLevelDescriptions(module, &count);
    return level >= 0 && level < count ? listed(descriptions[level]) : QString();
}

QString moduleRecord(moduleId module, QString name)
{
    name = name.remove(QLatin1Char('<')).remove(QLatin1Char('>')).trimmed();
    return QStringLiteral("  <module name='") + name + QStringLiteral("' enabledLevel='")
        + enabledLevel(module) + QStringLiteral("' enabledClasses='")
        + Debug::getEnabledMessageClasses(module) + QStringLiteral("' classes='")
        + list("none,all", Debug::getMessageClassDescriptions, module) + QStringLiteral("' levels='")
        + list("release,full", Debug::getMessageLevelDescriptions, module) + QStringLiteral("' />");
}

// "settings" is what clients have always been shown; the attribute that counts is "enabledsettings".
void addCommands(Records &records)
{
    records.add("<commands>");
    records.add("  <filter module='...' level='...' classes='...' />");
    records.add("    <hook key='...' parameters='...' />");
    records.add("    <config settings='...'/>");
    records.add("    <config makedefault=''/>");
    records.add("</commands>");
}

void addGlobalSettings(Records &records)
{
    records.add("<global>");
    records.add(QStringLiteral("  <config enabledsettings='") + Debug::getEnabledSettings()
                + QStringLiteral("' levelsfilter='") + Debug::getLevelFilter()
                + QStringLiteral("' outputfilter='") + Debug::getOutputFilter() + QStringLiteral("'/>"));
    records.add("</global>");
}

void addModules(Records &records)
{
    records.add("<modules>");
    const host::ModuleNames names;
    for (moduleId module = 0; module < names.count(); ++module)
        records.add(moduleRecord(module, names.name(module)));
    records.add("</modules>");
}

void addHooks(Records &records)
{
    records.add("<hooks>");
    for (const QString &key : host::hookKeys())
        records.add(QStringLiteral("  <hook key='") + key + QStringLiteral("' />"));
    records.add("</hooks>");
}

} // namespace

QByteArray greeting()
{
    const platform::Locked unchanged(TableState::lock());
    Records records;
    records.add("<DebugServer>");
    addCommands(records);
    records.add("");
    addGlobalSettings(records);
    records.add("");
    addModules(records);
    records.add("");
    addHooks(records);
    records.add("</DebugServer>");
    return records.bytes();
}

} // namespace Zorvan
