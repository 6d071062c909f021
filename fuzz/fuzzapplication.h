#pragma once

#include <QApplication>

/// A program with windows, which no display shows.
inline void startApplication()
{
    static const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = isOffscreen ? 1 : 0;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    static const QApplication &application =
        *new QApplication(count, arguments); // its end needs Qt's statics
    static_cast<void>(application);
}
