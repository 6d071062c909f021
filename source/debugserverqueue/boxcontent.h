#pragma once

#include <QString>

#include <array>

namespace Zorvan {

/// What a message box shows. Buttons and icon are the codes of Debug::debugMessageBox(), not checked.
struct BoxContent
{
    QString caption;
    QString heading;
    QString message;
    bool modal = true;
    int icon = 0;
    std::array<int, 3> buttons{};
};

namespace boxcodes {

constexpr int buttonMask = 15; ///< the bits that choose the button
constexpr int defaultFlag = 16; ///< marks the default button
constexpr int ok = 1;
constexpr int cancel = 2;
constexpr int noAnswer = -1; ///< closed without a button, or not shown at all

} // namespace boxcodes

} // namespace Zorvan
