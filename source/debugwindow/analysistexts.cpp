#include "debugwindow/analysistexts.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimerEvent>

#include <new>
#include <utility>

namespace Zorvan {

namespace {

constexpr std::size_t pieceBytes = 64 * 1024; // at once: the window is busy with it for some milliseconds
constexpr int pauseMs = 10;

QEvent::Type textsWait()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

/// Where the piece that starts at \a start ends: at the line feed behind its last text. A text longer than a
/// piece is one by itself.
std::size_t pieceEnd(const std::string &texts, std::size_t start)
{
    if (texts.size() - start <= pieceBytes)
        return texts.size() - 1;
    const std::size_t last = texts.rfind('\n', start + pieceBytes);
    return last != std::string::npos && last >= start ? last : texts.find('\n', start);
}

} // namespace

AnalysisTexts::AnalysisTexts(QObject *parent, Show show)
    : QObject(parent)
    , m_show(std::move(show))
{}

void AnalysisTexts::add(std::string_view text) noexcept
{
    if (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    const platform::Locked guard(m_lock);
    const std::size_t before = m_waiting.size();
    try {
        m_waiting.append(text);
        m_waiting += '\n';
    } catch (const std::bad_alloc &) {
        m_waiting.resize(before);
        return;
    }
    try {
        if (!m_isOnItsWay)
            QCoreApplication::postEvent(this, new QEvent(textsWait()));
        m_isOnItsWay = true;
    } catch (const std::bad_alloc &) {} // the next text takes it along
}

bool AnalysisTexts::event(QEvent *event)
{
    if (event->type() != textsWait())
        return QObject::event(event);
    deliver();
    return true;
}

void AnalysisTexts::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_pause.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    m_pause.stop();
    deliver();
}

void AnalysisTexts::deliver() noexcept
{
    try {
        const std::string piece = nextPiece();
        if (hasMore())
            m_pause.start(pauseMs, this);
        m_show(piece);
    } catch (const std::bad_alloc &) {}
}

/// There is one: something was on its way.
std::string AnalysisTexts::nextPiece()
{
    if (m_shown == m_taken.size()) {
        const platform::Locked guard(m_lock);
        m_taken = std::exchange(m_waiting, {});
        m_shown = 0;
    }
    const std::size_t end = pieceEnd(m_taken, m_shown);
    const std::size_t start = std::exchange(m_shown, end + 1);
    std::string piece = m_taken.substr(start, end - start);
    if (m_shown == m_taken.size()) {
        m_taken = {}; // its memory, too
        m_shown = 0;
    }
    return piece;
}

/// Otherwise the next text has to be announced again.
bool AnalysisTexts::hasMore()
{
    const platform::Locked guard(m_lock);
    m_isOnItsWay = m_shown < m_taken.size() || !m_waiting.empty();
    return m_isOnItsWay;
}

} // namespace Zorvan
