#pragma once

#include "database.h"

#include <QByteArray>
#include <QString>
#include <QWidget>

#include <deque>

class QAbstractButton;
class QDoubleSpinBox;
class QGridLayout;
class QPushButton;

namespace SignalGenerator {

/// The entries and switches of the front panel. What the user changes goes out as a command; what they show
/// is what the instrument says, so a refused entry returns to its former value.
class Controls : public QWidget
{
    Q_OBJECT

public:
    explicit Controls(QWidget *parent = nullptr);

    /// Shows the settings. A text that the user is just typing stays, unless the instrument's value changes.
    void follow(const Settings &settings);

Q_SIGNALS:
    void commandEntered(const QByteArray &line);

private:
    /// What is entered in which unit; command and value make a line for the instrument.
    struct EntryKind
    {
        ParameterId id;
        const char *name;
        const char *command;
        const char *suffix;
        double unit;
        int decimals;
        double minimum;
        double maximum;
        double step;
    };
    struct Entry
    {
        ParameterId id;
        double unit;
        double shown; ///< NaN: the user has changed it since
        QDoubleSpinBox *box;
    };
    struct Switch
    {
        ParameterId id;
        QAbstractButton *button;
    };

    QWidget *makeCarrierGroup();
    QWidget *makeModulationGroup();
    QWidget *makeOutputGroup();
    QDoubleSpinBox *makeEntry(const EntryKind &kind);
    void addEntry(const QString &caption, const EntryKind &kind, QGridLayout *grid);
    void addModulation(const QString &caption, ParameterId id, const char *command, const QString &value,
                       const EntryKind &kind, QGridLayout *grid);
    void addSwitch(ParameterId id, const char *name, const char *command, QAbstractButton *button);

    std::deque<Entry> m_entries; // a deque: references stay valid
    std::deque<Switch> m_switches;
    QPushButton *m_output;
};

} // namespace SignalGenerator
