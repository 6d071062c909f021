#include "debugwindow/analyzeractions.h"

#include <QWidget>

namespace Zorvan {

AnalyzerActions::AnalyzerActions(QWidget &window, HandlerReports &)
    : QObject(&window)
{}

AnalyzerActions::~AnalyzerActions() = default;

void AnalyzerActions::openMenu(const QPoint &) {}

void AnalyzerActions::setOutputFont(const QFont &) {}

QString AnalyzerActions::place(const QString &stored) const
{
    return stored;
}

void AnalyzerActions::hideResults() {}

void AnalyzerActions::beginReport(qint64, quint64, quint64) {}

void AnalyzerActions::addRow(const char *, quint64, int, qint64, qint64) {}

void AnalyzerActions::endReport() {}

} // namespace Zorvan
