#include "debugwindow/savedlog.h"

#include "settingsdialog/writtenfile.h"

#include <zorvan/debug.h>

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <memory>

namespace Zorvan::savedlog {

namespace {

constexpr int pieceCharacters = 64 * 1024; // a log may fill half of the memory: no second copy of it

} // namespace

Place startingPlace(const QString &lastLog)
{
    if (!lastLog.isEmpty())
        return {QFileInfo(lastLog).absolutePath(), QFileInfo(lastLog).fileName()};
    return {QFileInfo(QString::fromLatin1(Debug::getOutputFileName())).absolutePath(), QString()};
}

bool write(const QString &path, const QString &text)
{
    QFile file(path);
    if (!canBeWritten(path) || !file.open(QIODevice::WriteOnly))
        return false;
    const std::unique_ptr<QTextEncoder> encoder(
        QTextCodec::codecForLocale()->makeEncoder(QTextCodec::IgnoreHeader));
    for (int begin = 0; begin < text.size(); begin += pieceCharacters) {
        QString piece = text.mid(begin, pieceCharacters);
        piece.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
        if (file.write(encoder->fromUnicode(piece)) < 0)
            break; // the disk is full
    }
    return true;
}

} // namespace Zorvan::savedlog
