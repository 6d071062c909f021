#include "guiloop.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <thread>

namespace bench {

namespace {

constexpr std::chrono::microseconds timeToFallAsleep{30};

void spinFor(std::chrono::nanoseconds time)
{
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {}
}

} // namespace

void measureBesideLoop(const std::function<void()> &measuring)
{
    std::thread thread([&measuring] {
        measuring();
        QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit);
    });
    QCoreApplication::exec();
    thread.join();
}

void settleLoop()
{
    // The lines are announced by an event, which sets off a timer of no delay.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { QCoreApplication::processEvents(); },
        Qt::BlockingQueuedConnection);
    spinFor(timeToFallAsleep);
}

CountingStream::CountingStream()
    : m_buffer(1 << 20)
    , m_file(fopencookie(this, "w", {nullptr, count, nullptr, nullptr}))
{
    std::setvbuf(m_file, m_buffer.data(), _IOFBF, m_buffer.size());
}

void CountingStream::write(const QByteArray &text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), m_file);
    std::fflush(m_file);
}

ssize_t CountingStream::count(void *stream, const char *bytes, std::size_t size)
{
    auto *const self = static_cast<CountingStream *>(stream);
    self->m_writes.fetch_add(1, std::memory_order_release);
    self->m_lines.fetch_add(std::count(bytes, bytes + size, '\n'), std::memory_order_release);
    return static_cast<ssize_t>(size);
}

CountingStream &standardOutput()
{
    static auto *const stream = [] {
        auto *const counting = new CountingStream;
        stdout = counting->file();
        return counting;
    }();
    return *stream;
}

} // namespace bench
