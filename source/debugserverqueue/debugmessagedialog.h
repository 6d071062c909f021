#pragma once

#include "debugserverqueue/boxcontent.h"
#include "debugserverqueue/boxtext.h"
#include "debugserverqueue/displaysettings.h"

#include <QDialog>

#include <utility>
#include <vector>

class QKeyEvent;
class QLabel;
class QLayout;
class QPushButton;
class QTextEdit;

namespace Zorvan {

/// A message box, built, sized and placed for the display of an instrument. GUI thread.
///
/// Run a modal box with exec(), show() an open one. Without a button to press an open box stays until its
/// owner takes it away: neither Escape nor the window's close control hide it. A box does not count among the
/// windows that keep the application alive.
class debugMessageDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit debugMessageDialog(const BoxContent &content,
                                const DisplaySettings &settings = readDisplaySettings());

    /// The code of the button that ended a box with this result; boxcodes::noAnswer if none did.
    [[nodiscard]] static int codeOf(int dialogResult);
    /// Whether the key would take the focus out of the box, at its first or its last widget.
    [[nodiscard]] bool confinesFocus(const QKeyEvent &event, const QObject *focused) const;

    /// Answers with the default button, which is the focused one if any is.
    void accept() override;
    void reject() override;

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void makeIcon(int code);
    void makeHeading();
    void makeTextArea();
    void makeDocument();
    void makeButtons(const BoxContent &content);
    void addButton(int code);
    void alignButtons();
    void assemble();
    void setSizeAndPlace();
    void moveHeadingToTextArea();
    void fillTextArea();
    void rememberFocusEnds();

    [[nodiscard]] QLayout *buttonRow() const;
    [[nodiscard]] bool showsTextArea() const;
    [[nodiscard]] int iconSpace() const;
    [[nodiscard]] int contentWidth() const;
    [[nodiscard]] int contentHeight(int width) const;
    [[nodiscard]] int headHeight(int width) const;
    [[nodiscard]] int heightWithoutBody(int width) const;
    [[nodiscard]] int textHeight(int width) const;
    [[nodiscard]] bool headingFits(int width) const;

    const DisplaySettings m_settings;
    const int m_marginPx;
    const int m_gapPx;
    BoxText m_text;
    TextPart m_textPart = TextPart::Body;
    QLabel *m_icon = nullptr;
    QLabel *m_heading = nullptr;
    QLabel *m_headingOnOneLine = nullptr; // never shown: the heading's natural width
    QTextEdit *m_textArea = nullptr;
    QTextDocument *m_document = nullptr;
    std::vector<std::pair<QPushButton *, int>> m_buttons; // with their results
    bool m_mayScroll = false;
    const QWidget *m_firstFocus = nullptr;
    const QWidget *m_lastFocus = nullptr;
};

} // namespace Zorvan
