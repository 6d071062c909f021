#pragma once

#include <QString>

namespace Zorvan::savedlog {

/// Where the dialog begins that asks for the name of a log: at the last one, else in the folder of the output
/// file, without a name.
struct Place
{
    QString folder;
    QString name;
};
[[nodiscard]] Place startingPlace(const QString &lastLog);

/// Writes a text with CR LF for each "\n", in the encoding of the system. False: the file could not be
/// opened, and nothing else is told.
bool write(const QString &path, const QString &text);

} // namespace Zorvan::savedlog
