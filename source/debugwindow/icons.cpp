#include "debugwindow/icons.h"

#include <QString>

// Outside the namespace: what Qt's macros declare is global.
static void registerIcons()
{
    Q_INIT_RESOURCE(zorvan_icons);
}

static void releaseIcons()
{
    Q_CLEANUP_RESOURCE(zorvan_icons);
}

namespace Zorvan {

namespace {

// Qt does not count: the first release would take the icons from all windows.
int &users()
{
    static int count = 0;
    return count;
}

} // namespace

IconResource::IconResource()
{
    if (users()++ == 0)
        registerIcons();
}

IconResource::~IconResource()
{
    if (--users() == 0)
        releaseIcons();
}

QIcon icon(const char *name)
{
    QIcon result;
    // Qt would add those for double density by itself, but only if such a display is there now.
    for (const char *const size : {"", "@2x", "-24", "-24@2x"})
        result.addFile(QStringLiteral(":/icons/%1%2.png").arg(QLatin1String(name), QLatin1String(size)));
    return result;
}

} // namespace Zorvan
