#include "panel/display.h"

#include "instrument.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QLabel>
#include <QVBoxLayout>

#include <cmath>

namespace SignalGenerator {

namespace {

const QColor background(0x12, 0x20, 0x2b);
const QColor digits(0xd8, 0xf3, 0xff);
const QColor captions(0x8f, 0xb4, 0xc6);
const QColor lampOff(0x3d, 0x56, 0x64);
const QColor lampOn(0x7d, 0xe3, 0x8f);
const QColor warningOn(0xff, 0x9d, 0x6e);

struct FrequencyUnit
{
    double hertz;
    int decimals;
    const char *name;
};
constexpr FrequencyUnit gigahertz{1e9, 9, "GHz"};
constexpr FrequencyUnit megahertz{1e6, 6, "MHz"};
constexpr FrequencyUnit kilohertz{1e3, 3, "kHz"};

const FrequencyUnit &unitFor(double hertz)
{
    const double size = std::abs(hertz);
    return size >= gigahertz.hertz ? gigahertz : size >= megahertz.hertz ? megahertz : kilohertz;
}

void setColor(QLabel *label, const QColor &color)
{
    QPalette palette = label->palette();
    if (palette.color(QPalette::WindowText) == color)
        return; // nothing to paint
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
}

void enlarge(QLabel *label, double factor)
{
    QFont font = label->font();
    font.setPointSizeF(QFontInfo(font).pointSizeF() * factor); // the font itself may have pixels only
    label->setFont(font);
}

int widthOf(const QString &text, const QLabel *label)
{
    return label->fontMetrics().horizontalAdvance(text);
}

void light(QLabel *lamp, bool on, const QColor &color = lampOn)
{
    setColor(lamp, on ? color : lampOff);
}

} // namespace

QString frequencyText(double hertz)
{
    const FrequencyUnit &unit = unitFor(hertz);
    QString text = QString::number(hertz / unit.hertz, 'f', unit.decimals);
    const int behindPoint = text.size() - unit.decimals;
    for (int group = unit.decimals - 3; group > 0; group -= 3) // from the end, so that places stay
        text.insert(behindPoint + group, QLatin1Char(' '));
    return text + QLatin1Char(' ') + QLatin1String(unit.name);
}

QString levelText(double dbm)
{
    return QString::number(dbm, 'f', 2) + QLatin1String(" dBm");
}

Display::Display(QWidget *parent)
    : QFrame(parent)
{
    QPalette own = palette();
    own.setColor(QPalette::Window, background);
    own.setColor(QPalette::WindowText, digits);
    setPalette(own);
    setAutoFillBackground(true);
    setFrameShape(QFrame::Panel);
    setFrameShadow(QFrame::Sunken);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 12, 18, 12);
    layout->setSpacing(10);
    auto *const readings = new QHBoxLayout;
    m_frequency = addReading(tr("Frequency"), "frequencyReading", Qt::AlignLeft, readings);
    m_frequency->setMinimumWidth(widthOf(frequencyText(-88.888888888e9), m_frequency));
    readings->addSpacing(40);
    m_level = addReading(tr("Level"), "levelReading", Qt::AlignRight, readings);
    m_level->setMinimumWidth(widthOf(levelText(-188.88), m_level));
    layout->addLayout(readings);
    auto *const lamps = new QHBoxLayout;
    lamps->setSpacing(18);
    m_rf = addLamp(tr("RF"), lamps);
    m_am = addLamp(tr("AM"), lamps);
    m_fm = addLamp(tr("FM"), lamps);
    m_pulse = addLamp(tr("PULSE"), lamps);
    m_externalReference = addLamp(tr("EXT REF"), lamps);
    lamps->addStretch();
    m_remote = addLamp(tr("REMOTE"), lamps);
    m_unlocked = addLamp(tr("UNLOCKED"), lamps);
    m_error = addLamp(tr("ERROR"), lamps);
    layout->addLayout(lamps);
}

QLabel *Display::addReading(const QString &caption, const char *name, Qt::Alignment side, QBoxLayout *layout)
{
    auto *const column = new QVBoxLayout;
    column->setSpacing(0);
    auto *const heading = new QLabel(caption, this);
    setColor(heading, captions);
    heading->setAlignment(side);
    column->addWidget(heading);
    auto *const reading = new QLabel(this);
    reading->setObjectName(QLatin1String(name));
    enlarge(reading, 2.4);
    reading->setAlignment(side);
    column->addWidget(reading);
    layout->addLayout(column);
    return reading;
}

QLabel *Display::addLamp(const QString &text, QBoxLayout *layout)
{
    auto *const lamp = new QLabel(text, this);
    QFont font = lamp->font();
    font.setBold(true);
    lamp->setFont(font);
    layout->addWidget(lamp);
    return lamp;
}

void Display::follow(const Status &status, const PanelLamps &lamps)
{
    const Settings &settings = status.settings;
    m_frequency->setText(frequencyText(settings[ParameterId::Frequency]));
    m_level->setText(levelText(settings[ParameterId::Level]));
    light(m_rf, settings.isOn(ParameterId::Output));
    light(m_am, settings.isOn(ParameterId::AmState));
    light(m_fm, settings.isOn(ParameterId::FmState));
    light(m_pulse, settings.isOn(ParameterId::PulseState));
    light(m_externalReference,
          settings.is(ParameterId::ReferenceSource, static_cast<int>(ReferenceSource::External)));
    light(m_remote, lamps.remote);
    light(m_unlocked, !status.hardware.locked, warningOn);
    light(m_error, lamps.error || status.errors > 0, warningOn);
}

} // namespace SignalGenerator
