// The message view: what asks the user something first.

#include "debugwindow/markerfile.h"
#include "debugwindow/paintedline.h"
#include "debugwindow/protocolwidget.h"
#include "debugwindow/rowcopy.h"
#include "settingsdialog/questions.h"

#include <QPointer>
#include <QScrollBar>

#include <algorithm>
#include <limits>

namespace Zorvan {

namespace {

constexpr int longestPreset = 1024; // characters

} // namespace

/// None: cancelled, or this view is gone.
template <typename Question>
std::optional<QString> QProtocolWidget::ask(const Question &question)
{
    const QPointer<QProtocolWidget> kept(this);
    Q_EMIT modalStateChanged(true);
    std::optional<QString> answer = question();
    if (kept)
        Q_EMIT modalStateChanged(false);
    return kept ? answer : std::nullopt;
}

std::optional<QString> QProtocolWidget::askForText(const QString &title, const QString &label,
                                                   const QString &preset)
{
    return ask([&] { return questions::askForText(this, title, label, preset); });
}

std::optional<QString> QProtocolWidget::askForMarkerFile(const QString &title, QFileDialog::AcceptMode mode)
{
    questions::FileQuestion question{title, tr("Debug Server Output Filter (*.dbgfilt)"), mode};
    question.suffix = QStringLiteral("dbgfilt");
    question.suffixCase = Qt::CaseSensitive; // as markerfile::withSuffix() has it
    return ask([&] { return questions::askForFile(this, question); });
}

/// As it is painted, without colour sequences: a marker with one would hardly be in any other line. Only the
/// beginning: the selection may have gigabytes.
QString QProtocolWidget::firstSelectedLine() const
{
    if (!m_selection.isActive())
        return QString();
    const TextPosition last = m_selection.last();
    const std::int64_t endRow = std::min<std::int64_t>(last.row + 1, m_buffer.rowCount());
    QString text;
    for (TextPosition from = m_selection.first(); from.row < endRow && text.isEmpty();
         from = {from.row + 1, 0}) {
        Selection line;
        line.begin(from);
        line.extendTo(std::min(last, TextPosition{from.row, from.column + longestPreset}));
        text = copiedText(m_buffer, line).left(longestPreset);
    }
    const QByteArray bytes = text.toLatin1();
    PaintedLine painted;
    painted.set({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    return QString::fromLatin1(painted.text().data(), static_cast<int>(painted.text().size()));
}

void QProtocolWidget::find()
{
    const QString lastText = m_searchText ? m_searchText->text() : QString();
    const std::optional<QString> answer =
        askForText(tr("Find"), tr("Find Text:"), m_selection.isActive() ? firstSelectedLine() : lastText);
    if (!answer)
        return;
    m_selection.clear();
    m_searchText.reset();
    if (answer->isEmpty())
        m_foundRow = -1;
    else
        showFound(m_buffer.findDown(m_searchText.emplace(*answer), 0));
    repaintRows();
}

void QProtocolWidget::findNext()
{
    if (m_searchText)
        showFound(m_buffer.findDown(*m_searchText, m_foundRow + 1));
}

void QProtocolWidget::findPrevious()
{
    if (m_searchText)
        showFound(m_buffer.findUp(*m_searchText, m_foundRow - 1));
}

/// -1: nothing was found, the last one stays.
void QProtocolWidget::showFound(std::int64_t row)
{
    if (row < 0)
        return;
    m_foundRow = row;
    scrollTo(row);
    repaintRows();
}

void QProtocolWidget::scrollTo(std::int64_t row)
{
    const VisibleRows rows = visibleRows();
    if (row >= rows.first && row < rows.first + rows.count)
        return;
    const std::int64_t value = scrollValueFor(row, m_buffer.rowCount(), fittingRows());
    verticalScrollBar()->setValue(
        static_cast<int>(std::clamp<std::int64_t>(value, 0, verticalScrollBar()->maximum())));
}

void QProtocolWidget::gotoLine()
{
    const QString preset = m_selection.isActive() ? QString::number(m_selection.start().row) : QString();
    const std::optional<QString> answer = askForText(tr("Goto Line"), tr("Goto Line:"), preset);
    if (answer && !answer->isEmpty())
        scrollTo(answer->toInt());
}

void QProtocolWidget::addMarker()
{
    const std::optional<QString> answer =
        askForText(tr("Add Pattern"), tr("Output Contains:"), firstSelectedLine());
    if (!answer || answer->isEmpty())
        return;
    m_buffer.addPattern(*answer);
    markersChanged();
}

void QProtocolWidget::removeMarker()
{
    const std::optional<QString> answer =
        askForText(tr("Remove Pattern"), tr("Output Contains:"), firstSelectedLine());
    if (!answer || answer->isEmpty())
        return;
    m_buffer.removePattern(*answer);
    markersChanged();
}

void QProtocolWidget::clearMarkers()
{
    m_buffer.clearPatterns();
    markersChanged();
}

/// There may be more rows now; the view stays where it is.
void QProtocolWidget::markersChanged()
{
    m_selection.clear();
    fitScrollBar();
    repaintRows();
}

void QProtocolWidget::saveMarkers()
{
    const std::optional<QString> path =
        askForMarkerFile(tr("Save Output Filter as..."), QFileDialog::AcceptSave);
    if (path)
        markerfile::save(markerfile::withSuffix(*path), m_buffer.patterns());
}

/// The whole line becomes one marker, which is found in no line if there is a line feed behind it.
void QProtocolWidget::loadMarkers()
{
    const std::optional<QString> path =
        askForMarkerFile(tr("Load Output Filter..."), QFileDialog::AcceptOpen);
    const QString marker = path ? markerfile::load(*path) : QString();
    if (marker.isEmpty())
        return; // would mark every line
    m_buffer.addPattern(marker);
    fitScrollBar();
    repaintRows();
}

void QProtocolWidget::askForExtraLines()
{
    const std::optional<QString> answer = askForText(tr("Extra Lines"), tr("Display Lines Around Marker:"),
                                                     QString::number(m_buffer.extraLines()));
    if (!answer || answer->isEmpty())
        return;
    constexpr qulonglong most = std::numeric_limits<std::int64_t>::max();
    m_buffer.setExtraLines(static_cast<std::int64_t>(std::min(answer->toULongLong(), most)));
    updateScrollRange();
}

} // namespace Zorvan
