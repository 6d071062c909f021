#include "settingsdialog/outputfilterdialog.h"

#include "host/displayflagkeys.h"
#include "host/patternlimits.h"
#include "host/tablestate.h"
#include "settingsdialog/levelrows.h"
#include "settingsdialog/questions.h"
#include "settingsdialog/rundialog.h"

#include <zorvan/debug.h>

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegExp>
#include <QTextDocument> // Qt::mightBeRichText
#include <QVBoxLayout>

#include <algorithm>

namespace Zorvan {

namespace {

constexpr int entryRole = Qt::UserRole;
constexpr int fewestVisibleLevels = 5; // as many as a module has by default
constexpr int titleButtonsEm = 8; // room for the icon and the buttons of a title bar

/// In the font of the widget around it, but with letters of one width, as in the lines that are filtered.
QFont fixedFont(QFont font)
{
    font.setFamily(QStringLiteral("Courier"));
    font.setStyleHint(QFont::Monospace);
    return font;
}

/// Descriptions are in pointed brackets, which may look like markup.
QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

/// Empty if \a text can be used as a filter.
QString problemOf(const QString &text)
{
    if (!isAffordable(text)) // and it may be too much to be looked at, too
        return OutputFilterDialog::tr("costs too much time: no line will be shown");
    const QRegExp expression = expressionOf(text);
    if (expression.isValid())
        return QString();
    return OutputFilterDialog::tr("not a regular expression: %1").arg(expression.errorString());
}

bool levelsAreShown()
{
    return (static_cast<unsigned>(Debug::getDisplayFlags()) & displayflags::levelDescription) != 0;
}

/// False if the box's event loop has left nobody to go on for.
bool warnThatLevelsAreHidden(QWidget *parent)
{
    const QPointer<QWidget> kept(parent);
    const unsigned ends = TableState::ends();
    questions::tell(questions::Icon::Warning, OutputFilterDialog::tr("warning"),
                    OutputFilterDialog::tr(
                        "message level filter only works if the displayLevelDescription flag is set."));
    return kept == parent && TableState::ends() == ends;
}

} // namespace

OutputFilterDialog::OutputFilterDialog(QWidget *parent)
    : QDialog(parent)
    , m_before{Debug::getLevelFilter(), Debug::getOutputFilter()}
    , m_levels(new QListWidget(this))
    , m_text(new QLineEdit(this))
    , m_problem(new QLabel(this))
{
    setWindowTitle(tr("Set level and QRegExp text filter (see tooltip)"));
    if (parent != nullptr) // a window takes no font from its parent by itself
        setFont(parent->font());
    setMinimumWidth(fontMetrics().horizontalAdvance(windowTitle()) + titleButtonsEm * fontMetrics().height());
    auto *const layout = new QVBoxLayout(this);
    buildLevels(*layout);
    buildText(*layout);
    buildButtons(*layout);
    fillLevels();
    m_text->setText(m_before.text);
    m_before.text = m_text->text(); // which has no line feeds
    checkText(m_before.text);
}

/// What others have set while the dialog was open stays, as far as the user has changed nothing there.
OutputFilters OutputFilterDialog::filters() const
{
    OutputFilters filters{Debug::getLevelFilter(), Debug::getOutputFilter()};
    const QStringList entries = chosenEntries();
    if (entries != m_chosenBefore)
        filters.levels =
            levelrows::filterOf(entries + levelrows::entriesWithout(filters.levels, m_before.levels));
    else if (filters.levels == m_before.levels)
        filters.levels = levelrows::filterOf(entries); // without empty entries
    if (m_text->text() != m_before.text)
        filters.text = m_text->text();
    return filters;
}

QStringList OutputFilterDialog::chosenEntries() const
{
    QStringList entries;
    for (int row = 0; row < m_levels->count(); ++row) {
        const QListWidgetItem &item = *m_levels->item(row);
        if (item.isSelected())
            entries += item.data(entryRole).toString();
    }
    return entries;
}

void OutputFilterDialog::buildLevels(QVBoxLayout &layout)
{
    m_levels->setSelectionMode(QAbstractItemView::MultiSelection);
    m_levels->setToolTip(
        tr("This list provides an additional level filter for the message window output.\n"
           "This filter is relating to the message level description text which is output in the message by "
           "default.\n"
           "It allows the restriction of output to several selected levels below the maximum configured "
           "level.\n"
           "Selected message levels will always appear at the top of the list.\n\n"
           "Please note that this filter is only available while Debug::setDisplayFlags() enables message "
           "descriptions."));
    auto *const label = new QLabel(tr("Only these &levels (none selected: all)"), this);
    label->setBuddy(m_levels);
    layout.addWidget(label);
    layout.addWidget(m_levels);
}

void OutputFilterDialog::buildText(QVBoxLayout &layout)
{
    m_text->setFont(fixedFont(font()));
    m_text->setToolTip(
        tr("This field provides a QT regular expression filter for the message window output.\n"
           "This filter is relating to the complete text of the message. See the QRegExp documentation.\n\n"
           "Please note that both filter conditions must match for an output!"));
    auto *const label = new QLabel(tr("Only lines that &match (empty: all)"), this);
    label->setBuddy(m_text);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setMinimumHeight(fontMetrics().height()); // so that nothing moves while somebody types
    layout.addWidget(label);
    layout.addWidget(m_text);
    layout.addWidget(m_problem);
    connect(m_text, &QLineEdit::textChanged, this, &OutputFilterDialog::checkText);
}

void OutputFilterDialog::buildButtons(QVBoxLayout &layout)
{
    auto *const buttons = new QDialogButtonBox(this);
    buttons->addButton(tr("Ok"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    layout.addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void OutputFilterDialog::fillLevels()
{
    int selected = 0; // those at the top: one by one, a long filter would take minutes
    for (const auto &row : levelrows::arranged(levelrows::descriptionsInUse(), m_before.levels)) {
        auto *const item = new QListWidgetItem(row.text, m_levels);
        item->setData(entryRole, row.entry);
        item->setToolTip(plainToolTip(row.entry));
        selected += row.isSelected ? 1 : 0;
    }
    const QAbstractItemModel &model = *m_levels->model();
    if (selected > 0)
        m_levels->selectionModel()->select({model.index(0, 0), model.index(selected - 1, 0)},
                                           QItemSelectionModel::Select);
    m_chosenBefore = chosenEntries();
    const int rowHeight = std::max(m_levels->sizeHintForRow(0), m_levels->fontMetrics().height());
    m_levels->setMinimumHeight(fewestVisibleLevels * rowHeight + 2 * m_levels->frameWidth());
}

/// Such a text is accepted all the same, as it is from code and from remote clients.
void OutputFilterDialog::checkText(const QString &text)
{
    m_problem->setText(problemOf(text));
}

bool editOutputFilter(QWidget *parent)
{
    if (!levelsAreShown() && !warnThatLevelsAreHidden(parent))
        return false;
    const unsigned ends = TableState::ends();
    const auto chosen = runDialog(new OutputFilterDialog(parent),
                                  [](const OutputFilterDialog &accepted) { return accepted.filters(); });
    if (!chosen || TableState::ends() != ends)
        return false;
    if (levelsAreShown())
        Debug::setLevelFilter(chosen->levels);
    Debug::setOutputFilter(chosen->text);
    return true;
}

} // namespace Zorvan
