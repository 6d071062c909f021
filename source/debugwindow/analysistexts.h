#pragma once

#include "platform/lock.h"

#include <QBasicTimer>
#include <QObject>

#include <functional>
#include <string>
#include <string_view>

namespace Zorvan {

/// Brings texts of the analysis tools, which come on any thread, to the thread of this object, in their
/// order.
///
/// Nothing throws: a text for which there is no memory is dropped.
class AnalysisTexts : public QObject
{
public:
    using Show = std::function<void(const std::string &text)>;

    /// Calls \a show in the thread of this object, with no lock held. Many texts come joined by line feeds,
    /// some of them at a time with pauses between, in which the event loop goes on.
    AnalysisTexts(QObject *parent, Show show);

    /// Any thread, as long as this object lives. One line feed at the end of the text is taken off: it is the
    /// line's own.
    void add(std::string_view text) noexcept;

protected:
    bool event(QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void deliver() noexcept;
    [[nodiscard]] std::string nextPiece();
    [[nodiscard]] bool hasMore();

    const Show m_show;
    QBasicTimer m_pause;
    std::string m_taken; // out of the waiting texts
    std::size_t m_shown = 0; // bytes of it
    platform::Mutex m_lock; // also held to post
    std::string m_waiting ZORVAN_GUARDED_BY(m_lock); // a line feed behind each text
    bool m_isOnItsWay ZORVAN_GUARDED_BY(m_lock) = false; // an event, or the end of a pause
};

} // namespace Zorvan
