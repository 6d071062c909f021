#pragma once

#include <QDialog>
#include <QPointer>

#include <optional>

namespace Zorvan {

/// Runs a dialog that was made with new, and deletes it; \a answer reads what was entered, if it was
/// accepted. The dialog's parent may be deleted meanwhile, and the dialog with it: that is no answer.
template <typename Dialog, typename Answer>
auto runDialog(Dialog *dialog, Answer answer)
{
    const QPointer<Dialog> kept(dialog); // on the stack it would be destroyed twice when its parent goes
    const int result = dialog->exec();
    std::optional<decltype(answer(*dialog))> entered;
    if (kept && result == QDialog::Accepted)
        entered = answer(*kept);
    delete kept;
    return entered;
}

} // namespace Zorvan
