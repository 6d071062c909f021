#include "debugwindow/analysistexts.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace Zorvan {

namespace {

QEvent::Type textsWait()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

} // namespace

AnalysisTexts::AnalysisTexts(QObject *parent, Show show)
    : QObject(parent)
    , m_show(std::move(show))
{}

void AnalysisTexts::add(std::string text)
{
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    const platform::Locked guard(m_lock);
    if (m_waiting.empty())
        QCoreApplication::postEvent(this, new QEvent(textsWait()));
    m_waiting.push_back(std::move(text));
}

bool AnalysisTexts::event(QEvent *event)
{
    if (event->type() != textsWait())
        return QObject::event(event);
    deliver();
    return true;
}

void AnalysisTexts::deliver()
{
    std::vector<std::string> texts;
    {
        const platform::Locked guard(m_lock);
        texts.swap(m_waiting);
    }
    for (const std::string &text : texts)
        m_show(text);
}

} // namespace Zorvan
