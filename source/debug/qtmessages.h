#pragma once

#include <QString>
#include <QtGlobal>

namespace Zorvan {

/// Turns Qt's own messages into lines of the library. The handler stays until the library is unloaded; the
/// one that was there before is put back then.
void installQtMessageHandler();

/// Prints a Qt message on module 0 at the level of its type.
void printQtMessage(QtMsgType type, const QString &text);

} // namespace Zorvan
