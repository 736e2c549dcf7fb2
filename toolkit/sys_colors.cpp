#include "toolkit/sys_colors.h"

#include <array>
#include <cstddef>

namespace {

// 0x00BBGGRR.
constexpr std::array<uint32_t, SYS_COLOR_COUNT> kClassic = {
    0xC8C8C8, // scroll bar
    0x000000, // desktop
    0xD1B499, // active caption
    0xDBCDBF, // inactive caption
    0xF0F0F0, // menu
    0xFFFFFF, // window
    0x646464, // window frame
    0x000000, // menu text
    0x000000, // window text
    0x000000, // caption text
    0xB4B4B4, // active border
    0xFCF7F4, // inactive border
    0xABABAB, // application work space
    0xFF9933, // highlight
    0xFFFFFF, // highlight text
    0xF0F0F0, // button face
    0xA0A0A0, // button shadow
    0x6D6D6D, // grey text
    0x000000, // button text
    0x544E43, // inactive caption text
    0xFFFFFF, // button highlight
    0x696969, // dark 3D shadow
    0xE3E3E3, // 3D light
    0x000000, // tooltip text
    0xE1FFFF, // tooltip background
    0xB5B5B5, // (unused)
    0xCC6600, // hot-track link
    0xEAD1B9, // active caption gradient
    0xF2E4D7, // inactive caption gradient
    0xFF9933, // menu highlight
    0xF0F0F0, // menu bar
};

// Written only from the window thread before windows exist, read after.
std::array<uint32_t, SYS_COLOR_COUNT> table = kClassic;

} // namespace

uint32_t GetSysColor(int index) {
    return index >= 0 && index < SYS_COLOR_COUNT ? table[static_cast<size_t>(index)] : 0;
}

void SetSysColor(int index, uint32_t color) {
    if (index >= 0 && index < SYS_COLOR_COUNT)
        table[static_cast<size_t>(index)] = color & 0xFFFFFF;
}

void ResetSysColors() { table = kClassic; }
