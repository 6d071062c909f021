#include "debugwindow/sourcesdialog.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace Zorvan {

namespace {

constexpr QSize startSize(360, 400);

} // namespace

SourcesDialog::SourcesDialog(const QString &stored, QWidget *parent)
    : QDialog(parent)
    , m_files(new sourceFileList(stored, this))
{
    setWindowTitle(tr("Selected source files"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *const buttons = new QDialogButtonBox(this);
    QPushButton *const ok = buttons->addButton(tr("Ok"), QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    // To choose none out of no files would hide all that are measured later.
    ok->setEnabled(!stored.isEmpty());
    connect(m_files->model(), &QAbstractItemModel::rowsInserted, ok, [ok] { ok->setEnabled(true); });
    buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_files, 1);
    rows->addWidget(buttons);
    m_files->setToolTip(tr("The context menu checks all files or none"));
    m_files->setFocus();
    if (parent)
        setFont(parent->font()); // that of the interface; dialogs inherit none
    resize(startSize);
}

} // namespace Zorvan
