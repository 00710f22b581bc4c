#include "X11KeyTable.h"

#include "settings/KeyTable.h"

#include <X11/keysym.h>

#include <array>
#include <utility>

namespace x11keys {

namespace {
// kVK_ANSI_* and the named keys of the macOS keyboard header, by code.
constexpr std::array<std::pair<quint32, quint32>, 49> macKeyToKeysym{{
    {0, XK_a},  {11, XK_b}, {8, XK_c},  {2, XK_d},  {14, XK_e}, {3, XK_f},  {5, XK_g},
    {4, XK_h},  {34, XK_i}, {38, XK_j}, {40, XK_k}, {37, XK_l}, {46, XK_m}, {45, XK_n},
    {31, XK_o}, {35, XK_p}, {12, XK_q}, {15, XK_r}, {1, XK_s},  {17, XK_t}, {32, XK_u},
    {9, XK_v},  {13, XK_w}, {7, XK_x},  {16, XK_y}, {6, XK_z},
    {29, XK_0}, {18, XK_1}, {19, XK_2}, {20, XK_3}, {21, XK_4}, {23, XK_5}, {22, XK_6},
    {26, XK_7}, {28, XK_8}, {25, XK_9},
    {27, XK_minus}, {24, XK_equal}, {33, XK_bracketleft}, {30, XK_bracketright},
    {42, XK_backslash}, {41, XK_semicolon}, {39, XK_apostrophe}, {43, XK_comma},
    {47, XK_period}, {44, XK_slash},
    {49, XK_space}, {36, XK_Return}, {48, XK_Tab},
}};
} // namespace

std::optional<quint32> keysymForMacKeyCode(quint32 keyCode)
{
    for (const auto &[code, keysym] : macKeyToKeysym) {
        if (code == keyCode)
            return keysym;
    }
    return std::nullopt;
}

quint16 modifierMask(quint32 carbonModifiers)
{
    quint16 mask = 0;
    if (carbonModifiers & keytable::CarbonCommand)
        mask |= Mod4Mask;
    if (carbonModifiers & keytable::CarbonOption)
        mask |= Mod1Mask;
    if (carbonModifiers & keytable::CarbonControl)
        mask |= ControlMask;
    if (carbonModifiers & keytable::CarbonShift)
        mask |= ShiftMask;
    return mask;
}

} // namespace x11keys
