#pragma once

#include <QString>

#include <memory>

class QDialog;

/// A dialog with \a text, to be read, scrolled and copied, and the buttons Abort, Retry and Ignore.
[[nodiscard]] std::unique_ptr<QDialog> makeBox(const QString &title, const QString &text);

/// The word for a result of the dialog; "closed" if it was closed without an answer.
[[nodiscard]] const char *answerWord(int result);
