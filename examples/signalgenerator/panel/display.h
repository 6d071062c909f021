#pragma once

#include <QFrame>
#include <QString>

#include <vector>

class QBoxLayout;
class QLabel;

namespace SignalGenerator {

struct Status;

/// A frequency as instruments show it: hertz resolution, groups of three digits, a fitting unit.
[[nodiscard]] QString frequencyText(double hertz);
[[nodiscard]] QString levelText(double dbm);

/// Lamps of the display that the instrument knows nothing of.
struct PanelLamps
{
    bool remote = false; ///< something else than the panel has the instrument
    bool error = false; ///< the panel shows an error
};

/// The display of the front panel: large digits, and small lamps for what is on or wrong. It has colours of
/// its own, whatever the palette.
class Display : public QFrame
{
public:
    explicit Display(QWidget *parent = nullptr);

    void follow(const Status &status, const PanelLamps &lamps);

private:
    QLabel *addReading(const QString &caption, const char *name, Qt::Alignment side, QBoxLayout *layout);
    QLabel *addLamp(const QString &text, QBoxLayout *layout);

    QLabel *m_frequency;
    QLabel *m_level;
    QLabel *m_rf;
    QLabel *m_am;
    QLabel *m_fm;
    QLabel *m_pulse;
    QLabel *m_externalReference;
    QLabel *m_remote;
    QLabel *m_unlocked;
    QLabel *m_error;
};

} // namespace SignalGenerator
