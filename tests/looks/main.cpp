// Draws the windows of the library, for people to look at: looks FOLDER

#include "album.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: looks FOLDER\n");
        return 2;
    }
    QApplication::setStyle(QStringLiteral("fusion")); // the same on every desktop
    Zorvan::looks::Album album(arguments.at(1));
    Zorvan::looks::addMessageBoxes(album);
    return album.isComplete() ? 0 : 1;
}
