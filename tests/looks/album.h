#pragma once

#include <QDir>
#include <QString>

class QPalette;
class QWidget;

namespace Zorvan::looks {

/// The folder into which the pictures go.
class Album
{
public:
    /// Makes the folder if it does not exist.
    explicit Album(const QString &folder);

    /// Shows the window and draws it, without its frame, into "<name>.png". Prints where its frame would be.
    void add(QWidget &window, const QString &name);
    /// Whether every picture could be written.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }

private:
    QDir m_folder;
    bool m_isComplete = true;
};

[[nodiscard]] QPalette lightPalette();
[[nodiscard]] QPalette darkPalette();

/// \name The kinds of windows
/// @{
void addMessageBoxes(Album &album);
/// @}

} // namespace Zorvan::looks
