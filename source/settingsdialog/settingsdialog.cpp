// The settings dialog: what its controls show and do. Its menus are in settingsdialog_menus.cpp.

#include "settingsdialog/settingsdialog.h"

#include "host/classstates.h"
#include "host/displayflagkeys.h"
#include "host/tablestate.h"
#include "settingsdialog/displaytexts.h"
#include "settingsdialog/modulelist.h"
#include "settingsdialog/outputfilterdialog.h"
#include "ui_configdialog.h"

#include <QCoreApplication>

namespace Zorvan {

namespace {

constexpr const char *classesHook = "DebugServerEnabledClassesChangedHook";
constexpr const char *levelHook = "DebugServerEnabledLevelChangedHook";
constexpr const char *settingsHook = "DebugServerSettingsChangedHook";
constexpr const char *filterHook = "DebugServerFilterChangedHook";

bool isFlagSet(unsigned flag)
{
    return (static_cast<unsigned>(Debug::getDisplayFlags()) & flag) != 0;
}

/// A list that shows the texts already keeps its scroll position.
void showTexts(QListWidget &list, const QStringList &texts)
{
    bool isSame = list.count() == texts.size();
    for (int i = 0; isSame && i < texts.size(); ++i)
        isSame = list.item(i)->text() == texts.at(i);
    if (isSame)
        return;
    list.clear();
    list.addItems(texts);
}

/// A combo box that shows the texts already keeps its popup.
void showTexts(QComboBox &box, const QStringList &texts)
{
    bool isSame = box.count() == texts.size();
    for (int i = 0; isSame && i < texts.size(); ++i)
        isSame = box.itemText(i) == texts.at(i);
    if (isSame)
        return;
    box.clear();
    box.addItems(texts);
}

} // namespace

/// Marks changes as the dialog's own. The dialog may end meanwhile.
class SettingsDialog::Updating
{
public:
    explicit Updating(SettingsDialog &dialog)
        : m_dialog(&dialog)
        , m_before(dialog.m_isUpdating)
    {
        dialog.m_isUpdating = true;
    }
    ~Updating()
    {
        if (m_dialog)
            m_dialog->m_isUpdating = m_before;
    }
    Updating(const Updating &) = delete;
    Updating &operator=(const Updating &) = delete;

private:
    const QPointer<SettingsDialog> m_dialog;
    const bool m_before;
};

SettingsDialog::Change::Change(SettingsDialog &dialog, moduleId module)
    : m_dialog(&dialog)
    , m_module(module)
    , m_ends(TableState::ends())
{}

bool SettingsDialog::Change::goesOn() const
{
    return TableState::ends() == m_ends;
}

void SettingsDialog::Change::announce(const char *hook) const
{
    if (goesOn())
        Debug::activateHooks(hook, QByteArray::number(m_module).constData());
    if (m_dialog)
        m_dialog->refresh();
}

void SettingsDialog::Change::announceLater(const char *hook) const
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [change = *this, hook] { change.announce(hook); },
        Qt::QueuedConnection);
}

SettingsDialog::SettingsDialog(QWidget *parent)
    : QDialog(parent)
    , m_form(std::make_unique<Ui_configdialog>())
{
    m_form->setupUi(this);
    setAttribute(Qt::WA_QuitOnClose, false); // the host's application is not ours to end
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    showDisplayTexts(*this, m_isSmallDisplay);
    connectLists();
    connectGlobals();
    refresh();
}

SettingsDialog::~SettingsDialog() = default;

void SettingsDialog::connectLists()
{
    connect(m_form->moduleList, &QListWidget::itemClicked, this, &SettingsDialog::moduleItemClickedSlot);
    // The keyboard does not click.
    connect(m_form->moduleList, &QListWidget::currentItemChanged, this,
            &SettingsDialog::moduleItemClickedSlot);
    connect(m_form->classesList, &QListWidget::itemChanged, this, &SettingsDialog::classItemChangedSlot);
    connect(m_form->classesList, &QListWidget::customContextMenuRequested, this,
            &SettingsDialog::customContextMenuSlot);
    connect(m_form->messageLevel, QOverload<int>::of(&QComboBox::activated), this,
            &SettingsDialog::levelChangedSlot);
    connect(m_form->messageLevel, &QComboBox::customContextMenuRequested, this,
            &SettingsDialog::levelsContextMenuRequested);
}

void SettingsDialog::connectGlobals()
{
    const struct
    {
        const QCheckBox *check;
        displayflags::Flag flag;
        void (SettingsDialog::*slot)();
    } checks[] = {
        {m_form->fileOutputCheck, displayflags::fileOutput, &SettingsDialog::fileOutputChanged},
        {m_form->consoleCheck, displayflags::consoleOutput, &SettingsDialog::consoleChanged},
        {m_form->assertionCheck, displayflags::throwAssertion, &SettingsDialog::assertChanged},
        {m_form->timeCheck, displayflags::timeStamp, &SettingsDialog::timeChanged},
        {m_form->threadCheck, displayflags::threadId, &SettingsDialog::threadChanged},
        {m_form->moduleCheck, displayflags::moduleName, &SettingsDialog::moduleInfoChanged},
        {m_form->clearCheck, displayflags::allowProgrammaticClear, &SettingsDialog::clearChanged},
    };
    for (const auto &each : checks) {
        connect(each.check, &QCheckBox::clicked, this, each.slot);
        connect(each.check, &QCheckBox::toggled, this,
                [this, each] { applyLater(*each.check, each.flag, each.slot); });
    }
    connect(m_form->fileOutputCheck, &QCheckBox::customContextMenuRequested, this,
            &SettingsDialog::fileContextMenuRequested);
    connect(filterButton(), &QPushButton::clicked, this, &SettingsDialog::setFilter);
    connect(openButton(), &QPushButton::clicked, this, &SettingsDialog::loadSettings);
    connect(saveButton(), &QPushButton::clicked, this, &SettingsDialog::saveSettings);
    connect(closeButton(), &QPushButton::clicked, this, &SettingsDialog::accept);
    for (QPushButton *const button : {filterButton(), openButton(), saveButton(), closeButton()})
        button->setAutoDefault(false); // Return in a list is not meant for them
}

QPushButton *SettingsDialog::filterButton() const
{
    return m_form->filterButton;
}

QPushButton *SettingsDialog::openButton() const
{
    return m_form->openButton;
}

QPushButton *SettingsDialog::saveButton() const
{
    return m_form->saveButton;
}

QPushButton *SettingsDialog::closeButton() const
{
    return m_form->closeButton;
}

void SettingsDialog::refresh()
{
    const Updating updating(*this);
    m_module = showModules(*m_form->moduleList, m_module);
    showModule();
    showFlags();
}

void SettingsDialog::showFlags()
{
    const std::pair<QCheckBox *, displayflags::Flag> checks[] = {
        {m_form->fileOutputCheck, displayflags::fileOutput},
        {m_form->consoleCheck, displayflags::consoleOutput},
        {m_form->assertionCheck, displayflags::throwAssertion},
        {m_form->timeCheck, displayflags::timeStamp},
        {m_form->threadCheck, displayflags::threadId},
        {m_form->moduleCheck, displayflags::moduleName},
        {m_form->clearCheck, displayflags::allowProgrammaticClear},
    };
    for (const auto &[check, flag] : checks)
        check->setChecked(isFlagSet(flag));
}

/// A screen reader toggles without a click. Later, as a slot of toggled() must not delete the box.
void SettingsDialog::applyLater(const QCheckBox &check, unsigned flag, void (SettingsDialog::*slot)())
{
    if (m_isUpdating)
        return;
    const auto apply = [kept = QPointer<SettingsDialog>(this), &check, flag, slot,
                        ends = TableState::ends()] {
        if (kept && TableState::ends() == ends && check.isChecked() != isFlagSet(flag))
            (kept->*slot)();
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), apply, Qt::QueuedConnection);
}

void SettingsDialog::showModule()
{
    const Updating updating(*this);
    showClasses();
    showLevel();
    m_form->classesList->setEnabled(m_module >= 0);
    m_form->messageLevel->setEnabled(m_module >= 0);
}

void SettingsDialog::showClasses()
{
    QListWidget &list = *m_form->classesList;
    showTexts(list, classNames(m_module));
    for (int cls = 0; cls < list.count(); ++cls) {
        const auto state = host::isClassEnabled(m_module, cls) ? Qt::Checked : Qt::Unchecked;
        list.item(cls)->setCheckState(state);
    }
}

void SettingsDialog::showLevel()
{
    QComboBox &box = *m_form->messageLevel;
    showTexts(box, levelNames(m_module));
    const int entry = qMax(Debug::getClippingLevel(m_module), -1) + 1; // the first one silences
    box.setCurrentIndex(entry < box.count() ? entry : -1);
}

void SettingsDialog::moduleItemClickedSlot(QListWidgetItem *item)
{
    const auto *const chosen = dynamic_cast<const myModulesListItem *>(item);
    if (chosen == nullptr || m_isUpdating)
        return;
    m_module = chosen->module();
    showModule();
}

void SettingsDialog::classItemChangedSlot(QListWidgetItem *item)
{
    const int cls = m_form->classesList->row(item);
    if (m_isUpdating || cls < 0) // -1 would be all classes
        return;
    const moduleId module = m_module;
    const Change change(*this, module);
    if (item->checkState() == Qt::Checked)
        Debug::enableMessageClassType(module, cls);
    else
        Debug::disableMessageClassType(module, cls);
    change.announceLater(classesHook);
}

void SettingsDialog::levelChangedSlot(int index)
{
    if (m_isUpdating || index < 0)
        return;
    const Change change(*this, m_module);
    Debug::setClippingLevel(m_module, index - 1);
    change.announceLater(levelHook);
}

void SettingsDialog::setFlag(int command)
{
    const Change change(*this, m_module);
    Debug::setDisplayFlags(command);
    change.announce(settingsHook);
}

void SettingsDialog::toggleFlag(unsigned flag, int setCommand)
{
    setFlag(isFlagSet(flag) ? setCommand - 1 : setCommand);
}

void SettingsDialog::fileOutputChanged()
{
    setFlag(m_form->fileOutputCheck->isChecked() ? -1 : -2);
}

void SettingsDialog::consoleChanged()
{
    setFlag(m_form->consoleCheck->isChecked() ? -11 : -12);
}

void SettingsDialog::assertChanged()
{
    setFlag(m_form->assertionCheck->isChecked() ? -3 : -4);
}

void SettingsDialog::timeChanged()
{
    setFlag(m_form->timeCheck->isChecked() ? -5 : -6);
}

void SettingsDialog::threadChanged()
{
    setFlag(m_form->threadCheck->isChecked() ? -7 : -8);
}

void SettingsDialog::moduleInfoChanged()
{
    setFlag(m_form->moduleCheck->isChecked() ? -9 : -10);
}

void SettingsDialog::clearChanged()
{
    setFlag(m_form->clearCheck->isChecked() ? -13 : -14);
}

void SettingsDialog::enableAllClasses(moduleId module, bool enabled)
{
    const Change change(*this, module);
    setAllClasses(module, enabled, change);
    change.announce(classesHook);
}

void SettingsDialog::setAllClasses(moduleId module, bool enabled, const Change &change)
{
    const Updating updating(*this);
    const QPointer<SettingsDialog> kept(this);
    const auto wanted = enabled ? Qt::Checked : Qt::Unchecked;
    showClasses(); // others may have switched some
    for (int cls = 0; kept && change.goesOn() && cls < m_form->classesList->count(); ++cls) {
        QListWidgetItem &item = *m_form->classesList->item(cls);
        if (item.checkState() == wanted)
            continue;
        item.setCheckState(wanted);
        if (enabled)
            Debug::enableMessageClassType(module, cls);
        else
            Debug::disableMessageClassType(module, cls);
    }
}

void SettingsDialog::makeDefault()
{
    Q_EMIT makeDefaultRequested();
}

void SettingsDialog::setFilter()
{
    const Change change(*this, m_module);
    if (editOutputFilter(this))
        change.announce(filterHook);
}

void SettingsDialog::accept()
{
    QDialog::accept();
}

void SettingsDialog::showEvent(QShowEvent *event)
{
    refresh();
    QDialog::showEvent(event);
}

void SettingsDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refresh();
}

} // namespace Zorvan
