#include "instrument.h"

#include "support/programdata.h"

#include <QPixmapCache>

#include <algorithm>
#include <filesystem>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace Zorvan::soak {

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::size_t guiActor = 15;
constexpr int receivedModule = 5;
constexpr int systemLogSize = 6; // a property
constexpr int fileMaximum = 200'000; // bytes
constexpr auto stall = 280ms; // a little less than a closing server waits for its clients

std::atomic<Round *> s_round{nullptr};

/// Its line tap hears of the port, too.
class Host : public test::MapHost
{
public:
    void outputLine(const QString &line) override
    {
        static const std::string notice = "listening on 127.0.0.1, port ";
        const std::string text = line.toStdString();
        Round *const round = s_round;
        if (round == nullptr)
            return;
        if (const std::size_t place = text.find(notice); place != std::string::npos)
            round->port = std::stoi(text.substr(place + notice.size()));
        round->ledger.pass(text, true);
    }
};

void receive(hookData *data)
{
    s_round.load()->ledger.pass(data->text, false);
}

/// In a name space of mounts that ends with the process: nothing is left behind.
bool mountDisk(const std::string &place)
{
    fs::create_directory(place);
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("soak", place.c_str(), "tmpfs", 0, "size=24m") == 0;
}

/// Spoils what a sink has got: does the account notice?
void spoil(std::string &text, const std::string &how)
{
    const std::size_t mark = text.find("~S", text.size() / 2); // not a line of the library itself
    const std::size_t start = text.rfind('\n', mark) + 1;
    const std::size_t end = text.find('\n', mark) + 1;
    const std::string line = text.substr(start, end - start);
    if (how == "lost")
        text.erase(start, line.size());
    else if (how == "doubled")
        text.insert(start, line);
    else if (how == "torn")
        text.erase(mark + 4, 2);
    else if (how == "reordered")
        text.erase(start, line.size()).insert(text.find('\n', text.find("~S", start)) + 1, line);
}

} // namespace

Instrument::Instrument(unsigned seed, bool withDisk)
    : m_random(seed)
    , m_host(std::make_unique<Host>())
{
    if (withDisk && mountDisk(ownFolder() + "/disk"))
        m_disk = ownFolder() + "/disk";
    setLowlevelIntegerProperty(systemLogSize, 100'000'000); // bytes: it keeps everything
    m_host->store("serverAddress", "127.0.0.1");
    m_host->store("serverPort", 0);
    m_host->store("DebugServerFileOutput", "On");
}

Instrument::~Instrument()
{
    end();
}

/// Without Qt's cache of pixmaps, which keeps the names of all it ever had, those of ended applications, too.
void Instrument::startApplication()
{
    m_application.emplace();
    QPixmapCache::setCacheLimit(0);
}

void Instrument::end()
{
    m_application.reset();
    down();
    m_round.reset();
}

void Instrument::up()
{
    Debug::initDebug();
    ++m_users;
    installRemoteHook();
}

void Instrument::down()
{
    for (; m_users > 0; --m_users)
        Debug::exitDebug();
}

void Instrument::spin(std::chrono::milliseconds length)
{
    const auto end = Clock::now() + length;
    if (!m_application)
        std::this_thread::sleep_until(end);
    const auto turn = [&] {
        answerBoxes();
        const auto now = Clock::now();
        m_round->stalls += now - m_lastTurn > stall ? 1U : 0U;
        m_lastTurn = now;
        ++m_round->turns;
        beat(guiActor);
        return now >= end;
    };
    static_cast<void>(m_application ? test::runUntil(turn) : turn());
}

void Instrument::keepWindow()
{
    if (m_application)
        m_sinks.windows.push_back(test::windowText());
}

void Instrument::start(const Faults &faults)
{
    using Gui = Faults::Gui;
    m_sinks = Sinks();
    m_folder = (faults.disk == Faults::Disk::Full && !m_disk.empty() ? m_disk : ownFolder()) + "/out";
    m_file = m_folder + "/out.log";
    const int maximum = faults.disk == Faults::Disk::Maximum ? fileMaximum : -1;
    const char *const filter = faults.filter ? "k~E|[+][+]" : "";
    m_host->store("DebugServerFile", m_file.c_str());
    m_host->store("DebugServerFileSize", maximum);
    m_host->store("DebugServerRegexpFilter", filter); // a new window sets it
    const bool isOpen = faults.gui != Gui::None && faults.gui != Gui::Application;
    m_host->store("serverPortOpen", isOpen ? 1 : 0);
    fs::create_directory(m_folder);
    fs::remove_all(test::libraryFolder()); // the system log
    fs::create_directory(test::libraryFolder());
    if (!m_application)
        startApplication();
    m_round = std::make_unique<Round>();
    s_round = m_round.get();
    up();
    Debug::setOutputFileName(m_file.c_str());
    Debug::setMaxOutputFileSize(maximum);
    Debug::setOutputFilter(QString::fromLatin1(filter));
    spin(20ms);
    if (ftruncate(STDOUT_FILENO, 0) != 0)
        count("!no standard output");
}

void Instrument::startActors(const Faults &faults)
{
    std::size_t number = 0;
    const auto act = [&](const Step &step) {
        ++m_round->running;
        m_actors.emplace_back([&round = *m_round, step, number] {
            for (; !round.stop; beat(number))
                std::this_thread::sleep_for(step());
            rest(number);
            --round.running;
        });
        ++number;
    };
    const auto seed = [this] { return static_cast<unsigned>(m_random()); };
    while (number < producers)
        act(producer(*m_round, number, seed()));
    while (number < stayingClient + 3)
        act(clientActor(*m_round, number, seed()));
    act(hookActor(*m_round));
    act(boxActor(*m_round));
    if (faults.disk == Faults::Disk::FolderGone)
        act(folderActor(*m_round, m_folder));
    if (faults.disk == Faults::Disk::Full)
        act(m_disk.empty() ? deviceActor(*m_round, m_file) : diskActor(*m_round, m_file));
    if (faults.clock)
        act(clockActor());
}

/// One fault of the GUI thread, and a receiver that comes and goes.
void Instrument::goWrong(const Faults &faults)
{
    if (faults.receiver)
        Debug::setOutputReceiver(receivedModule, m_random() % 2 == 0 ? receive : nullptr);
    if (faults.gui == Faults::Gui::Cycles || faults.gui == Faults::Gui::Application)
        cycle(faults.gui == Faults::Gui::Application);
    if (faults.gui == Faults::Gui::Access && m_round->port > 0) {
        m_round->port = 0;
        Debug::setClientsAllowed(false);
        count("remote access switched off and on");
        spin(30ms);
        Debug::setClientsAllowed(true);
    }
    spin(60ms);
}

void Instrument::cycle(bool withApplication)
{
    keepWindow();
    m_round->port = 0;
    m_round->loop.set(Circumstance::Changing);
    m_round->library.set(Circumstance::Changing);
    if (withApplication) {
        m_application.reset();
        m_users = 0; // the library ends with it
    }
    down();
    m_round->library.set(Circumstance::Bad);
    {
        const std::lock_guard guard(m_round->filePlace);
        std::error_code ignored; // there may be none at the moment
        fs::rename(m_file, nextName(m_folder), ignored); // the next run would begin it anew
    }
    spin(std::chrono::milliseconds(m_random() % 10));
    m_round->library.set(Circumstance::Changing);
    up();
    m_round->library.set(Circumstance::Good);
    spin(15ms);
    if (withApplication) {
        startApplication();
        if (m_random() % 2 == 0)
            up(); // otherwise whoever prints connects the library with it
        spin(20ms);
    }
    m_round->loop.set(Circumstance::Good);
    count(withApplication ? "applications" : "library ended and started");
}

/// Everything ends in good order: what is missing then is lost.
void Instrument::settle()
{
    m_round->stop = true;
    while (m_round->running > m_round->connected) // clients wait for the last line
        spin(10ms);
    shiftClock(0);
    Debug::setOutputReceiver(receivedModule, nullptr);
    m_round->fence = printFence(*m_round);
    const auto hasArrived = [&] {
        Stream shown;
        shown.takeText(test::windowText());
        const bool isShown =
            !shown.lines.empty() && m_round->ledger.tapOrderOf(shown.lines.back()) >= m_round->fence;
        return m_round->running == 0 && (m_round->fenceSeen || isShown);
    };
    const auto end = Clock::now() + 15s;
    for (spin(50ms); !hasArrived() && Clock::now() < end; spin(50ms))
        printFence(*m_round); // the first one may have gone to a client that broke off
    if (!hasArrived())
        count("!the last line never arrived");
    Debug::setClientsAllowed(false);
    while (m_round->running > 0)
        spin(10ms);
    for (std::thread &actor : m_actors)
        actor.join();
    m_actors.clear();
    keepWindow();
}

Sinks Instrument::collect()
{
    std::vector<fs::path> files;
    for (const auto &entry : fs::directory_iterator(fs::path(m_folder).parent_path())) {
        if (entry.path().string().rfind(m_folder + '.', 0) == 0)
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end()); // in the order in which they were moved away
    files.emplace_back(m_folder);
    for (const fs::path &file : files) {
        const fs::path content = fs::is_directory(file) ? file / "out.log" : file;
        if (!fs::is_symlink(content)) // the device that is always full never ends, either
            m_sinks.file += test::readFile(content) + "\n"; // its last line may be torn
        fs::remove_all(file);
    }
    m_sinks.standardOutput = test::readFile(ownFolder() + "/stdout");
    m_sinks.systemLog = test::readFile(test::libraryFile("GYX-syslog-0.log"));
    m_sinks.connections = std::move(m_round->connections);
    return std::move(m_sinks);
}

void Instrument::play(const Faults &faults, std::chrono::milliseconds length, const std::string &sabotage)
{
    const auto end = Clock::now() + length;
    start(faults);
    startActors(faults);
    while (Clock::now() < end)
        goWrong(faults);
    if (sabotage == "hang")
        std::this_thread::sleep_for(1h);
    settle();
    down();
    spin(20ms);
    s_round = nullptr;
    Sinks sinks = collect();
    spoil(sabotage.rfind("window-", 0) == 0 ? sinks.windows.back() : sinks.file,
          sabotage.substr(sabotage.rfind('-') + 1));
    Rules rules;
    rules.isFiltering = faults.filter;
    rules.diskGetsFull = faults.disk == Faults::Disk::Full;
    rules.fileMaximum = faults.disk == Faults::Disk::Maximum ? fileMaximum : -1;
    const std::uint64_t faultsBefore = soak::faults();
    m_round->ledger.check(sinks, rules);
    if (soak::faults() > faultsBefore)
        std::fprintf(stderr, "in a round with GUI fault %d, disk fault %d\n", static_cast<int>(faults.gui),
                     static_cast<int>(faults.disk));
    checkHooks();
    count("rounds");
}

} // namespace Zorvan::soak
