#pragma once

/// What stands where in a message box, and the markup around it. No widgets.

#include <QString>

class QColor;
class QTextDocument;

namespace Zorvan {

struct BoxText
{
    QString heading; ///< for a label that tells rich text by Qt::mightBeRichText(); empty: none
    QString body; ///< as it came; empty: none
    bool bodyIsMarkup = false; ///< the body is cut from a rich text: entities in it are to be read
};

/// Finds the heading and the body of a box.
///
/// A rich message may bring a heading of its own: all up to the end of its first "<h1>" to "<h5>" (lower
/// case). A message that has none, in a box without a heading, is the heading itself.
[[nodiscard]] BoxText splitBoxText(const QString &heading, const QString &message);

/// What the text area shows: the body alone, or the heading above it when it finds no room elsewhere.
enum class TextPart { Body, All };

/// The text area's content on a ground of the given colour. Plain text has a table row for each line.
[[nodiscard]] QString boxHtml(const BoxText &text, TextPart part, const QColor &ground);
/// Fills the document with it, less the gaps that Qt leaves between such rows.
void fillBoxDocument(QTextDocument &document, const BoxText &text, TextPart part, const QColor &ground);

} // namespace Zorvan
