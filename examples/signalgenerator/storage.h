#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace SignalGenerator {

/// One stop of a list or sweep.
struct Point
{
    double frequencyHz;
    double levelDbm;
};

/// The instrument's named lists and waveforms, one of each selected. Any thread.
///
/// Whatever is asked of a list or waveform that does not exist, or does not fit, ends in a ScpiError.
class Storage
{
public:
    /// Selects a list and makes it if it is new.
    void selectList(const std::string &name);
    void setListFrequencies(std::vector<double> hertz);
    void setListLevels(std::vector<double> dbm);
    /// The selected list; its levels are the single one or as many as there are frequencies.
    [[nodiscard]] std::vector<Point> points() const;
    [[nodiscard]] std::string listCatalog() const;

    void storeWaveform(const std::string &name, std::string samples);
    void selectWaveform(const std::string &name);
    [[nodiscard]] std::string selectedWaveform() const;
    [[nodiscard]] std::string samplesOfSelectedWaveform() const;
    [[nodiscard]] std::string waveformCatalog() const;

private:
    struct List
    {
        std::vector<double> frequencies;
        std::vector<double> levels;
    };
    [[nodiscard]] List &selectedListLocked();
    [[nodiscard]] const List &selectedListLocked() const;

    mutable std::mutex m_mutex; // guards the members below
    std::map<std::string, List> m_lists;
    std::string m_list;
    std::map<std::string, std::string> m_waveforms{{"SINE", std::string(256, 's')},
                                                   {"TWOTONE", std::string(512, 't')}};
    std::string m_waveform;
};

} // namespace SignalGenerator
