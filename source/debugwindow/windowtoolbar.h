#pragma once

#include <QStringList>
#include <QWidget>

#include <cstdint>

class QComboBox;
class QPushButton;

namespace Zorvan {

/// Why controls of the window cannot be used; reasons add up.
struct ControlLocks
{
    bool clientsConnected = false; ///< remote clients have the say: only the log can be cleared
    bool serverMode = false;
    bool clientMode = false;
    bool hookRuns = false;
};

/// The row of controls above the messages. Wraps in a narrow window.
class WindowToolBar : public QWidget
{
    Q_OBJECT

public:
    explicit WindowToolBar(QWidget *parent);

    /// Refills the selector, \a keys in their order; what was selected stays so if it is there.
    void setHooks(const QStringList &keys);
    [[nodiscard]] bool hasHooks() const { return m_hasHooks; }
    void setLocks(const ControlLocks &locks);
    /// Shows what pressing the button would do next.
    void showOutputOff(bool isOff);
    void showLineCount(std::uint32_t count);

    [[nodiscard]] QPushButton *outputOff() const { return m_outputOff; }
    [[nodiscard]] QPushButton *clearLog() const { return m_clearLog; }
    [[nodiscard]] QComboBox *hooks() const { return m_hooks; }
    [[nodiscard]] QComboBox *parameters() const { return m_parameters; }
    [[nodiscard]] QPushButton *activate() const { return m_activate; }
    [[nodiscard]] QPushButton *settings() const { return m_settings; }
    [[nodiscard]] QPushButton *analyze() const { return m_analyze; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void fitHooks();
    void enableControls();

    // From left to right.
    QPushButton *const m_outputOff;
    QPushButton *const m_clearLog;
    QComboBox *const m_hooks;
    QComboBox *const m_parameters;
    QPushButton *const m_activate;
    QPushButton *const m_settings;
    QPushButton *const m_analyze;
    bool m_hasHooks = false;
    ControlLocks m_locks;
};

} // namespace Zorvan
