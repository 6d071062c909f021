#include "debugwindow/sourcefilelist.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>

namespace Zorvan {

namespace {

constexpr QChar separator = QLatin1Char(';');
constexpr int selectAllCommand = 4096;
constexpr int selectNoneCommand = 4097;

/// As a filter that lets nothing pass: no file has such a name.
QString noSource()
{
    return QStringLiteral("<none>");
}

/// Behind the last separator of either system: the paths are those of the machine that compiled them.
QString lastPart(const QString &path)
{
    return path.mid(qMax(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/'))) + 1);
}

} // namespace

sourceFileList::sourceFileList(const QString &stored, QWidget *parent)
    : QListWidget(parent)
    , m_isEverySelected(stored.isEmpty())
{
    setSortingEnabled(true);
    setUniformItemSizes(true);
    setAccessibleName(tr("Source files"));
    const QStringList names = stored.split(separator, Qt::SkipEmptyParts);
    m_selected = QSet<QString>(names.begin(), names.end());
    m_selected.remove(noSource());
    for (const QString &name : std::as_const(m_selected))
        add(name);
}

void sourceFileList::methodInformation(const char *file, int, const char *)
{
    if (file != nullptr)
        add(lastPart(QString::fromLatin1(file)));
}

void sourceFileList::add(const QString &name)
{
    if (name.isEmpty() || m_listed.contains(name))
        return;
    m_listed.insert(name);
    auto *const item = new QListWidgetItem(name);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(m_isEverySelected || m_selected.contains(name) ? Qt::Checked : Qt::Unchecked);
    addItem(item);
}

QString sourceFileList::selection() const
{
    QStringList names;
    for (int row = 0; row < count(); ++row) {
        if (item(row)->checkState() == Qt::Checked)
            names += item(row)->text();
    }
    return names.isEmpty() ? noSource() : names.join(separator);
}

void sourceFileList::checkAll(Qt::CheckState state)
{
    for (int row = 0; row < count(); ++row)
        item(row)->setCheckState(state);
}

void sourceFileList::contextMenuEvent(QContextMenuEvent *event)
{
    const QPointer<sourceFileList> kept(this);
    const QPointer<QMenu> menu(new QMenu(this));
    menu->addAction(tr("Select All..."))->setData(selectAllCommand);
    menu->addAction(tr("Select None..."))->setData(selectNoneCommand);
    int command = 0;
    if (const QAction *const chosen = menu->exec(event->globalPos()))
        command = chosen->data().toInt();
    delete menu;
    if (kept && command != 0)
        checkAll(command == selectAllCommand ? Qt::Checked : Qt::Unchecked);
}

} // namespace Zorvan
