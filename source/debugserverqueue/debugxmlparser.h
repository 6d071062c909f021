#pragma once

#include <QXmlStreamReader>

namespace Zorvan {

/// Executes the commands of one unit: the elements "hook", "filter" and "config", at whatever depth, in the
/// order in which they stand. Other elements are passed over.
///
/// An element before an error is executed, none behind it. Units come from the network, so what makes a small
/// text expensive counts as an error, too: see harmlessPart(), and more than 256 elements inside each other.
///
/// One object per unit, in the GUI thread: a command may run an event loop in which other units are executed.
class DebugXmlParser
{
public:
    explicit DebugXmlParser(const QString &unit);

    /// Executes the next command and returns true; false if there is none. The command may do anything, even
    /// end the library.
    bool executeNext();

private:
    QXmlStreamReader m_reader;
    int m_depth = 0; ///< elements around the present place
};

} // namespace Zorvan
