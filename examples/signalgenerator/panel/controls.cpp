#include "panel/controls.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFontInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include <limits>

namespace SignalGenerator {

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

// The button says what is, and its colour says it across the room.
void showOutput(QPushButton *button)
{
    const bool on = button->isChecked();
    const QString text = on ? Controls::tr("RF ON") : Controls::tr("RF OFF");
    if (button->text() == text)
        return; // nothing to paint
    button->setText(text);
    QPalette palette;
    if (on) {
        palette.setColor(QPalette::Button, QColor(0x2f, 0x9e, 0x44));
        palette.setColor(QPalette::ButtonText, Qt::white);
    }
    button->setPalette(palette);
}

} // namespace

Controls::Controls(QWidget *parent)
    : QWidget(parent)
{
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeCarrierGroup());
    layout->addWidget(makeModulationGroup());
    layout->addWidget(makeOutputGroup());
}

QWidget *Controls::makeCarrierGroup()
{
    auto *const group = new QGroupBox(tr("Carrier"), this);
    auto *const grid = new QGridLayout(group);
    addEntry(tr("&Frequency"),
             {ParameterId::Frequency, "frequency", "FREQ", " MHz", 1e6, 6, -99999, 99999, 1}, grid);
    addEntry(tr("&Level"), {ParameterId::Level, "level", "POW", " dBm", 1, 2, -999, 999, 1}, grid);
    grid->setRowStretch(grid->rowCount(), 1);
    return group;
}

QWidget *Controls::makeModulationGroup()
{
    auto *const group = new QGroupBox(tr("Modulation"), this);
    auto *const grid = new QGridLayout(group);
    addModulation(tr("&AM"), ParameterId::AmState, "AM:STAT", tr("Depth"),
                  {ParameterId::AmDepth, "amDepth", "AM", " %", 1, 1, 0, 999, 5}, grid);
    addModulation(tr("F&M"), ParameterId::FmState, "FM:STAT", tr("Deviation"),
                  {ParameterId::FmDeviation, "fmDeviation", "FM", " kHz", 1e3, 3, 0, 99999, 1}, grid);
    addModulation(tr("&Pulse"), ParameterId::PulseState, "PULM:STAT", tr("Period"),
                  {ParameterId::PulsePeriod, "pulsePeriod", "PULM:PER", " \xB5s", 1e-6, 3, 0, 999e6, 1},
                  grid);
    return group;
}

QWidget *Controls::makeOutputGroup()
{
    auto *const group = new QGroupBox(tr("Output"), this);
    auto *const layout = new QHBoxLayout(group);
    m_output = new QPushButton(group);
    QFont font = m_output->font();
    font.setBold(true);
    font.setPointSizeF(QFontInfo(font).pointSizeF() * 1.3);
    m_output->setFont(font);
    m_output->setMinimumWidth(m_output->fontMetrics().horizontalAdvance(tr("RF OFF")) * 2);
    m_output->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    addSwitch(ParameterId::Output, "output", "OUTP", m_output);
    layout->addWidget(m_output);
    return group;
}

QDoubleSpinBox *Controls::makeEntry(const EntryKind &kind)
{
    auto *const box = new QDoubleSpinBox(this);
    box->setObjectName(QLatin1String(kind.name));
    // Wider than the instrument's range, which moves with its offsets: the instrument refuses, and says why.
    box->setRange(kind.minimum, kind.maximum);
    box->setDecimals(kind.decimals);
    box->setSingleStep(kind.step);
    box->setSuffix(QString::fromLatin1(kind.suffix));
    box->setAlignment(Qt::AlignRight);
    box->setKeyboardTracking(false); // a command for the finished number, not for each digit
    Entry &entry = m_entries.emplace_back(Entry{kind.id, kind.unit, unknown, box});
    connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this, &entry, command = QByteArray(kind.command)](double value) {
                entry.shown = unknown;
                Q_EMIT commandEntered(command + ' ' + QByteArray::number(value * entry.unit, 'g', 12));
            });
    return box;
}

void Controls::addEntry(const QString &caption, const EntryKind &kind, QGridLayout *grid)
{
    const int row = grid->rowCount();
    auto *const label = new QLabel(caption, this);
    QDoubleSpinBox *const box = makeEntry(kind);
    label->setBuddy(box);
    grid->addWidget(label, row, 0);
    grid->addWidget(box, row, 1);
}

void Controls::addModulation(const QString &caption, ParameterId id, const char *command,
                             const QString &value, const EntryKind &kind, QGridLayout *grid)
{
    const int row = grid->rowCount();
    auto *const button = new QCheckBox(caption, this);
    const QByteArray name = QByteArray(kind.name) + "On";
    addSwitch(id, name.constData(), command, button);
    grid->addWidget(button, row, 0);
    grid->addWidget(new QLabel(value, this), row, 1);
    grid->addWidget(makeEntry(kind), row, 2);
}

void Controls::addSwitch(ParameterId id, const char *name, const char *command, QAbstractButton *button)
{
    button->setObjectName(QLatin1String(name));
    button->setCheckable(true);
    m_switches.push_back({id, button});
    connect(button, &QAbstractButton::clicked, this, [this, command = QByteArray(command)](bool on) {
        Q_EMIT commandEntered(command + (on ? " ON" : " OFF"));
    });
}

void Controls::follow(const Settings &settings)
{
    for (Entry &entry : m_entries) {
        const double value = settings[entry.id];
        if (value == entry.shown)
            continue;
        const QSignalBlocker quiet(entry.box); // it follows: no new command
        entry.box->setValue(value / entry.unit);
        entry.shown = value;
    }
    for (const Switch &item : m_switches)
        item.button->setChecked(settings.isOn(item.id));
    showOutput(m_output);
}

} // namespace SignalGenerator
