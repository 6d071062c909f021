#include "debugserverqueue/boxtext.h"

#include <QColor>
#include <QRegularExpression>
#include <QStringList>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

#include <vector>

namespace Zorvan {

namespace {

constexpr int scrollBarGapPx = 4;

QString asTitle(const QString &markup)
{
    return QStringLiteral("<center><h3>") + markup + QStringLiteral("</h3></center>");
}

/// How much of a rich text ends with its first heading; 0 if it has none.
int ownHeadingLength(const QString &message)
{
    const QLatin1String opening("<h");
    for (int at = message.indexOf(opening); at >= 0; at = message.indexOf(opening, at + 1)) {
        const QChar digit = message.size() > at + 2 ? message.at(at + 2) : QChar();
        if (digit < QLatin1Char('1') || digit > QLatin1Char('5'))
            continue;
        const QString closing = QStringLiteral("</h") + digit + QLatin1Char('>');
        const int end = message.indexOf(closing, at);
        return end < 0 ? 0 : end + closing.size();
    }
    return 0;
}

/// Plain text as markup that shows every character of it, runs of blanks included.
QString escaped(const QString &plain)
{
    QString markup = plain.toHtmlEscaped();
    markup.replace(QLatin1Char('\t'), QLatin1String("    "));
    QChar previous = QLatin1Char(' ');
    for (QChar &character : markup) {
        if (character == QLatin1Char(' ') && previous == QLatin1Char(' '))
            character = QChar::Nbsp;
        previous = character == QChar::Nbsp ? QLatin1Char(' ') : character;
    }
    return markup;
}

QString titleOf(const QString &heading)
{
    if (Qt::mightBeRichText(heading))
        return heading;
    return asTitle(escaped(heading).replace(QLatin1Char('\n'), QLatin1String("<br>")));
}

/// A line of rich text: a bracket that begins no tag stands for itself.
QString completed(QString markup)
{
    static const QRegularExpression bracket(QStringLiteral("<(?![A-Za-z/!])"));
    return markup.replace(bracket, QStringLiteral("&lt;"));
}

/// A table with a row for each line, so that lines stay lines.
QString rows(const QString &text, bool isMarkup)
{
    QString table = QStringLiteral("<table>");
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        table += QLatin1String("<center><tr><td>") + (isMarkup ? completed(line) : escaped(line))
            + QLatin1String("</td></tr></center>");
    }
    return table + QLatin1String("</table>");
}

bool becomesRows(const QString &text)
{
    return !text.isEmpty() && !Qt::mightBeRichText(text);
}

QString markupOf(const QString &text, bool isMarkup)
{
    return becomesRows(text) ? rows(text, isMarkup) : text;
}

bool isEmptyBlock(const QTextFrame::iterator &place)
{
    return place.currentBlock().isValid() && place.currentBlock().length() == 1;
}

/// Where blocks end that are to be joined with the one behind: the empty ones that Qt makes of the tags
/// around the rows. One has to stay before a table and takes no room there.
std::vector<int> endsOfNeedlessBlocks(const QTextDocument &document)
{
    std::vector<int> ends;
    QTextFrame::iterator place = document.rootFrame()->begin();
    while (!place.atEnd()) {
        const QTextFrame::iterator current = place++;
        if (const auto *const table = qobject_cast<QTextTable *>(current.currentFrame())) {
            for (int row = 0; row < table->rows(); ++row) {
                const QTextTableCell cell = table->cellAt(row, 0);
                const QTextBlock last = cell.lastCursorPosition().block();
                if (last.length() == 1 && last != cell.firstCursorPosition().block())
                    ends.push_back(last.position() - 1);
            }
        } else if (isEmptyBlock(current) && !place.atEnd() && isEmptyBlock(place)) {
            ends.push_back(current.currentBlock().position());
        }
    }
    return ends;
}

void closeGapsBetweenRows(QTextDocument &document)
{
    const std::vector<int> ends = endsOfNeedlessBlocks(document);
    QTextCursor editor(&document);
    editor.beginEditBlock();
    for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
        editor.setPosition(*end);
        editor.deleteChar();
    }
    for (QTextFrame *const frame : document.rootFrame()->childFrames()) {
        if (auto *const table = qobject_cast<QTextTable *>(frame)) {
            QTextTableFormat format = table->format();
            format.setCellSpacing(0);
            table->setFormat(format);
        }
    }
    editor.endEditBlock();
}

bool isBlank(const QString &text)
{
    return text.trimmed().isEmpty();
}

} // namespace

BoxText splitBoxText(const QString &heading, const QString &message)
{
    const bool isRich = Qt::mightBeRichText(message);
    const int ownLength = isRich ? ownHeadingLength(message) : 0;
    QString rest = message.mid(ownLength);
    if (isBlank(rest))
        rest.clear();

    if (!heading.isEmpty())
        return {titleOf(heading), rest, isRich};
    if (ownLength == 0)
        return {message, {}, false};
    const QString own = message.left(ownLength);
    return {rest.isEmpty() ? own : asTitle(own), rest, true};
}

QString boxHtml(const BoxText &text, TextPart part, const QColor &ground)
{
    QString content = markupOf(text.body, text.bodyIsMarkup);
    if (part == TextPart::All)
        content.prepend(markupOf(text.heading, false));
    return QStringLiteral("<body bgcolor=") + ground.name() + QLatin1Char('>') + content
        + QLatin1String("</body>");
}

void fillBoxDocument(QTextDocument &document, const BoxText &text, TextPart part, const QColor &ground)
{
    document.setHtml(boxHtml(text, part, ground));
    QTextFrameFormat page = document.rootFrame()->frameFormat();
    page.setRightMargin(scrollBarGapPx);
    document.rootFrame()->setFrameFormat(page);
    if (becomesRows(text.body) || (part == TextPart::All && becomesRows(text.heading)))
        closeGapsBetweenRows(document);
}

} // namespace Zorvan
