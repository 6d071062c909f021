#pragma once

#include "options.h"
#include "syslogsender.h"

#include <memory>

namespace SignalGenerator {

/// The way to the collector that the options name; null: they name none.
[[nodiscard]] std::unique_ptr<SyslogSender> makeCollector(const Options &options);

/// Tells on the standard error what became of the lines.
void printReport(const SyslogReport &report);

} // namespace SignalGenerator
