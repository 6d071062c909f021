#pragma once

#include "table.h"

#include <initializer_list>

namespace bench {

/// What another logger can be measured at; subjects of the same kind do comparable work: a line with time,
/// thread, level and message. A function is null where the logger has no such thing.
struct Peer
{
    const char *name;
    Subject (*refused)(); ///< a message that the level keeps away
    Subject (*toFile)(const std::string &folder); ///< a line, flushed to a file that stays open
    Subject (*formatted)(); ///< a line, formatted and dropped
    Subject (*handedOver)(const std::string &line) = nullptr; ///< a finished line, to the logger's own thread
    /// A line that the logger's own thread writes to a file that stays open, without a flush for each line.
    Subject (*toFileLater)(const std::string &folder) = nullptr;
};

/// Every peer's source file adds itself before main().
bool addPeer(const Peer &peer);

/// Null if the peer is not installed.
const Peer *findPeer(const std::string &name);

/// The peers' subjects of one kind; on the report a remark for each peer that is not installed.
template <typename... Arguments>
std::vector<Subject> peerSubjects(Subject (*Peer::*kind)(Arguments...),
                                  std::initializer_list<const char *> names,
                                  const std::decay_t<Arguments> &...arguments)
{
    std::vector<Subject> subjects;
    for (const char *const name : names) {
        if (const Peer *const peer = findPeer(name))
            subjects.push_back((peer->*kind)(arguments...));
        else
            say(std::string("\n") + name + ": not installed\n");
    }
    return subjects;
}

/// The text that every logger gets.
extern const char *const messageText;

} // namespace bench
