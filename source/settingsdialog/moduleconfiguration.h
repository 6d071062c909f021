#pragma once

#include <QByteArray>

class QIODevice;
class QString;

/// The classes and clipping levels of the modules as a text, one line per module that is in use, by their
/// ids: "Name;level;Class,Class,". Names are normalized and in Latin-1.
namespace Zorvan::moduleconfiguration {

[[nodiscard]] QByteArray formatted();
/// Sets the modules that \a device names; what is unknown or damaged is skipped. The library prints notices,
/// which runs code of the host; when that ends the library, the rest is not applied.
void apply(QIODevice &device);

/// Both do nothing and return false if the file cannot be opened, or not be written.
bool save(const QString &path);
bool load(const QString &path);

} // namespace Zorvan::moduleconfiguration
