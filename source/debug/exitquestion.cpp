#include "debug/exitquestion.h"

#include "debug/moduletable.h"
#include "debug/outputfile.h"
#include "debugserverqueue/guibridge.h"
#include "debugwindow/debugwindow.h"
#include "host/hosthandlers.h"
#include "lowlevelfunctions/daemonlink.h"

#include <QMessageBox>
#include <QPointer>

namespace Zorvan {

namespace {

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

void appendToOutputFile(QByteArray text)
{
    std::string lines = text.replace("\n", "\r\n").toStdString();
    const TableLock guard;
    outputFile().append(lines, OutputFile::Writing::On);
}

} // namespace

void offerToSaveWindowText()
{
    const QPointer<DebugWindow> window = guibridge::windowWithAllLines();
    if (!window || host::readInteger(QStringLiteral("enableQuitMessage"), 0) != 1 || !window)
        return;
    window->showMaximized();
    if (window && userWantsToSave() && window)
        appendToOutputFile(window->allLines());
}

} // namespace Zorvan
