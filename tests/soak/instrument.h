#pragma once

#include "actors.h"
#include "support/guiapplication.h"
#include "support/maphost.h"

#include <memory>
#include <optional>
#include <random>
#include <thread>

namespace Zorvan::soak {

/// What goes wrong in a round.
struct Faults
{
    enum class Disk { None, FolderGone, Full, Maximum } disk = Disk::None;
    enum class Gui { None, Clients, Access, Cycles, Application } gui = Gui::None;
    bool clock = false;
    bool filter = false;
    bool receiver = false;
};

/// An instrument with a window, plays rounds of faults.
class Instrument
{
public:
    /// With a disk: it tries to mount a small one for the output file.
    Instrument(unsigned seed, bool withDisk);
    ~Instrument();
    Instrument(const Instrument &) = delete;
    Instrument &operator=(const Instrument &) = delete;

    void play(const Faults &faults, std::chrono::milliseconds length, const std::string &sabotage);
    /// Ends application and library and forgets the round: what is left is what a process holds for good.
    void end();

private:
    void start(const Faults &faults);
    void startApplication();
    void startActors(const Faults &faults);
    void goWrong(const Faults &faults);
    /// The library, or the application and with it the library, ends and starts again.
    void cycle(bool withApplication);
    void settle();
    Sinks collect();
    /// Runs the event loop, or sleeps while there is no application.
    void spin(std::chrono::milliseconds length);
    void up();
    void down();
    void keepWindow();

    std::minstd_rand m_random;
    std::string m_disk; ///< where it is mounted; empty if it is not
    const std::unique_ptr<test::MapHost> m_host;
    std::optional<test::TestApplication<QApplication>> m_application;
    std::unique_ptr<Round> m_round;
    std::vector<std::thread> m_actors;
    Sinks m_sinks;
    std::string m_folder; ///< of the output file in this round
    std::string m_file;
    std::chrono::steady_clock::time_point m_lastTurn;
    int m_users = 0; ///< calls of initDebug()
};

/// Processes whose assertions fail while the daemon that answers them is killed, one after the other: each
/// failure comes back, and stands in the system log once.
void playDaemons(std::chrono::milliseconds length);

} // namespace Zorvan::soak
