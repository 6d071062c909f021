#include "settingsdialog/outputfilterdialog.h"

namespace Zorvan {

bool editOutputFilter(QWidget *)
{
    return false;
}

} // namespace Zorvan
