#include "sequencer.h"

#include "print.h"

#include <cmath>
#include <utility>

namespace SignalGenerator {

std::vector<Point> sweepPoints(const Settings &settings)
{
    const double start = settings[ParameterId::FrequencyStart];
    const double stop = settings[ParameterId::FrequencyStop];
    const bool linear = settings.is(ParameterId::SweepSpacing, static_cast<int>(SweepSpacing::Linear));
    const int count = static_cast<int>(settings[ParameterId::SweepPoints]);
    std::vector<Point> points;
    for (int i = 0; i < count; ++i) {
        const double part = static_cast<double>(i) / (count - 1);
        const double frequency =
            linear ? start + (stop - start) * part : start * std::pow(stop / start, part);
        points.push_back({frequency, settings[ParameterId::Level]});
    }
    return points;
}

Sequencer::Sequencer(Kernel &kernel)
    : m_kernel(kernel)
{}

Sequencer::~Sequencer()
{
    abort();
}

void Sequencer::start(Sequence sequence)
{
    abort();
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_aborted = m_closed;
    }
    m_thread.post([this, sequence = std::move(sequence)] { run(sequence); });
}

void Sequencer::abort()
{
    requestAbort();
    waitUntilDone();
}

void Sequencer::requestAbort()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_aborted = true;
    }
    m_abort.notify_all();
}

void Sequencer::close()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_closed = true;
    }
    requestAbort();
}

void Sequencer::waitUntilDone()
{
    m_thread.waitUntilIdle();
}

void Sequencer::run(const Sequence &sequence)
{
    const TimeMeasurement measurement(sequence.module, "sequence");
    print(sequence.module, Level::Info, "starting, %zu points", sequence.points.size());
    std::size_t reached = 0;
    for (const Point &point : sequence.points) {
        m_kernel.settlePoint(point);
        ++reached;
        print(sequence.module, Level::Info, "point %zu: %.6f MHz, %.2f dBm", reached, point.frequencyHz / 1e6,
              point.levelDbm);
        if (!dwell(sequence.dwell)) {
            print(sequence.module, Level::Warning, "aborted at point %zu of %zu", reached,
                  sequence.points.size());
            break;
        }
    }
    GroupSet carrier;
    carrier.set(static_cast<std::size_t>(Group::Synthesizer)).set(static_cast<std::size_t>(Group::Output));
    m_kernel.settingsChanged(carrier);
}

bool Sequencer::dwell(std::chrono::duration<double> time)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_abort.wait_for(lock, time, [this] { return m_aborted; });
}

} // namespace SignalGenerator
