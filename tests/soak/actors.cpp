#include "actors.h"

#include "support/guiapplication.h"

#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <random>
#include <thread>
#include <unistd.h>

namespace Zorvan::soak {

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr int modules = 4;
constexpr int firstModule = 2; // that is there from the start
constexpr int buttonsYesNo = 4;
constexpr int yes = 3, no = 4;

class CountingHook : public IHookInterface
{
public:
    void hookActivated(char * /*key*/, char * /*parameters*/) override { ++m_calls; }
    [[nodiscard]] std::uint64_t calls() const { return m_calls; }

private:
    std::atomic<std::uint64_t> m_calls{0};
};

class CallableObject : public QObject
{
public:
    CountingHook hook;
    void called(char *key, char *parameters) { hook.hookActivated(key, parameters); }
};

// They outlive every activation.
CountingHook s_remoteHook, s_threadedHook, s_plainHook;
CallableObject s_object;
std::atomic<std::uint64_t> s_activations{0}; // of each of the latter three
std::atomic<std::uint64_t> s_certainCalls{0}; // activations while the library was certainly up

void plainHook(char *key, char *parameters)
{
    s_plainHook.hookActivated(key, parameters);
}

/// Prints lines of one kind as one message; returns the first of them.
LineId printMessage(Round &round, std::size_t thread, Tail tail, int lineCount)
{
    std::vector<LineId> ids;
    std::string text;
    for (int i = 0; i < lineCount; ++i) {
        ids.push_back(round.ledger.produce(thread, tail));
        text += (i > 0 ? "\n" : "") + textOf(ids.back());
    }
    const int module = firstModule + static_cast<int>(thread) % modules;
    const auto file = round.file.watch();
    const auto library = round.library.watch();
    Debug::println(module, 0, QString::fromStdString(text), tail == Tail::AboveLevel ? 3 : 0);
    for (const LineId id : ids)
        round.ledger.printed(id, file(), library());
    return ids.front();
}

/// A fault of the file's place that comes and goes.
Step placeActor(Round &round, const std::string &name, std::function<void()> breakIt,
                std::function<void()> mendIt)
{
    return [=, &round] {
        const std::lock_guard guard(round.filePlace);
        round.file.set(Circumstance::Changing);
        breakIt();
        round.file.set(Circumstance::Bad);
        std::this_thread::sleep_for(30ms);
        round.file.set(Circumstance::Changing);
        mendIt();
        round.file.set(Circumstance::Good);
        count(name);
        return 80ms;
    };
}

} // namespace

Step producer(Round &round, std::size_t thread, unsigned seed)
{
    return [&round, thread, random = std::minstd_rand(seed)]() mutable {
        const auto dice = random() % 100;
        const Tail tail = dice < 8 ? Tail::AboveLevel : dice < 16 ? Tail::Filtered : Tail::Kept;
        printMessage(round, thread, tail, dice % 10 == 0 ? 3 : 1);
        return std::chrono::milliseconds(dice % 4 == 0 ? random() % 4 : 0);
    };
}

std::int64_t printFence(Round &round)
{
    return round.ledger.tapOrderOf(printMessage(round, 0, Tail::Kept, 1));
}

Step hookActor(Round &round)
{
    return [&round] {
        CountingHook direct;
        const auto library = round.library.watch();
        Debug::installHook("soak_direct", &direct, true);
        for (int i = 0; i < 3; ++i)
            Debug::activateHooks("soak_direct", "value");
        Debug::removeHook("soak_direct", &direct);
        if (library() == Circumstance::Good && direct.calls() != 3)
            count("!direct hooks lost or doubled");
        Debug::installHook("soak_thread", &s_threadedHook, false);
        Debug::installCHookHandler("soak_plain", plainHook);
        Debug::installCppHookHandler("soak_object", &s_object,
                                     static_cast<void (QObject::*)(char *, char *)>(&CallableObject::called));
        ++s_activations;
        for (const char *const key : {"soak_thread", "soak_plain", "soak_object"})
            Debug::activateHooks(key, "value");
        s_certainCalls += library() == Circumstance::Good ? 1 : 0;
        Debug::removeHook("soak_thread", &s_threadedHook);
        Debug::removeCHookHandler("soak_plain", nullptr);
        Debug::removeCppHookHandler("soak_object", &s_object, nullptr);
        count("hook rounds");
        return 10ms;
    };
}

void installRemoteHook()
{
    Debug::installHook("soak_remote", &s_remoteHook, true);
}

void checkHooks()
{
    for (const CountingHook *const hook : {&s_threadedHook, &s_plainHook, &s_object.hook}) {
        if (hook->calls() < s_certainCalls || hook->calls() > s_activations)
            count("!hooks lost or doubled");
    }
    if (s_remoteHook.calls() > counted("remote hooks asked for"))
        count("!remote hooks doubled");
}

Step boxActor(Round &round)
{
    return [&round, button = yes]() mutable {
        button = button == yes ? no : yes;
        const auto loop = round.loop.watch();
        const auto caption = QStringLiteral("soak %1").arg(button);
        const int answer = Debug::debugMessageBox(caption, QStringLiteral("heading"), QStringLiteral("text"),
                                                  true, buttonsYesNo, yes, no, 0);
        if (answer == button)
            count("boxes answered");
        else if (answer == -1 && loop() != Circumstance::Good)
            count("accounted: boxes without a loop");
        else
            count("!boxes with a wrong answer");
        const int id =
            Debug::debugMessageBox(QStringLiteral("stays"), QStringLiteral("text"), false, 1, 1, 0, 0);
        Debug::removeMessageBox(id);
        return 20ms;
    };
}

void answerBoxes()
{
    for (QDialog *const box : test::openDialogs()) {
        if (box->windowTitle().startsWith(QLatin1String("soak "))) {
            test::clickButton(*box, box->windowTitle().endsWith(QString::number(yes)) ? "Yes" : "No");
            return; // the others may have gone with it
        }
    }
}

std::string nextName(const std::string &stem)
{
    static std::atomic<int> last{1'000'000};
    return stem + '.' + std::to_string(++last);
}

Step folderActor(Round &round, const std::string &folder)
{
    const auto gone = std::make_shared<std::string>();
    const auto take = [=] {
        std::error_code ignored;
        *gone = nextName(folder);
        fs::rename(folder, *gone, ignored);
    };
    const auto bringBack = [=, isNew = false]() mutable {
        std::error_code ignored;
        isNew = !isNew;
        if (isNew)
            fs::create_directory(folder, ignored);
        else
            fs::rename(*gone, folder, ignored);
    };
    return placeActor(round, "folder removed", take, bringBack);
}

Step diskActor(Round &round, const std::string &file)
{
    const std::string ballast = file + ".ballast";
    const auto fill = [=] {
        const int filling = open(ballast.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        const std::vector<char> bytes(65536, 'x');
        for (std::size_t size = bytes.size(); size > 0; size /= 16)
            while (write(filling, bytes.data(), size) > 0) {}
        close(filling);
    };
    return placeActor(round, "disk filled (tmpfs)", fill, [=] { fs::remove(ballast); });
}

Step deviceActor(Round &round, const std::string &file)
{
    const auto lead = [=] {
        std::error_code ignored;
        fs::rename(file, nextName(fs::path(file).parent_path()), ignored);
        fs::create_symlink("/dev/full", file, ignored);
    };
    return placeActor(round, "disk filled (/dev/full)", lead, [=] { fs::remove(file); });
}

Step clockActor()
{
    return [isBack = false]() mutable {
        constexpr long hour = 3600;
        isBack = !isBack;
        shiftClock(isBack ? -24 * hour : hour);
        count("clock set");
        return 50ms;
    };
}

} // namespace Zorvan::soak
