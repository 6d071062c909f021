#pragma once

#include "gui/boxtest.h"
#include "public/hookrecorder.h"
#include "support/remoteclient.h"

namespace Zorvan::test {

using Strings = std::vector<std::string>;

inline void print(const QString &text)
{
    Debug::println(kernel, 0, text, 0);
}

inline void allow(bool allowed)
{
    Debug::setClientsAllowed(allowed);
    EXPECT_TRUE(runUntil([allowed] { return Debug::clientsAllowed() == allowed; }));
}

/// A command that RemoteTest notes.
inline QByteArray note(const QByteArray &text)
{
    return "<hook key='note' parameters='" + text + "'/>";
}

class Greeted : public RemoteClient
{
public:
    explicit Greeted(quint16 port)
        : RemoteClient(port)
    {
        EXPECT_TRUE(waitForGreeting());
    }
};

/// A host with an open port, whose commands are noted.
class RemoteTest : public BoxTest
{
protected:
    RemoteTest()
        : port(openRemoteAccess(host))
    {
        host.store("serverPort", port);
        Debug::installHook("note", &notes, true);
        takeWindowText();
    }
    ~RemoteTest() override { Debug::exitDebug(); }

    /// Waits until so many commands are noted.
    void expectNotes(const Strings &expected)
    {
        Strings texts;
        EXPECT_TRUE(runUntil([&] {
            for (const std::string &call : notes.takeCalls())
                texts.push_back(call.substr(5)); // behind "note="
            return texts.size() >= expected.size();
        }));
        EXPECT_EQ(texts, expected);
    }

    /// The first client would get it: that the port is open.
    void takeWindowText()
    {
        Greeted first(port);
        EXPECT_TRUE(first.waitFor("\r\n"));
        first.close();
        EXPECT_TRUE(first.waitForDisconnect());
        runOn();
    }

    const quint16 port;
    HookRecorder notes;
};

} // namespace Zorvan::test
