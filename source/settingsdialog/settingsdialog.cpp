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
#include <QPointer>

namespace Zorvan {

namespace {

constexpr const char *classesHook = "DebugServerEnabledClassesChangedHook";
constexpr const char *levelHook = "DebugServerEnabledLevelChangedHook";
constexpr const char *settingsHook = "DebugServerSettingsChangedHook";
constexpr const char *filterHook = "DebugServerFilterChangedHook";

void activate(const char *hook, moduleId module)
{
    Debug::activateHooks(hook, QByteArray::number(module).constData());
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
    const std::pair<const QCheckBox *, void (SettingsDialog::*)()> checks[] = {
        {m_form->fileOutputCheck, &SettingsDialog::fileOutputChanged},
        {m_form->consoleCheck, &SettingsDialog::consoleChanged},
        {m_form->assertionCheck, &SettingsDialog::assertChanged},
        {m_form->timeCheck, &SettingsDialog::timeChanged},
        {m_form->threadCheck, &SettingsDialog::threadChanged},
        {m_form->moduleCheck, &SettingsDialog::moduleInfoChanged},
        {m_form->clearCheck, &SettingsDialog::clearChanged},
    };
    for (const auto &[check, slot] : checks)
        connect(check, &QCheckBox::clicked, this, slot); // a slot of toggled() must not delete the box
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
    const auto flags = static_cast<unsigned>(Debug::getDisplayFlags());
    for (const auto &[check, flag] : checks)
        check->setChecked((flags & flag) != 0);
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
    const QPointer<SettingsDialog> kept(this);
    const moduleId module = m_module;
    if (item->checkState() == Qt::Checked)
        Debug::enableMessageClassType(module, cls);
    else
        Debug::disableMessageClassType(module, cls);
    if (kept)
        announceLater(classesHook, module);
}

void SettingsDialog::levelChangedSlot(int index)
{
    if (m_isUpdating || index < 0)
        return;
    const QPointer<SettingsDialog> kept(this);
    const moduleId module = m_module;
    Debug::setClippingLevel(module, index - 1);
    if (kept)
        announceLater(levelHook, module);
}

void SettingsDialog::announceLater(const char *hook, moduleId module)
{
    const auto announceIt = [kept = QPointer<SettingsDialog>(this), hook, module] {
        if (kept)
            kept->announce(hook, module);
        else // the change is there, also without a dialog
            activate(hook, module);
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), announceIt, Qt::QueuedConnection);
}

/// Shows afterwards what has come of it: handlers may change more, and the library may have refused.
void SettingsDialog::announce(const char *hook, moduleId module)
{
    const QPointer<SettingsDialog> kept(this);
    activate(hook, module);
    if (kept)
        kept->refresh();
}

void SettingsDialog::setFlag(int command)
{
    const QPointer<SettingsDialog> kept(this);
    Debug::setDisplayFlags(command);
    if (kept)
        announce(settingsHook, m_module);
}

void SettingsDialog::toggleFlag(unsigned flag, int setCommand)
{
    const bool isSet = (static_cast<unsigned>(Debug::getDisplayFlags()) & flag) != 0;
    setFlag(isSet ? setCommand - 1 : setCommand);
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
    const QPointer<SettingsDialog> kept(this);
    setAllClasses(module, enabled);
    if (kept)
        announce(classesHook, module);
}

void SettingsDialog::setAllClasses(moduleId module, bool enabled)
{
    const Updating updating(*this);
    const QPointer<SettingsDialog> kept(this);
    const auto wanted = enabled ? Qt::Checked : Qt::Unchecked;
    showClasses(); // others may have switched some
    for (int cls = 0; kept && cls < m_form->classesList->count(); ++cls) {
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
    const unsigned ends = TableState::ends();
    if (editOutputFilter(this) && TableState::ends() == ends)
        announce(filterHook, m_module);
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
