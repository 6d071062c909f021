#include "host/silentmessagebox.h"

namespace Zorvan {

void silentMessageBox::showMessage(const QString &) {}

silentMessageBox *silentMessageBox::instance()
{
    static auto *box = new silentMessageBox; // never destroyed: the host's threads may still ask for boxes
    return box;
}

} // namespace Zorvan
