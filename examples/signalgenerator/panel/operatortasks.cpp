#include "panel/operatortasks.h"

#include "panel/panelmodule.h"
#include "panel/remotecontrol.h"
#include "panel/selftest.h"
#include "print.h"

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

// Codes of Debug::debugMessageBox().
constexpr int okButton = 1;
constexpr int yesButton = 3;
constexpr int noButton = 4;
constexpr int isDefault = 16;
constexpr int informationIcon = 1;
constexpr int criticalIcon = 3;
constexpr int questionIcon = 4;

} // namespace

OperatorTasks::OperatorTasks(RemoteControl &remote, Zorvan::moduleId module)
    : m_remote(remote)
    , m_module(module)
{}

void OperatorTasks::chooseScript(const QString &folder)
{
    m_thread.post([this, folder] {
        // A copy: the answer belongs to the library until this thread asks again.
        const QString path =
            Debug::debugFileSelect(tr("Load script"), folder, tr("SCPI scripts (*.scpi);;All files (*)"));
        print(m_module, PanelLevel::Info, "script: %s",
              path.isEmpty() ? "none" : path.toLatin1().constData());
        m_guiThread.post([this, path] { Q_EMIT scriptChosen(path); });
    });
}

void OperatorTasks::startSelfTest()
{
    m_thread.post([this] {
        const QString result = selfTest();
        print(m_module, PanelLevel::Info, "%s", result.toLatin1().constData());
        m_guiThread.post([this, result] { Q_EMIT selfTestEnded(result); });
    });
}

QString OperatorTasks::selfTest()
{
    closeResult(); // of the self test before
    const int answer =
        Debug::debugMessageBox(tr("Self test"), tr("Run the self test?"),
                               tr("The RF output is switched off and the frequency changes while it runs."),
                               true, questionIcon, yesButton + isDefault, noButton, 0);
    if (answer != yesButton)
        return tr("Self test: not run");
    const SelfTestResult result = runSelfTest(m_remote);
    showResult(result.passed, QString::fromStdString(result.report));
    return result.passed ? tr("Self test: passed") : tr("Self test: FAILED");
}

void OperatorTasks::showResult(bool passed, const QString &report)
{
    // Not modal: the call returns as soon as the box is there, and the panel can be used beside it.
    m_resultBox = Debug::debugMessageBox(
        tr("Self test"), passed ? tr("The self test has passed") : tr("The self test has FAILED"), report,
        false, passed ? informationIcon : criticalIcon, okButton, 0, 0);
}

void OperatorTasks::closeResult()
{
    const int box = m_resultBox.exchange(-1);
    if (box > 0)
        Debug::removeMessageBox(box);
}

} // namespace SignalGenerator
