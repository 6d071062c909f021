#include "debugwindow/resultswindow.h"

#include "debugwindow/checkboxdelegate.h"
#include "debugwindow/windowgeometry.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStandardItemModel>

#include <algorithm>
#include <new>
#include <utility>

namespace Zorvan {

namespace {

constexpr int sliceMs = 10; // a user does not feel it
constexpr int rowsAtOnce = 16; // between two looks at the clock
constexpr int measuredRows = 200; // whose contents count for the widths of the columns
constexpr int insertionRole = Qt::UserRole + 1; // to sort by
constexpr int rowPaddingPx = 4;
constexpr int narrowestNamePx = 160;

struct ColumnText
{
    const char *header;
    const char *toolTip;
};

// Beside the columns of the class, in their order.
constexpr ColumnText columnTexts[] = {
    {QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "method name"),
     QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "The method, once for each thread that called it")},
    {QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "calls"),
     QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "How often this thread called it")},
    {QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "% time"),
     QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "Its share of the cycles of all methods in this table")},
    {QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "#s needed"),
     QT_TRANSLATE_NOOP("Zorvan::ResultsWindow",
                       "Processor cycles of a call on average, without measured methods that it calls")},
    {QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "#s overhead"),
     QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "Processor cycles that measuring a call took on average")},
    {QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "thread ID"),
     QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "The system's number of the thread, in hexadecimal digits")},
    {QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", "% CPU"),
     QT_TRANSLATE_NOOP("Zorvan::ResultsWindow",
                       "Its cycles as a share of the cycles between the earliest and the latest call of all "
                       "methods")},
};
static_assert(std::size(columnTexts) == ResultsWindow::columnCount);

QString translated(const char *text)
{
    return QCoreApplication::translate("Zorvan::ResultsWindow", text);
}

QString windowTitle()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName()
        + translated(QT_TRANSLATE_NOOP("Zorvan::ResultsWindow", " code analysis"));
}

/// 0 if there is nothing to divide by.
double quotient(qint64 cycles, double divisor)
{
    return divisor > 0 ? static_cast<double>(cycles) / divisor : 0.0;
}

/// The number in a cell of any column but the names.
double number(const AnalysisReport &report, const MethodRow &row, int column)
{
    switch (column) {
    case ResultsWindow::Calls:
        return row.calls;
    case ResultsWindow::TimeShare:
        return 100.0 * quotient(row.totalCycles, static_cast<double>(report.totalCycles));
    case ResultsWindow::CyclesNeeded:
        return quotient(row.totalCycles, row.calls);
    case ResultsWindow::CyclesOverhead:
        return quotient(row.overheadCycles, row.calls);
    case ResultsWindow::ThreadId:
        return static_cast<double>(row.thread);
    default:
        return 100.0
            * quotient(row.totalCycles,
                       static_cast<double>(report.latestStamp) - static_cast<double>(report.earliestStamp));
    }
}

/// What stands in a cell, as the type by which it is drawn and sorted.
QVariant cell(const AnalysisReport &report, const MethodRow &row, int column)
{
    switch (column) {
    case ResultsWindow::MethodName:
        return QString::fromLatin1(row.name.data(), static_cast<int>(row.name.size()));
    case ResultsWindow::Calls:
        return row.calls;
    case ResultsWindow::ThreadId:
        return row.thread;
    default:
        return number(report, row, column);
    }
}

/// Sorts the rows as the model would: to sort it when it is full takes many times as long.
void sortRows(AnalysisReport &report, int column, Qt::SortOrder order)
{
    const auto sortBy = [&](const auto &isLess) {
        std::stable_sort(
            report.rows.begin(), report.rows.end(), [&](const MethodRow &left, const MethodRow &right) {
                const auto [first, second] = order == Qt::AscendingOrder ? std::make_pair(&left, &right)
                                                                         : std::make_pair(&right, &left);
                return isLess(*first, *second);
            });
    };
    if (column == ResultsWindow::MethodName)
        sortBy([](const MethodRow &left, const MethodRow &right) { return left.name < right.name; });
    else
        sortBy([&](const MethodRow &left, const MethodRow &right) {
            return number(report, left, column) < number(report, right, column);
        });
}

/// Also knows where it was put in.
class Cell : public QStandardItem
{
public:
    explicit Cell(std::size_t number)
        : m_number(number)
    {}
    bool operator<(const QStandardItem &other) const override
    {
        if (model()->sortRole() != insertionRole)
            return QStandardItem::operator<(other);
        return m_number < static_cast<const Cell &>(other).m_number;
    }

private:
    const std::size_t m_number;
};

QList<QStandardItem *> itemsFor(const AnalysisReport &report, const MethodRow &row, std::size_t number)
{
    QList<QStandardItem *> items;
    items.reserve(ResultsWindow::columnCount);
    for (int column = 0; column < ResultsWindow::columnCount; ++column) {
        auto *const item = new Cell(number);
        item->setData(cell(report, row, column), Qt::DisplayRole);
        items += item;
    }
    return items;
}

} // namespace

ResultsWindow::ResultsWindow(const QRect &client)
    : m_restoredPlace(client)
    , m_model(new QStandardItemModel(0, columnCount, this))
{
    setAttribute(Qt::WA_QuitOnClose, false); // the host ends with its own windows
    QTableView::setWindowTitle(Zorvan::windowTitle());
    resize(client.size());
    move(windowgeometry::framePosition(client));
    addHeaders();
    setModel(m_model);
    setItemDelegate(new CheckBoxDelegate(this));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle); // long names differ at their ends
    setTabKeyNavigation(false);
    setFrameShape(QFrame::NoFrame);
    setUpHeaders();
    fitRowHeight();
    m_fillTimer.setInterval(0); // whenever the event loop has nothing else to do
    connect(&m_fillTimer, &QTimer::timeout, this, &ResultsWindow::fillOn);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
            [this] { m_areColumnsTheUsers = m_areColumnsTheUsers || !m_isFitting; });
}

ResultsWindow::~ResultsWindow()
{
    m_fillTimer.stop();
    const QItemSelectionModel *const selected = selectionModel();
    setModel(nullptr);
    delete selected;
    unsort();
}

void ResultsWindow::addHeaders()
{
    for (int column = 0; column < columnCount; ++column) {
        m_model->setHeaderData(column, Qt::Horizontal, translated(columnTexts[column].header));
        m_model->setHeaderData(column, Qt::Horizontal, translated(columnTexts[column].toolTip),
                               Qt::ToolTipRole);
        const Qt::AlignmentFlag side = column == MethodName ? Qt::AlignLeft : Qt::AlignRight;
        m_model->setHeaderData(column, Qt::Horizontal,
                               static_cast<int>(side) | static_cast<int>(Qt::AlignVCenter),
                               Qt::TextAlignmentRole);
    }
}

void ResultsWindow::setUpHeaders()
{
    QHeaderView *const header = horizontalHeader();
    header->setSortIndicator(m_orderedBy, m_order);
    header->setHighlightSections(false);
    header->setResizeContentsPrecision(measuredRows);
    setSortingEnabled(true);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
}

void ResultsWindow::fitRowHeight()
{
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + rowPaddingPx);
}

/// The names get what the numbers leave.
void ResultsWindow::fitColumns()
{
    if (m_areColumnsTheUsers || m_model->rowCount() == 0)
        return;
    m_isFitting = true;
    resizeColumnsToContents();
    for (int column = MethodName + 1; column < columnCount; ++column)
        setColumnWidth(column, qMax(columnWidth(column), neededWidth(column)));
    const int visible = width() - verticalScrollBar()->sizeHint().width();
    const int numbers = horizontalHeader()->length() - columnWidth(MethodName);
    setColumnWidth(MethodName, qMax(narrowestNamePx, visible - numbers));
    m_isFitting = false;
}

/// By the widest number, in whichever row it is.
int ResultsWindow::neededWidth(int column) const
{
    const double widest = m_widest[static_cast<std::size_t>(column)];
    QVariant value = widest;
    if (column == Calls)
        value = static_cast<int>(widest);
    else if (column == ThreadId)
        value = static_cast<quint64>(widest);
    const QString text = CheckBoxDelegate().displayText(value, locale());
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    return fontMetrics().horizontalAdvance(text) + 2 * margin + 1;
}

void ResultsWindow::setReport(AnalysisReport report)
{
    m_report = std::move(report);
    m_filled = 0;
    m_widest = {};
    unsort();
    m_areOldRowsGone = false;
    order();
    m_fillTimer.start();
    fillOn(); // a short one is there at once
}

void ResultsWindow::order()
{
    m_orderedBy = horizontalHeader()->sortIndicatorSection();
    m_order = horizontalHeader()->sortIndicatorOrder();
    sortRows(m_report, m_orderedBy, m_order);
}

/// Brings the rows back into the order in which they came. An item that goes asks where it stands, and the
/// model looks for it from where it was put in: elsewhere that takes as many steps as there are items.
void ResultsWindow::unsort()
{
    try {
        m_model->setSortRole(insertionRole);
        m_model->sort(MethodName);
    } catch (const std::bad_alloc &) {} // it only takes longer then
    m_model->setSortRole(Qt::DisplayRole);
}

void ResultsWindow::fillOn()
{
    QElapsedTimer slice;
    slice.start();
    try {
        while (fillSome()) {
            if (slice.elapsed() >= sliceMs)
                return;
        }
        finish();
    } catch (const std::bad_alloc &) { // the rows so far have to do
        m_fillTimer.stop();
        m_report.rows = {};
    }
}

/// Takes some of the old rows away, or adds some new ones. False: all is done.
bool ResultsWindow::fillSome()
{
    if (!m_areOldRowsGone) {
        const int count = qMin(m_model->rowCount(), 16 * rowsAtOnce);
        m_model->removeRows(m_model->rowCount() - count, count); // cheapest at the end
        m_areOldRowsGone = m_model->rowCount() == 0;
        return true;
    }
    const std::size_t end = std::min(m_report.rows.size(), m_filled + rowsAtOnce);
    for (; m_filled < end; ++m_filled)
        append(m_report.rows[m_filled]);
    return m_filled < m_report.rows.size();
}

void ResultsWindow::append(const MethodRow &row)
{
    m_model->appendRow(itemsFor(m_report, row, m_filled));
    const auto width = [](double number) { return number < 0 ? -10 * number : number; }; // a sign is a digit
    for (int column = MethodName + 1; column < columnCount; ++column) {
        double &widest = m_widest[static_cast<std::size_t>(column)];
        const double here = number(m_report, row, column);
        if (width(here) > width(widest))
            widest = here;
    }
}

void ResultsWindow::finish()
{
    m_fillTimer.stop();
    m_report.rows = {};
    const QHeaderView &header = *horizontalHeader();
    if (header.sortIndicatorSection() != m_orderedBy || header.sortIndicatorOrder() != m_order)
        m_model->sort(header.sortIndicatorSection(), header.sortIndicatorOrder()); // chosen meanwhile
    fitColumns();
}

QRect ResultsWindow::place() const
{
    return windowgeometry::placeOf(*this, m_restoredPlace);
}

void ResultsWindow::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() != QEvent::FontChange)
        return;
    horizontalHeader()->setFont(font()); // the application may have a font for headers, which would win
    fitRowHeight();
    fitColumns();
}

void ResultsWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        copySelected();
    else
        QTableView::keyPressEvent(event);
}

/// As text with tabs, which a spreadsheet takes.
void ResultsWindow::copySelected() const
{
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    const CheckBoxDelegate delegate;
    QStringList lines;
    for (const QModelIndex &row : std::as_const(rows)) {
        QStringList cells;
        for (int column = 0; column < columnCount; ++column)
            cells += delegate.displayText(row.siblingAtColumn(column).data(), locale());
        lines += cells.join(QLatin1Char('\t'));
    }
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

} // namespace Zorvan
