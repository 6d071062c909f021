#include "lowlevelfunctions/daemonlink.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "platform/errornumber.h"
#include "platform/messagebox.h"
#include "platform/process.h"

#include <zorvan/debug.h>

#include <QString>

#include <atomic>
#include <exception>
#include <string>

namespace Zorvan {

namespace {

// What the user wants, as codes of Qt's standard buttons, which the daemon answers with.
constexpr int noDecision = 0;
constexpr int toIgnore = 0x100000;
constexpr int toRetry = 0x80000;
constexpr int toAbort = 0x40000;
constexpr int toSkip = 0x8000; // "Yes to All"

constexpr const char *question = "\nDo you want to continue ?\n\n(Press Retry to debug the application)";
constexpr const char *skipByAbort = "\n(Press Abort to skip this message in the future)";
constexpr const char *skipByYesToAll = "\n(Press Yes to All to skip this message in the future)";
constexpr const char *copyBySave = "\n(Press Save to continue with this message in clipboard)";

/// An assertion that the user does not want to be asked about again.
struct Skipped
{
    const QString key;
    const Skipped *const next;
};

/// The latest first. Read and added to with the daemon link held. Entries stay to the end of the process, and
/// each is complete before it can be found: the child of a fork() has a whole list, whoever held the link.
std::atomic<const Skipped *> s_skipped{nullptr};

bool isSkipped(DaemonLink &link, const QString &key)
{
    const platform::Locked guard(link);
    const Skipped *entry = s_skipped.load(std::memory_order_acquire);
    while (entry != nullptr && entry->key != key)
        entry = entry->next;
    return entry != nullptr;
}

int askByBox(const std::string &text)
{
    using platform::BoxAnswer;
    switch (platform::nativeMessageBox("Zorvan Assertion", text + question + skipByAbort)) {
    case BoxAnswer::Abort: // ends the process, whatever the text says
        return toAbort;
    case BoxAnswer::Retry:
        return toRetry;
    case BoxAnswer::Ignore:
        return toIgnore;
    case BoxAnswer::None:
        break;
    }
    return noDecision;
}

int askByDaemon(DaemonLink &link, const std::string &text) ZORVAN_REQUIRES(link)
{
    // The same two positions in every version: they are looked for in the logs of instruments.
    const char *const place = "source/lowlevelfunctions";
    gyxLog(place, 790, "++++ ASSERTing message to server\n");
    const int decision = link.ask("<assert>" + text + question + skipByYesToAll + copyBySave + "</assert>");
    gyxLog(place, 802, "++++ ASSERTing continue\n");
    return decision;
}

int ask(DaemonLink &link, const QString &key, const std::string &text)
{
    const platform::Locked guard(link); // kept until the answer is there: one question after the other
    link.ensureSetUp();
    const int decision = link.isUp() ? askByDaemon(link, text) : askByBox(text);
    if (decision == toSkip)
        s_skipped.store(new Skipped{key, s_skipped.load(std::memory_order_relaxed)},
                        std::memory_order_release);
    return decision;
}

void logFailure(const QString &condition, const QString &message, const char *file, int line)
try {
    QByteArray text =
        QStringLiteral("++++ Debug Assertion Failed: %1;%2\n").arg(condition, message).toLocal8Bit();
    text.replace('\0', ' '); // it would end the line, without a line end
    gyxLog(nullptr, file, line, text.constData(), nullptr);
} catch (const std::exception &) { // no memory for the texts
    gyxLog(nullptr, file, line, "++++ Debug Assertion Failed\n", nullptr);
}

bool mayAsk()
{
    return lowlevelProperty(LowlevelProperty::hasGraphicalGui, 1) != 0
        && lowlevelProperty(LowlevelProperty::releaseAssertEnabled, 0) == 1;
}

QString positionText(const char *file, int line)
{
    if (file == nullptr)
        return {};
    return QStringLiteral("\n\nFile: %1\nLine: %2").arg(QString::fromLatin1(file), QString::number(line));
}

/// What the user wants the program to do.
int askUnlessSkipped(const QString &condition, const QString &message, const char *file, int line)
{
    // All conversions before the link is held: a warning of Qt's would want the system log, or more.
    const QString position = positionText(file, line);
    const QString key = condition + position;
    const QString text =
        QStringLiteral("Debug Assertion Failed!%1\n\nExpression: %2\n%3\n").arg(position, condition, message);
    const std::string bytes = text.toLatin1().toStdString();
    DaemonLink &link = daemonLink();
    return isSkipped(link, key) ? noDecision : ask(link, key, bytes);
}

} // namespace

// Without memory for the question the program goes on, as without a user.
void gyxAssert(const QString &condition, const QString &message, const char *file, int line)
try {
    const platform::ErrorNumberKept kept;
    logFailure(condition, message, file, line);
    if (mayAsk() && askUnlessSkipped(condition, message, file, line) == toAbort)
        platform::endThisProcess();
} catch (const std::exception &) {
    return;
}

} // namespace Zorvan
