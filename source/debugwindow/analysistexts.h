#pragma once

#include "platform/lock.h"

#include <QObject>

#include <functional>
#include <string>
#include <vector>

namespace Zorvan {

/// Brings texts of the analysis tools, which come on any thread, to the thread of this object, in their
/// order.
class AnalysisTexts : public QObject
{
public:
    using Show = std::function<void(const std::string &text)>;

    /// Calls \a show in the thread of this object, with no lock held.
    AnalysisTexts(QObject *parent, Show show);

    /// Any thread, as long as this object lives. One line feed at the end of the text is taken off: it is the
    /// line's own.
    void add(std::string text);

protected:
    bool event(QEvent *event) override;

private:
    void deliver();

    const Show m_show;
    platform::Mutex m_lock; // also held to post: the order of the texts is that of the events
    std::vector<std::string> m_waiting ZORVAN_GUARDED_BY(m_lock);
};

} // namespace Zorvan
