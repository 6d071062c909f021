#include "debugserverqueue/debugmessagedialog.h"

#include "debugwindow/fontweight.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QtMath>

#include <algorithm>
#include <array>

namespace Zorvan {

namespace {

constexpr int smallIconPx = 24; // of a display that is not wide
constexpr int longestHeading = 2000; // characters; more is text to be scrolled, and slow in a label
constexpr int linesBelowHeading = 3; // of a body that has to scroll

struct ButtonKind
{
    int result;
    const char *text;
};
constexpr std::array<ButtonKind, 7> buttonKinds{{
    {QMessageBox::Ok, "OK"},
    {QMessageBox::Cancel, "Cancel"},
    {QMessageBox::Yes, "Yes"},
    {QMessageBox::No, "No"},
    {QMessageBox::Abort, "Abort"},
    {QMessageBox::Retry, "Retry"},
    {QMessageBox::Ignore, "Ignore"},
}}; // by button code, from 1 on

struct IconKind
{
    QStyle::StandardPixmap picture;
    const char *name;
};
constexpr std::array<IconKind, 4> iconKinds{{
    {QStyle::SP_MessageBoxInformation, "Information"},
    {QStyle::SP_MessageBoxWarning, "Warning"},
    {QStyle::SP_MessageBoxCritical, "Error"},
    {QStyle::SP_MessageBoxQuestion, "Question"},
}}; // by icon code, from 1 on

template <typename Kinds>
bool isCodeOf(const Kinds &kinds, int code)
{
    return code >= 1 && code <= static_cast<int>(kinds.size());
}

/// The button codes to be tried in their order: a modal box has at least the button OK, unless its first code
/// asks for one that does not exist.
std::vector<int> wantedButtons(const BoxContent &content)
{
    constexpr int flagMask = 0xF0;
    int first = content.buttons[0];
    if (first == 0 && !content.modal)
        return {};
    if ((first & boxcodes::buttonMask) == 0 && (content.modal || (first & flagMask) != 0))
        first = boxcodes::ok | (first & flagMask);
    return {first, content.buttons[1], content.buttons[2]};
}

QFont fontOf(const DisplaySettings &settings)
{
    return {settings.fontFamily, settings.fontSizePt, fontweight::ofFont(settings.fontWeight)};
}

} // namespace

debugMessageDialog::debugMessageDialog(const BoxContent &content, const DisplaySettings &settings)
    : m_settings(settings)
    , m_marginPx(isWide(settings.area) ? 12 : 6)
    , m_gapPx(isWide(settings.area) ? 10 : 5)
    , m_text(splitBoxText(content.heading, content.message))
{
    setWindowTitle(content.caption);
    setModal(content.modal);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setFont(fontOf(settings));
    makeIcon(content.icon);
    makeHeading();
    makeTextArea();
    makeDocument();
    makeButtons(content);
    ensurePolished();
    setSizeAndPlace();
}

int debugMessageDialog::codeOf(int dialogResult)
{
    for (std::size_t index = 0; index < buttonKinds.size(); ++index) {
        if (buttonKinds.at(index).result == dialogResult)
            return static_cast<int>(index) + 1;
    }
    return boxcodes::noAnswer;
}

bool debugMessageDialog::confinesFocus(const QKeyEvent &event, const QObject *focused) const
{
    const bool isTab = event.key() == Qt::Key_Tab;
    const bool isBackward =
        event.key() == Qt::Key_Backtab || (isTab && (event.modifiers() & Qt::ShiftModifier) != 0);
    if (isBackward)
        return focused == m_firstFocus;
    return isTab && focused == m_lastFocus;
}

void debugMessageDialog::accept()
{
    const auto answer = std::find_if(m_buttons.begin(), m_buttons.end(),
                                     [](const auto &button) { return button.first->isDefault(); });
    if (answer != m_buttons.end())
        done(answer->second);
    else
        reject();
}

void debugMessageDialog::reject()
{
    if (isModal() || !m_buttons.empty())
        QDialog::reject();
}

void debugMessageDialog::showEvent(QShowEvent *event)
{
    // Earlier, a scroll bar that is not needed would come with the text area's first, small size and stay.
    if (m_mayScroll) {
        m_textArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        m_textArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    }
    QDialog::showEvent(event);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void debugMessageDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange && m_document)
        fillTextArea();
    QDialog::changeEvent(event);
}

void debugMessageDialog::makeIcon(int code)
{
    if (!isCodeOf(iconKinds, code))
        return;
    const IconKind &kind = iconKinds.at(code - 1);
    const int styledPx = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    const int sizePx = isWide(m_settings.area) ? styledPx : qMin(styledPx, smallIconPx);
    m_icon = new QLabel(this);
    m_icon->setObjectName(QStringLiteral("icon"));
    m_icon->setAccessibleName(QLatin1String(kind.name));
    m_icon->setPixmap(style()->standardIcon(kind.picture, nullptr, this).pixmap(sizePx, sizePx));
    m_icon->setFixedSize(m_icon->sizeHint()); // the style may have no picture as large as it asks for
}

void debugMessageDialog::makeHeading()
{
    if (m_text.heading.isEmpty())
        return;
    if (m_text.heading.size() > longestHeading) {
        m_textPart = TextPart::All;
        return;
    }
    for (QLabel **label : {&m_heading, &m_headingOnOneLine}) {
        *label = new QLabel(m_text.heading, this);
        (*label)->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    m_heading->setObjectName(QStringLiteral("heading"));
    m_heading->setWordWrap(true);
    m_headingOnOneLine->hide();
}

void debugMessageDialog::makeTextArea()
{
    m_textArea = new QTextEdit(this);
    m_textArea->setObjectName(QStringLiteral("body"));
    m_textArea->setAccessibleName(QStringLiteral("Message"));
    m_textArea->setFrameShape(QFrame::NoFrame);
    m_textArea->setReadOnly(true);
    m_textArea->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_textArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_textArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_textArea->setMinimumSize(1, 1); // or the size of its scroll bars would count
    m_textArea->viewport()->setBackgroundRole(QPalette::Window);
}

void debugMessageDialog::makeDocument()
{
    m_document = new QTextDocument(this);
    m_document->setUndoRedoEnabled(false);
    m_document->setDocumentMargin(0);
    m_document->setDefaultFont(font());
    QTextOption option;
    option.setWrapMode(m_textArea->wordWrapMode());
    m_document->setDefaultTextOption(option);
    fillTextArea();
    // Later than the text, or each change of it would be laid out. The letters get their size from the
    // device.
    m_document->documentLayout()->setPaintDevice(m_textArea->viewport());
}

void debugMessageDialog::makeButtons(const BoxContent &content)
{
    for (const int code : wantedButtons(content))
        addButton(code);
    if (m_buttons.empty()) {
        setWindowFlag(Qt::WindowCloseButtonHint, content.modal);
        return;
    }
    const auto isChosen = [](const auto &button) { return button.first->isDefault(); };
    auto first = std::find_if(m_buttons.begin(), m_buttons.end(), isChosen);
    if (first == m_buttons.end())
        first = m_buttons.begin();
    first->first->setDefault(true);
    first->first->setFocus();
}

void debugMessageDialog::addButton(int code)
{
    const int chosen = code & boxcodes::buttonMask;
    if (!isCodeOf(buttonKinds, chosen))
        return;
    const ButtonKind &kind = buttonKinds.at(chosen - 1);
    const int result = kind.result;
    auto *const button = new QPushButton(QLatin1String(kind.text), this);
    button->setDefault((code & boxcodes::defaultFlag) != 0);
    connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
    m_buttons.emplace_back(button, result);
}

void debugMessageDialog::alignButtons()
{
    int width = 0;
    for (const auto &button : m_buttons)
        width = qMax(width, button.first->sizeHint().width());
    for (const auto &button : m_buttons)
        button.first->setFixedWidth(width);
}

void debugMessageDialog::setSizeAndPlace()
{
    alignButtons();
    const DisplayArea &display = m_settings.area;
    const BoxWidth width = boxWidth(contentWidth(), display);
    if (!headingFits(width.px))
        moveHeadingToTextArea();
    const BoxHeight height = boxHeight(contentHeight(width.px), width, display);
    assemble();
    m_textArea->setDocument(m_document); // not before: it would bring it back to its own width
    m_textArea->setVisible(showsTextArea());
    m_mayScroll = !height.isFixed;
    if (height.isFixed)
        setFixedSize(width.px, height.px);
    else
        resize(width.px, height.px);
    move(boxPosition(size(), display));
    rememberFocusEnds();
}

void debugMessageDialog::moveHeadingToTextArea()
{
    m_textPart = TextPart::All;
    m_heading->hide();
    fillTextArea();
}

void debugMessageDialog::fillTextArea()
{
    QPalette colors = m_textArea->palette();
    colors.setColor(QPalette::Text, palette().color(QPalette::WindowText));
    m_textArea->setPalette(colors);
    fillBoxDocument(*m_document, m_text, m_textPart, palette().color(QPalette::Window));
}

// Icon and heading, below them the body, below all the buttons. A heading that is part of the text area takes
// that up to the icon.
void debugMessageDialog::assemble()
{
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(m_marginPx, m_marginPx, m_marginPx, m_marginPx);
    rows->setSpacing(m_gapPx);
    const bool allInTextArea = m_textPart == TextPart::All;
    auto *const head = new QHBoxLayout;
    head->setSpacing(m_gapPx);
    rows->addLayout(head, allInTextArea ? 1 : 0);
    if (m_icon)
        head->addWidget(m_icon, 0, Qt::AlignTop);
    if (allInTextArea)
        head->addWidget(m_textArea, 1);
    else if (m_heading)
        head->addWidget(m_heading, 1);
    if (!allInTextArea && !m_text.body.isEmpty())
        rows->addWidget(m_textArea, 1);
    if (!m_buttons.empty())
        rows->addLayout(buttonRow());
}

QLayout *debugMessageDialog::buttonRow() const
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(m_gapPx);
    row->addStretch();
    for (const auto &button : m_buttons)
        row->addWidget(button.first);
    row->addStretch();
    return row;
}

bool debugMessageDialog::showsTextArea() const
{
    return m_textPart == TextPart::All || !m_text.body.isEmpty();
}

int debugMessageDialog::iconSpace() const
{
    return m_icon ? m_icon->width() + m_gapPx : 0;
}

int debugMessageDialog::contentWidth() const
{
    int buttons = -m_gapPx;
    for (const auto &button : m_buttons)
        buttons += button.first->minimumWidth() + m_gapPx;
    const int heading = m_heading ? m_headingOnOneLine->sizeHint().width() : 0;
    int text = 0;
    if (showsTextArea()) {
        m_document->setTextWidth(-1);
        text = qCeil(m_document->idealWidth());
    }
    const bool allInTextArea = m_textPart == TextPart::All;
    const int head = iconSpace() + (allInTextArea ? text : heading);
    const int body = allInTextArea ? 0 : text;
    return std::max({buttons, head, body}) + 2 * m_marginPx;
}

int debugMessageDialog::textHeight(int width) const
{
    m_document->setTextWidth(width);
    return qCeil(m_document->size().height());
}

int debugMessageDialog::headHeight(int width) const
{
    const int textWidth = width - iconSpace();
    int height = 0;
    if (m_textPart == TextPart::All)
        height = textHeight(textWidth);
    else if (m_heading)
        height = m_heading->heightForWidth(textWidth);
    return qMax(height, m_icon ? m_icon->height() : 0);
}

/// What stands above and below the body, gaps included.
int debugMessageDialog::heightWithoutBody(int width) const
{
    const int buttons = m_buttons.empty() ? 0 : m_buttons.front().first->sizeHint().height() + m_gapPx;
    return headHeight(width - 2 * m_marginPx) + buttons + 2 * m_marginPx;
}

int debugMessageDialog::contentHeight(int width) const
{
    const bool hasBodyBelow = m_textPart == TextPart::Body && !m_text.body.isEmpty();
    return heightWithoutBody(width) + (hasBodyBelow ? m_gapPx + textHeight(width - 2 * m_marginPx) : 0);
}

bool debugMessageDialog::headingFits(int width) const
{
    if (!m_heading)
        return true;
    const int textWidth = width - 2 * m_marginPx - iconSpace();
    const int body = qMin(contentHeight(width) - heightWithoutBody(width),
                          m_gapPx + linesBelowHeading * fontMetrics().lineSpacing());
    return m_heading->minimumSizeHint().width() <= textWidth
        && heightWithoutBody(width) + body <= roomForBox(m_settings.area).height();
}

void debugMessageDialog::rememberFocusEnds()
{
    std::vector<const QWidget *> focusable;
    if (showsTextArea())
        focusable.push_back(m_textArea);
    for (const auto &button : m_buttons)
        focusable.push_back(button.first);
    if (focusable.empty())
        return;
    m_firstFocus = focusable.front();
    m_lastFocus = focusable.back();
}

} // namespace Zorvan
