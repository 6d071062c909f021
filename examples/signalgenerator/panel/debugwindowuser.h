#pragma once

#include <QString>

/// Uses the debug window of the library as a person would, by keys and by what is to be read in it: hosts do
/// not know its class.
namespace SignalGenerator::DebugWindowUser {

[[nodiscard]] bool isShown();
/// It goes on collecting lines. True also if there is none.
bool close();
/// Ctrl and \a key, for the messages. Returns before it takes effect: it may open a dialog.
bool press(Qt::Key key);
/// Answers the dialog that asks for a text, if it is there.
bool enter(const QString &text);
[[nodiscard]] bool isAsking();

/// What the button "Clear Log" says of the lines in the window.
[[nodiscard]] QString lineCount();
bool savePicture(const QString &path);
/// All lines, by way of the clipboard.
bool saveText(const QString &path);

} // namespace SignalGenerator::DebugWindowUser
