#include "settingsdialog/moduleconfiguration.h"

#include "host/classstates.h"
#include "host/modulenames.h"
#include "host/normalizedname.h"
#include "host/tablestate.h"
#include "settingsdialog/writtenfile.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QStringList>

namespace Zorvan::moduleconfiguration {

namespace {

constexpr qint64 longestPiece = 1023; ///< of a line, in bytes; the rest is read as a line of its own

/// A raw description may hold commas, which would look like the end of the name.
QString enabledClasses(moduleId module)
{
    int count = 0;
    const char **const descriptions = Debug::getMessageClassDescriptions(module, &count);
    QString classes;
    for (int cls = 0; cls < count; ++cls) {
        const QString name = getNormalizedName(QString::fromLatin1(descriptions[cls]));
        if (!name.isEmpty() && host::isClassEnabled(module, cls))
            classes += name + QLatin1Char(',');
    }
    return classes;
}

QString formattedModule(moduleId module, const QString &name)
{
    return name + QLatin1Char(';') + QString::number(Debug::getClippingLevel(module)) + QLatin1Char(';')
        + enabledClasses(module) + QLatin1Char('\n');
}

/// Of several modules with one name the first; not those that nobody has used yet.
QHash<QString, moduleId> modulesByName()
{
    QHash<QString, moduleId> modules;
    const host::ModuleNames names;
    for (moduleId id = 0; id < names.count(); ++id) {
        const QString name = getNormalizedName(names.name(id));
        if (!name.isEmpty() && !modules.contains(name))
            modules.insert(name, id);
    }
    return modules;
}

QString withoutLineEnd(QByteArray line)
{
    for (const char end : {'\n', '\r'}) {
        if (line.endsWith(end))
            line.chop(1);
    }
    return QString::fromLatin1(line);
}

/// Changes nothing more once the library has ended, in a call of the host: the ids may then be those of other
/// modules.
class Loading
{
public:
    [[nodiscard]] bool goesOn() const { return TableState::ends() == m_ends; }
    void apply(const QString &line) const
    {
        const QStringList fields = line.split(QLatin1Char(';'));
        const auto module = m_modules.constFind(fields.first());
        if (fields.size() >= 3 && module != m_modules.constEnd())
            configure(*module, fields.at(1).toInt(), fields.at(2));
    }

private:
    void configure(moduleId module, int level, const QString &classes) const
    {
        Debug::setClippingLevel(module, level);
        if (goesOn())
            Debug::disableMessageClassType(module, -1);
        if (goesOn())
            Debug::enableClasses(module, classes.isEmpty() ? QStringLiteral("none") : classes);
    }

    const unsigned m_ends = TableState::ends();
    const QHash<QString, moduleId> m_modules = modulesByName();
};

} // namespace

QByteArray formatted()
{
    QString lines;
    const host::ModuleNames names;
    for (moduleId id = 0; id < names.count(); ++id) {
        const QString name = getNormalizedName(names.name(id));
        if (!name.isEmpty())
            lines += formattedModule(id, name);
    }
    return lines.toLatin1();
}

void apply(QIODevice &device)
{
    const Loading loading;
    while (loading.goesOn()) {
        const QByteArray line = device.readLine(longestPiece + 1); // with the end mark of a C string
        if (line.isEmpty()) // the end, or an error
            break;
        loading.apply(withoutLineEnd(line));
    }
}

bool save(const QString &path)
{
    if (!canBeWritten(path))
        return false;
    QSaveFile file(path); // a disk that is full leaves the old file as it was
    file.setDirectWriteFallback(true); // the file may be writable in a folder that is not
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    file.write(formatted());
    return file.commit();
}

bool load(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) // a device may never end
        return false;
    apply(file);
    return true;
}

} // namespace Zorvan::moduleconfiguration
