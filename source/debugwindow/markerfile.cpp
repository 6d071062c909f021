#include "debugwindow/markerfile.h"

#include "settingsdialog/writtenfile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace Zorvan::markerfile {

namespace {

constexpr qint64 longestLine = 4094;

} // namespace

QString withSuffix(const QString &path)
{
    const QLatin1String suffix(".dbgfilt");
    return path.isEmpty() || path.endsWith(suffix) ? path : path + suffix;
}

void save(const QString &path, const QString &markers)
{
    if (!canBeWritten(path))
        return;
    QSaveFile file(path);
    file.setDirectWriteFallback(true); // in folders where only the file itself can be written
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return;
    file.write(markers.toLatin1() + '\n');
    file.commit();
}

QString load(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) // a pipe would be waited for
        return QString();
    const QByteArray line = file.readLine(longestLine + 1); // Qt counts a zero byte behind it
    return QLatin1String(line.constData(), line.size()); // with its zero bytes, if any
}

} // namespace Zorvan::markerfile
