#pragma once

namespace Zorvan {

/// \name The channel table of the system log
/// One channel per tag, made by the tag's first message. gyxLog() in <zorvan/debug.h> is the way in.
/// @{

/// Forgets all channels; a message being written finishes first or goes on unharmed. The next message of a
/// tag makes its channel anew: it reads the properties and inspects its files again.
void dropLogChannels();

/// From now on messages take the short way of a process that is ending: default file, no time stamp, no lock.
void closeLogTable();

/// @}

/// Makes the locks of the process-level services survive fork(). Idempotent; whoever registers locks that are
/// taken before these calls it first.
void registerLowlevelForkHandlers();

} // namespace Zorvan
