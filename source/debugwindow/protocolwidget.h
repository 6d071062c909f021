#pragma once

#include "debugwindow/filteredtextbuffer.h"
#include "debugwindow/latinfont.h"
#include "debugwindow/rowpainter.h"
#include "debugwindow/selection.h"
#include "platform/memory.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QFileDialog>

#include <optional>
#include <string_view>
#include <utility>

namespace Zorvan {

/// Tells what platform::availablePhysicalMemory() does. A test has one that changes.
using AvailableMemory = std::uint64_t (*)();

/// The message view of the debug window: shows the lines of its buffer and lets the user search, mark, select
/// and copy them. It fetches and paints only the rows that are to be seen, so that millions of lines cost no
/// more than a few.
///
/// Row i of those that are shown has its baseline at (i + 1) times the line spacing. When rows are added or
/// the view is scrolled, the picture is moved and only what is new is painted.
///
/// The GUI thread only. Its dialogs run event loops of their own, in which the view may be deleted.
class QProtocolWidget : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit QProtocolWidget(QWidget *parent = nullptr,
                             AvailableMemory availableMemory = platform::availablePhysicalMemory);
    ~QProtocolWidget() override;

    /// Appends a line for each piece between line feeds, also for the empty one behind the last. Ends the
    /// selection. Latin-1; a QString's other characters become question marks.
    void appendText(std::string_view text);
    void appendText(const QString &text);

    /// Does what the context menu's entry of that number does, see ViewCommand; nothing for another number.
    /// May show a dialog and wait for the user.
    void command(int code);

    /// Fits the scroll bar to the number of rows; with auto scroll on, goes to the last one.
    void updateScrollRange();

    [[nodiscard]] CFilteredTextBuffer &buffer() { return m_buffer; }
    [[nodiscard]] const CFilteredTextBuffer &buffer() const { return m_buffer; }
    /// The selected text, or all rows without a selection.
    [[nodiscard]] QString copyText() const;

    /// One of its dialogs or its menu opens, or has been closed.
    Q_SIGNAL void modalStateChanged(bool open);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    /// What decides where the rows are in the picture.
    struct Picture
    {
        int fittingRows = -1; ///< -1: nothing in the picture can be used again
        std::int64_t firstRow = 0;
        std::int64_t rowCount = 0;
        int numberColumn = 0; ///< pixels
    };
    /// Of the screen, in dots per inch and device pixels per pixel.
    using Resolution = std::pair<int, qreal>;

    void checkMemory();
    void fitScrollBar();
    void followRows();

    void clear();
    void selectAll();
    void clearSelection();
    void copy();
    void copy(const Selection &selection);
    void find();
    void findNext();
    void findPrevious();
    void gotoLine();
    void addMarker();
    void removeMarker();
    void clearMarkers();
    void saveMarkers();
    void loadMarkers();
    void toggleLineNumbers();
    void toggleAutoScroll();
    void toggleMarkedOutputOnly();
    void askForExtraLines();

    template <typename Question>
    std::optional<QString> ask(const Question &question);
    std::optional<QString> askForText(const QString &title, const QString &label, const QString &preset);
    std::optional<QString> askForMarkerFile(const QString &title, QFileDialog::AcceptMode mode);
    [[nodiscard]] QString firstSelectedLine() const;
    void markersChanged();
    void showFound(std::int64_t row);
    void scrollTo(std::int64_t row);

    bool scrollByKey(const QKeyEvent &event);
    void scrollByRow(int direction);
    void drag();
    [[nodiscard]] TextPosition positionAt(QPoint point) const;

    [[nodiscard]] Resolution resolution() const;
    void renewFont();
    [[nodiscard]] int fittingRows() const;
    [[nodiscard]] VisibleRows visibleRows() const;
    [[nodiscard]] RowsToPaint rowsToPaint() const;
    [[nodiscard]] Picture picture() const;
    void repaintRows();
    void showNewRows();
    void movePicture(int rows);
    void paintLater(std::int64_t firstLine, std::int64_t endLine);

    const AvailableMemory m_availableMemory;
    CFilteredTextBuffer m_buffer;
    std::int64_t m_linesSinceMemoryCheck = 0;
    LatinFont m_font;
    Resolution m_resolution; // for which the font was measured
    Picture m_picture; // as it is on the screen, or will be when all that is to be painted has been

    Selection m_selection;
    QPoint m_pressPosition;
    QPoint m_dragPosition;
    QBasicTimer m_dragTimer; // while the button is held outside

    std::optional<TextPattern> m_searchText; // not empty
    std::int64_t m_foundRow = -1;
    bool m_showLineNumbers = false;
    bool m_autoScroll = true;
};

} // namespace Zorvan
