#include "panel/remotecontrol.h"

#include "console.h"
#include "instrument.h"

#include <QFile>
#include <QFileInfo>

#include <fstream>
#include <future>

namespace SignalGenerator {

RemoteControl::RemoteControl(Instrument &instrument, Console &console)
    : m_instrument(instrument)
    , m_console(console)
{}

RemoteControl::~RemoteControl()
{
    m_stop = true;
    m_instrument.close(); // the command thread may be waiting for the end of a sweep
}

void RemoteControl::send(const std::string &line)
{
    ++m_waiting;
    m_thread.post([this, line] {
        m_console.runLine(line);
        m_guiThread.post([this] {
            --m_waiting;
            Q_EMIT done();
        });
    });
}

std::string RemoteControl::ask(const std::string &line)
{
    std::promise<std::string> reply;
    m_thread.post([this, &line, &reply] { reply.set_value(m_console.runLine(line)); });
    return reply.get_future().get();
}

void RemoteControl::takeErrors()
{
    ++m_waiting;
    m_thread.post([this] {
        const std::string errors = m_instrument.execute("SYSTem:ERRor:ALL?");
        m_guiThread.post([this, errors] {
            --m_waiting;
            if (errors.rfind("0,", 0) != 0) // somebody else may have taken them meanwhile
                Q_EMIT errorsTaken(QString::fromLatin1(errors.c_str()));
        });
    });
}

void RemoteControl::startScript(const QString &path)
{
    if (m_scriptRuns)
        return;
    m_scriptRuns = true;
    m_stop = false;
    m_thread.post([this, file = QFile::encodeName(path).toStdString()] { readScript(file); });
}

void RemoteControl::stopScript()
{
    m_stop = true;
    m_instrument.abort();
}

void RemoteControl::readScript(const std::string &path)
{
    m_script = {QFileInfo(QFile::decodeName(path.c_str())).fileName().toStdString(), {}, 0, 0};
    std::ifstream file(path);
    if (!file)
        return endScript("Cannot open " + m_script.name);
    std::string line;
    while (std::getline(file, line))
        m_script.lines.push_back(line);
    m_script.count = static_cast<int>(m_script.lines.size());
    runNextLine();
}

void RemoteControl::runNextLine()
{
    if (m_stop)
        return endScript(m_script.name + ": stopped after line " + std::to_string(m_script.done));
    if (m_script.lines.empty())
        return endScript(m_script.name + ": all " + std::to_string(m_script.count) + " lines are done");
    m_console.runLine(m_script.lines.front());
    m_script.lines.pop_front();
    m_guiThread.post(
        [this, line = ++m_script.done, lines = m_script.count] { Q_EMIT scriptAdvanced(line, lines); });
    m_thread.post([this] { runNextLine(); });
}

void RemoteControl::endScript(const std::string &result)
{
    m_guiThread.post([this, result] {
        m_scriptRuns = false;
        Q_EMIT scriptEnded(QString::fromStdString(result));
    });
}

} // namespace SignalGenerator
