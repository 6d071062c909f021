#include "album.h"

#include <QApplication>
#include <QColor>
#include <QPalette>
#include <QPixmap>
#include <QWidget>

#include <cstdio>

namespace Zorvan::looks {

Album::Album(const QString &folder)
    : m_folder(folder)
{
    m_folder.mkpath(QStringLiteral("."));
}

void Album::add(QWidget &window, const QString &name)
{
    window.show();
    QApplication::processEvents();
    const QString path = m_folder.filePath(name + QStringLiteral(".png"));
    if (!window.grab().save(path)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        m_isComplete = false;
    }
    std::printf("%-20s %4d x %4d at %4d, %4d\n", qPrintable(name), window.width(), window.height(),
                window.x(), window.y());
}

QPalette lightPalette()
{
    return QPalette(QColor(239, 239, 239));
}

QPalette darkPalette()
{
    QPalette palette(QColor(53, 53, 53));
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    return palette;
}

} // namespace Zorvan::looks
