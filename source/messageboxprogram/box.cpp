#include "box.h"

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>

#include <cmath>

namespace {

struct Button
{
    const char *label;
    const char *word;
};

// The results of the dialog are 1 for the first button and so on; 0 is Qt's own for a rejected dialog.
constexpr Button buttons[] = {{"&Abort", "abort"}, {"&Retry", "retry"}, {"&Ignore", "ignore"}};

/// Wants to be as large as its text, within a part of the screen.
class TextView : public QTextEdit
{
public:
    explicit TextView(const QString &text);
    [[nodiscard]] QSize sizeHint() const override { return m_textSize; }
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    [[nodiscard]] QSize findTextSize() const;

    const QSize m_textSize;
};

TextView::TextView(const QString &text)
    : m_textSize((setPlainText(text), findTextSize()))
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFrameShape(QFrame::NoFrame);
    QPalette colors = palette();
    colors.setColor(QPalette::Base, colors.color(QPalette::Window));
    colors.setColor(QPalette::Text, colors.color(QPalette::WindowText));
    setPalette(colors);
}

QSize TextView::minimumSizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return QSize(metrics.averageCharWidth() * 30, metrics.lineSpacing() * 3).boundedTo(m_textSize);
}

QSize TextView::findTextSize() const
{
    const QSize limit = QGuiApplication::primaryScreen()->availableSize() * 3 / 5;
    const int barWidth = verticalScrollBar()->sizeHint().width();
    QTextDocument layout(toPlainText()); // that of the view follows the view's present size
    layout.setDefaultFont(font());
    layout.setDefaultTextOption(document()->defaultTextOption());
    const int width = std::min(static_cast<int>(std::ceil(layout.idealWidth())), limit.width() - barWidth);
    layout.setTextWidth(width);
    const int height = static_cast<int>(std::ceil(layout.size().height()));
    return height <= limit.height() ? QSize(width, height) : QSize(width + barWidth, limit.height());
}

QLabel *makeIcon()
{
    auto *const label = new QLabel;
    const QStyle *const style = QApplication::style();
    const int size = style->pixelMetric(QStyle::PM_MessageBoxIconSize);
    label->setPixmap(style->standardIcon(QStyle::SP_MessageBoxCritical).pixmap(size));
    return label;
}

/// No button is the default one: who types when the box comes up shall not end the host by it.
QLayout *makeButtons(QDialog *dialog)
{
    auto *const row = new QHBoxLayout;
    row->addStretch();
    int result = 0;
    for (const Button &button : buttons) {
        auto *const widget = new QPushButton(QLatin1String(button.label));
        widget->setAutoDefault(false);
        QObject::connect(widget, &QPushButton::clicked, dialog,
                         [dialog, answer = ++result] { dialog->done(answer); });
        row->addWidget(widget);
    }
    return row;
}

} // namespace

std::unique_ptr<QDialog> makeBox(const QString &title, const QString &text)
{
    auto box = std::make_unique<QDialog>(nullptr, Qt::WindowStaysOnTopHint);
    box->setWindowTitle(title);
    auto *const message = new QHBoxLayout;
    message->setSpacing(box->fontMetrics().height());
    message->addWidget(makeIcon(), 0, Qt::AlignTop);
    auto *const view = new TextView(text);
    message->addWidget(view, 1);
    auto *const rows = new QVBoxLayout(box.get());
    rows->addLayout(message, 1);
    rows->addLayout(makeButtons(box.get()));
    view->setFocus();
    return box;
}

const char *answerWord(int result)
{
    const int index = result - 1;
    return index >= 0 && index < static_cast<int>(std::size(buttons)) ? buttons[index].word : "closed";
}
