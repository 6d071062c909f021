#include "debugwindow/analysisreports.h"

#include <QCoreApplication>
#include <QEvent>

#include <new>
#include <utility>

namespace Zorvan {

namespace {

QEvent::Type reportWaits()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

} // namespace

AnalysisReports::AnalysisReports(QObject *parent, Take take)
    : QObject(parent)
    , m_take(std::move(take))
{}

void AnalysisReports::begin(AnalysisReport summary) noexcept
{
    const std::uint64_t thread = platform::kernelThreadId();
    const platform::Locked guard(m_lock);
    m_open.erase(thread); // one that was never completed
    try {
        m_open.emplace(thread, std::move(summary));
    } catch (const std::bad_alloc &) {} // its rows are ignored then
}

void AnalysisReports::add(const char *name, MethodRow row) noexcept
{
    const std::uint64_t thread = platform::kernelThreadId();
    const platform::Locked guard(m_lock);
    const auto found = m_open.find(thread);
    if (found == m_open.end())
        return;
    try {
        row.name = name != nullptr ? name : "";
        found->second.rows.push_back(std::move(row));
    } catch (const std::bad_alloc &) {
        m_open.erase(found); // half a report would mislead
    }
}

void AnalysisReports::complete() noexcept
{
    const std::uint64_t thread = platform::kernelThreadId();
    const platform::Locked guard(m_lock);
    const auto found = m_open.find(thread);
    if (found == m_open.end())
        return;
    try {
        if (!m_complete)
            QCoreApplication::postEvent(this, new QEvent(reportWaits()));
        if (!m_complete || !m_complete->isAskedFor || found->second.isAskedFor) // somebody waits for those
            m_complete = std::move(found->second);
    } catch (const std::bad_alloc &) {}
    m_open.erase(found);
}

void AnalysisReports::drop() noexcept
{
    const platform::Locked guard(m_lock);
    m_open.clear();
    m_complete.reset();
}

bool AnalysisReports::event(QEvent *event)
{
    if (event->type() != reportWaits())
        return QObject::event(event);
    if (std::optional<AnalysisReport> report = takeComplete()) {
        const Take take = m_take; // this may be deleted in it
        take(std::move(*report));
    }
    return true;
}

std::optional<AnalysisReport> AnalysisReports::takeComplete()
{
    const platform::Locked guard(m_lock);
    return std::exchange(m_complete, std::nullopt);
}

} // namespace Zorvan
