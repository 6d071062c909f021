#pragma once

class QWidget;

namespace Zorvan {

/// Gives the parts of \a form the texts of the normal or of the small display, with tooltips and keys.
void showDisplayTexts(QWidget &form, bool isSmallDisplay);

} // namespace Zorvan
