#pragma once

#include <QDialog>

#include <functional>

namespace Zorvan {

/// A dialog that waits for its user, for the scope in which it runs its event loop.
///
/// The end of the library does not wait for users: it closes these dialogs and releases whoever waits for
/// their answers.
class ShownDialog
{
public:
    /// In the GUI thread; \a dialog must outlive this. \a giveUp answers in the user's place, in any thread.
    ShownDialog(QDialog &dialog, std::function<void()> giveUp);
    ~ShownDialog();
    ShownDialog(const ShownDialog &) = delete;
    ShownDialog &operator=(const ShownDialog &) = delete;

    /// Gives up all of them at once, and has the GUI thread close them. Any thread.
    static void endAll();

private:
    QDialog &m_dialog;
    const std::function<void()> m_giveUp;
};

} // namespace Zorvan
