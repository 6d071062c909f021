#include "debugserverqueue/showndialog.h"

#include "platform/lock.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Zorvan {

namespace {

struct ShownDialogs
{
    platform::Mutex lock;
    std::vector<ShownDialog *> all ZORVAN_GUARDED_BY(lock);
};

/// Never destroyed: a library that ends with static objects looks here, too.
ShownDialogs &shownDialogs()
{
    static auto *const dialogs = new ShownDialogs;
    return *dialogs;
}

} // namespace

ShownDialog::ShownDialog(QDialog &dialog, std::function<void()> giveUp)
    : m_dialog(dialog)
    , m_giveUp(std::move(giveUp))
{
    const platform::Locked guard(shownDialogs().lock);
    shownDialogs().all.push_back(this);
}

ShownDialog::~ShownDialog()
{
    const platform::Locked guard(shownDialogs().lock);
    auto &all = shownDialogs().all;
    all.erase(std::find(all.begin(), all.end(), this));
}

void ShownDialog::endAll()
{
    const platform::Locked guard(shownDialogs().lock);
    for (const ShownDialog *const shown : shownDialogs().all) {
        shown->m_giveUp();
        QMetaObject::invokeMethod(&shown->m_dialog, &QDialog::reject, Qt::QueuedConnection);
    }
}

} // namespace Zorvan
