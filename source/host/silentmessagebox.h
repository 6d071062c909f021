#pragma once

#include <zorvan/debug.h>

namespace Zorvan {

/// Stands in for the message boxes where the host forbids them: swallows every text.
class silentMessageBox final : public IMessageBoxInterface
{
public:
    void showMessage(const QString &text) override;

    /// The one object, alive until the process ends: it has no state.
    static silentMessageBox *instance();
};

} // namespace Zorvan
