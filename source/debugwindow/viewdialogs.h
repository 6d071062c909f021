#pragma once

#include <QFileDialog>
#include <QString>

#include <optional>

class QWidget;

namespace Zorvan::viewdialogs {

/// \name Questions to the user
/// Each runs an event loop, in which the parent may be deleted: that is no answer, as is a cancelled dialog.
/// @{

[[nodiscard]] std::optional<QString> askForText(QWidget *parent, const QString &title, const QString &label,
                                                const QString &preset);
[[nodiscard]] std::optional<QString> askForMarkerFile(QWidget *parent, const QString &title,
                                                      QFileDialog::AcceptMode mode);

/// @}

} // namespace Zorvan::viewdialogs
