#include "settingsdialog/moduleconfiguration.h"

namespace Zorvan::moduleconfiguration {

QByteArray formatted()
{
    return QByteArray();
}

void apply(QIODevice &) {}

bool save(const QString &)
{
    return false;
}

bool load(const QString &)
{
    return false;
}

} // namespace Zorvan::moduleconfiguration
