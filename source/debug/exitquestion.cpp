#include "debug/exitquestion.h"

#include "debug/moduletable.h"
#include "debug/outputfile.h"
#include "debugserverqueue/guibridge.h"
#include "debugwindow/debugwindow.h"
#include "host/hosthandlers.h"
#include "lowlevelfunctions/daemonlink.h"

#include <QMessageBox>

namespace Zorvan {

namespace {

constexpr std::size_t pieceBytes = 1 << 16;

std::string latin1(const QString &text)
{
    return text.toLatin1().toStdString();
}

bool userWantsToSave()
{
    const QString question =
        QStringLiteral("The application has now finished and all resources are released.\n\n"
                       "Do you want to save the remaining messages in file\n'%1' ?")
            .arg(outputFile().name());
    const int answer = daemonLink().showBox("KLV exit message", latin1(question), QMessageBox::Question,
                                            {QMessageBox::Yes, QMessageBox::No | QMessageBox::Default});
    return answer == QMessageBox::Yes;
}

/// In pieces: the lines may take half of the memory.
void appendToOutputFile(const DebugWindow &window)
{
    const TableLock guard;
    window.forEachPiece(pieceBytes, [](QByteArray piece) {
        outputFile().appendSaved(piece.append('\n').replace("\n", "\r\n").toStdString());
        return true;
    });
}

} // namespace

void offerToSaveWindowText()
{
    if (guibridge::windowHere() == nullptr || host::readInteger(QStringLiteral("enableQuitMessage"), 0) != 1)
        return;
    if (DebugWindow *const window = guibridge::windowWithAllLines())
        window->showMaximized();
    if (guibridge::windowHere() == nullptr || !userWantsToSave())
        return;
    if (const DebugWindow *const window = guibridge::windowWithAllLines()) // with those that came meanwhile
        appendToOutputFile(*window);
}

} // namespace Zorvan
