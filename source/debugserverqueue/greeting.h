#pragma once

#include <QByteArray>

namespace Zorvan {

/// What a remote client is told first: the commands, the global settings, the modules with their classes and
/// levels, the hooks. Latin-1, each record with its line end.
///
/// Any thread. Nothing is escaped: a quotation mark in a filter or name is the client's to cope with.
[[nodiscard]] QByteArray greeting();

} // namespace Zorvan
