#include "leakanalyzer/analysiscontrol.h"
#include "lowlevelfunctions/daemonlink.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "lowlevelfunctions/systemlog.h"
#include "lowlevelfunctions/tracehistory.h"

namespace Zorvan {

namespace {

/// What happens when the library is loaded and unloaded, in this order. The state itself lives elsewhere, in
/// objects that are never destroyed: static objects of the host may log before this one exists and after it
/// is gone.
class LoadSequence
{
public:
    LoadSequence()
    {
        analysis::registerForkHandlers(); // before all others
        registerLowlevelForkHandlers();
        daemonLink();
        traceHistory();
        loadLowlevelProperties();
        analysis::start();
    }
    ~LoadSequence() { closeLogTable(); }
    LoadSequence(const LoadSequence &) = delete;
    LoadSequence &operator=(const LoadSequence &) = delete;
};

const LoadSequence s_loadSequence;

} // namespace

} // namespace Zorvan
