#pragma once

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace Zorvan::test {

/// Windows without a display, unless the environment names a platform; no dialogs of the desktop.
void chooseTestPlatform();

/// A QApplication or QCoreApplication with arguments of its own.
template <typename Application>
class TestApplication
{
public:
    TestApplication()
        : m_application((chooseTestPlatform(), m_count), m_arguments)
    {}

private:
    int m_count = 1;
    char m_name[5] = "test";
    char *m_arguments[2] = {m_name, nullptr};
    Application m_application;
};

/// Runs an event loop until \a holds; false if that takes longer than \a limit.
[[nodiscard]] bool runUntil(const std::function<bool()> &holds,
                            std::chrono::milliseconds limit = std::chrono::seconds(30));
/// Gives the other threads time until \a holds, without handling events.
void waitIdle(const std::function<bool()> &holds);
/// Ends the program: a thread that does not come back cannot be joined.
[[noreturn]] void giveUp(const char *why);

/// Runs \a work in a thread of its own while the event loop of the caller goes on; returns its result.
template <typename Work>
auto inWorker(Work work)
{
    std::optional<decltype(work())> result;
    std::atomic<bool> done{false};
    std::thread worker([&] {
        result = work();
        done = true;
    });
    if (!runUntil([&] { return done.load(); }))
        giveUp("a worker does not come back");
    worker.join();
    return *result;
}

/// The dialogs on the screen, and all there are.
[[nodiscard]] QList<QDialog *> openDialogs();
[[nodiscard]] QList<QDialog *> allDialogs();
/// The texts of the visible buttons from left to right, joined by blanks, without mnemonics.
[[nodiscard]] std::string buttonsOf(const QDialog &dialog);
/// Fails the test if there is no such button.
void clickButton(QDialog &dialog, const char *text);

/// Does something with the popup menu that \a open shows in a loop of its own; \a act has to close it. Fails
/// the test if none is shown.
void inMenu(const std::function<void()> &open, const std::function<void(QMenu &)> &act);
/// Chooses an entry of that menu.
void chooseInMenu(const std::function<void()> &open, const char *entry);

/// The library's debug window; null if there is none.
[[nodiscard]] QWidget *debugWindow();
/// What it shows, as its user copies it.
[[nodiscard]] std::string windowText();

/// Plays the user, in the thread of the application: acts once on each dialog that opens. A dialog that
/// nobody expected is closed and fails the test.
class Robot : public QObject
{
public:
    using Act = std::function<void(QDialog &)>;

    Robot();
    /// What to do with the next dialog that opens; may open further ones.
    void then(Act act) { m_acts.push_back(std::move(act)); }
    void click(const char *button);
    void close();
    void leaveOpen();
    /// Chooses a file in a file dialog.
    void choose(const QString &path);
    [[nodiscard]] std::size_t left() const { return m_acts.size(); }

private:
    void look();

    std::deque<Act> m_acts;
    QTimer m_timer;
};

} // namespace Zorvan::test
