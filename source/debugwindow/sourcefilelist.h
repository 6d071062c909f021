#pragma once

#include <zorvan/debug.h>

#include <QListWidget>
#include <QSet>

namespace Zorvan {

/// The names of source files, sorted, from which the user checks those to be reported. Without a choice made
/// so far all are checked.
class sourceFileList : public QListWidget, public IAnalysisSummaryInterface
{
    Q_OBJECT

public:
    /// \a stored as of selection(). Its names are all listed: a file that was not measured yet keeps its
    /// check.
    sourceFileList(const QString &stored, QWidget *parent);

    /// Lists the file, by the last part of its path, unless it is there.
    void methodInformation(const char *file, int line, const char *methodName) override;

    /// The checked names with ';' between them, as the filter of a report takes them; "<none>" if there are
    /// none.
    [[nodiscard]] QString selection() const;
    void checkAll(Qt::CheckState state);

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void add(const QString &name);

    const bool m_isEverySelected; // no choice was stored
    QSet<QString> m_selected;
    QSet<QString> m_listed;
};

} // namespace Zorvan
