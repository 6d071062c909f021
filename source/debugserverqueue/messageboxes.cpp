// Members of the facade that ask the user something.

#include "debugserverqueue/boxpresenter.h"
#include "debugserverqueue/debugserverqueue.h"
#include "debugserverqueue/events.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/librarynotice.h"
#include "host/hosthandlers.h"
#include "host/tablestate.h"

#include <optional>

namespace Zorvan {

namespace {

constexpr int boxesAreOff = 0;

struct Refusals
{
    QString noQt;
    QString noGuiThreadId;
    QString noEventLoop;
};

bool isOn(const char *key)
{
    return host::readInteger(QLatin1String(key), 1) != 0;
}

void inform(const QString &caption, const QString &text)
{
    if (host::readInteger(QStringLiteral("useInfomanager"), 1) != 1)
        return;
    IUtilityInterface *const utility = host::utilityHandler();
    IInformationManager *const manager = utility ? utility->informationManager() : nullptr;
    if (manager)
        manager->showInformation(caption, text);
}

/// Whether the GUI thread can be asked; otherwise prints why not.
bool canAsk(const Refusals &refusals)
{
    if (!guibridge::usingQt() || !guibridge::canShowWindows()) {
        libraryNotice(refusals.noQt);
        return false;
    }
    if (guibridge::guiThreadId() == nullptr)
        Debug::println(libraryModule, 0, refusals.noGuiThreadId, 2);
    if (!guibridge::eventLoopRunning()) {
        libraryNotice(refusals.noEventLoop);
        return false;
    }
    return true;
}

/// Whether the caller must not wait for the GUI thread: it prints, and the GUI thread may want to print, too.
bool holdsModuleTable()
{
    if (!TableState::lock().isMine())
        return false;
    gyxLog("source/debugserverqueue", __LINE__,
           "++++ a question from inside a callback of the library gets no answer\n");
    return true;
}

const Refusals &boxRefusals()
{
    static const auto *texts = new Refusals{
        QStringLiteral("++++ message boxes are not usable outside an QT application!"),
        QStringLiteral("++++ for correct usage of message boxes, you have to call Debug::setGuiThreadId()!"),
        QStringLiteral("++++ trying to use a messagebox without having a running event loop!")};
    return *texts;
}

const Refusals &fileRefusals()
{
    static const auto *texts = new Refusals{
        QStringLiteral("++++ file selectors boxes are not usable outside an QT application!"),
        QStringLiteral("++++ for correct usage of file selectors, you have to call Debug::setGuiThreadId()!"),
        QStringLiteral("++++ trying to use a file selector without having a running event loop!")};
    return *texts;
}

/// Posts a request that carries an answer and waits for it; nothing if the loop has ended meanwhile.
template <typename Value, typename Request>
std::optional<Value> askGuiThread(std::unique_ptr<Request> request, Value preset)
{
    auto answer = std::make_shared<Answer<Value>>(std::move(preset));
    request->answer.carry(answer);
    if (!guibridge::postRequest(std::move(request)))
        return std::nullopt;
    return answer->wait();
}

int doMessageBox(std::unique_ptr<BoxMsg> request)
{
    if (!canAsk(boxRefusals()))
        return boxcodes::noAnswer;
    if (DebugServerQueue *const queue = guibridge::queueHere())
        return queue->boxes().show(request->content);
    if (holdsModuleTable()) {
        if (request->content.modal)
            guibridge::post(std::move(request)); // shown later; its user closes it
        return boxcodes::noAnswer;
    }
    const std::optional<int> answer = askGuiThread(std::move(request), boxcodes::noAnswer);
    if (!answer)
        libraryNotice(boxRefusals().noEventLoop);
    return answer.value_or(boxcodes::noAnswer);
}

/// The last chosen path of the process.
struct ChosenPath
{
    platform::Mutex lock;
    QString path ZORVAN_GUARDED_BY(lock);
};

ChosenPath &chosenPath()
{
    static auto *chosen = new ChosenPath;
    return *chosen;
}

void setChosenPath(const QString &path)
{
    const platform::Locked guard(chosenPath().lock);
    chosenPath().path = path;
}

/// A copy for the calling thread, so that no other thread changes it under its eyes.
const QString &chosenPathOfThread()
{
    thread_local QString path;
    const platform::Locked guard(chosenPath().lock);
    path = chosenPath().path;
    return path;
}

void doFileSelect(FileQuestion question)
{
    if (!canAsk(fileRefusals()))
        return;
    if (guibridge::isGuiThread()) {
        setChosenPath(BoxPresenter::selectFile(question));
        return;
    }
    if (holdsModuleTable())
        return;
    auto request = std::make_unique<FileSelectMsg>(std::move(question));
    if (const std::optional<QString> path = askGuiThread(std::move(request), QString()))
        setChosenPath(*path);
    else
        libraryNotice(fileRefusals().noEventLoop);
}

} // namespace

int Debug::debugMessageBox(const QString &caption, const QString &heading, const QString &message, bool modal,
                           int icon, int button0, int button1, int button2)
{
    if (TableState::hasGlobalReceiver())
        return boxesAreOff;
    inform(caption, QLatin1String("<h3>") + heading + QLatin1String("</h3>") + message);
    if (!isOn("enableMessageBoxes"))
        return boxesAreOff;
    return doMessageBox(std::make_unique<BoxMsg>(
        BoxContent{caption, heading, message, modal, icon, {button0, button1, button2}}));
}

int Debug::debugMessageBox(const QString &caption, const QString &message, bool modal, int icon, int button0,
                           int button1, int button2)
{
    if (TableState::hasGlobalReceiver())
        return boxesAreOff;
    inform(caption, message);
    if (!isOn("enableMessageBoxes"))
        return boxesAreOff;
    return doMessageBox(std::make_unique<BoxMsg>(
        BoxContent{caption, QString(), message, modal, icon, {button0, button1, button2}}));
}

void Debug::removeMessageBox(int id)
{
    if (TableState::hasGlobalReceiver() || !isOn("enableMessageBoxes"))
        return;
    if (guibridge::usingQt() && guibridge::eventLoopRunning())
        guibridge::post(std::make_unique<RemoveMsg>(id));
    else
        libraryNotice(boxRefusals().noQt);
}

const QString &Debug::debugFileSelect(const QString &caption, const QString &directory, const QString &filter)
{
    if (!TableState::hasGlobalReceiver() && isOn("enableFileSelect"))
        doFileSelect({caption, directory, filter});
    return chosenPathOfThread();
}

} // namespace Zorvan
