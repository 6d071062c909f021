#pragma once

#include "debugwindow/sourcefilelist.h"

#include <QDialog>

namespace Zorvan {

/// Lets the user choose the source files that reports of the analysis tools speak of.
class SourcesDialog : public QDialog
{
    Q_OBJECT

public:
    SourcesDialog(const QString &stored, QWidget *parent);

    [[nodiscard]] sourceFileList &files() { return *m_files; }
    [[nodiscard]] QString selection() const { return m_files->selection(); }

private:
    sourceFileList *const m_files;
};

} // namespace Zorvan
