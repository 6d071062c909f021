#pragma once

#include "debugwindow/analysisreports.h"

#include <QTableView>
#include <QTimer>

#include <array>

class QStandardItemModel;

namespace Zorvan {

/// The table of method times: a window of its own, which a user may sort, and copy rows from.
///
/// A long report is filled in while the event loop goes on, some milliseconds at a time.
class ResultsWindow : public QTableView
{
    Q_OBJECT

public:
    enum Column : int {
        MethodName,
        Calls,
        TimeShare,
        CyclesNeeded,
        CyclesOverhead,
        ThreadId,
        ProcessorShare,
        columnCount,
    };

    /// \a client: where the window is to be, without its frame.
    explicit ResultsWindow(const QRect &client);
    ~ResultsWindow() override;
    Q_DISABLE_COPY(ResultsWindow)

    /// Takes the place of the report before, also of one that is still being filled in.
    void setReport(AnalysisReport report);
    [[nodiscard]] bool isFilling() const { return m_fillTimer.isActive(); }
    /// The client rectangle for the next start.
    [[nodiscard]] QRect place() const;

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void addHeaders();
    void setUpHeaders();
    void fitRowHeight();
    void fitColumns();
    [[nodiscard]] int neededWidth(int column) const;
    void order();
    void unsort();
    void fillOn();
    [[nodiscard]] bool fillSome();
    void append(const MethodRow &row);
    void finish();
    void copySelected() const;

    const QRect m_restoredPlace;
    QStandardItemModel *const m_model;
    AnalysisReport m_report; // what is being filled in
    std::size_t m_filled = 0; // rows of it
    bool m_areOldRowsGone = false;
    int m_orderedBy = TimeShare;
    Qt::SortOrder m_order = Qt::DescendingOrder;
    std::array<double, columnCount> m_widest{}; // number of each column
    bool m_isFitting = false;
    bool m_areColumnsTheUsers = false; // who has made one wider or narrower
    QTimer m_fillTimer;
};

} // namespace Zorvan
