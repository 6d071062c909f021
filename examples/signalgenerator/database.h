#pragma once

#include "programmessage.h"

#include <array>
#include <bitset>
#include <functional>
#include <mutex>

namespace SignalGenerator {

/// Every setting of the instrument that is a number, a switch (0, 1) or a choice (index).
enum class ParameterId {
    Frequency,
    FrequencyOffset,
    FrequencyMode,
    FrequencyStart,
    FrequencyStop,
    Phase,
    ReferenceSource,
    Output,
    Level,
    LevelOffset,
    LevelLimit,
    AmState,
    AmDepth,
    FmState,
    FmDeviation,
    PulseState,
    PulsePeriod,
    LfFrequency,
    IqState,
    IqQuadrature,
    BasebandState,
    BasebandClock,
    SweepPoints,
    SweepDwell,
    SweepSpacing,
    ListDwell,
    Count
};
constexpr std::size_t parameterCount = static_cast<std::size_t>(ParameterId::Count);

/// Values of ParameterId::FrequencyMode, ReferenceSource and SweepSpacing.
enum class FrequencyMode { Fixed, Sweep, List };
enum class ReferenceSource { Internal, External };
enum class SweepSpacing { Linear, Logarithmic };

/// The parts of the hardware that settings belong to.
enum class Group { Synthesizer, Output, Modulator, Baseband, None };
using GroupSet = std::bitset<static_cast<std::size_t>(Group::None)>;

enum class ParameterKind { Number, Switch, Choice };

struct ParameterInfo
{
    ParameterId id;
    const char *header; ///< pattern of the remote command
    ParameterKind kind;
    Group group;
    Unit unit;
    double minimum;
    double maximum;
    double preset;
    const char *choices; ///< keywords of a choice, in the order of its values
};

[[nodiscard]] const std::array<ParameterInfo, parameterCount> &parameterTable();
[[nodiscard]] const ParameterInfo &infoOf(ParameterId id);

/// One value for each parameter, in its own unit.
class Settings
{
public:
    [[nodiscard]] double operator[](ParameterId id) const { return m_values[static_cast<std::size_t>(id)]; }
    [[nodiscard]] double &operator[](ParameterId id) { return m_values[static_cast<std::size_t>(id)]; }
    [[nodiscard]] bool isOn(ParameterId id) const { return (*this)[id] != 0; }
    [[nodiscard]] bool is(ParameterId id, int choice) const
    {
        return static_cast<int>((*this)[id]) == choice;
    }

private:
    std::array<double, parameterCount> m_values{};
};

/// The instrument's settings. Any thread; the listener is called in the thread that makes the change.
class Database
{
public:
    using Listener = std::function<void(GroupSet changed)>;

    /// Starts with the presets.
    Database();

    /// Before other threads use the database.
    void setListener(Listener listener);

    [[nodiscard]] double value(ParameterId id) const;
    /// All values of one moment.
    [[nodiscard]] Settings snapshot() const;
    /// False, and nothing changes, if \a value is out of the parameter's range.
    [[nodiscard]] bool set(ParameterId id, double value);
    void reset();

private:
    mutable std::mutex m_mutex; // guards m_settings
    Settings m_settings;
    Listener m_listener;
};

} // namespace SignalGenerator
