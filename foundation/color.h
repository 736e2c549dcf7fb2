// Colours are 32-bit values 0x00BBGGRR (red in the low byte). Two values of
// the top byte are marks rather than colours. This file holds the marks and
// the text form of a colour used in definition files.
#pragma once

#include <cstdint>

#include "foundation/string.h"

// Exactly this value means "no colour of its own": take the default.
constexpr uint32_t COLOR_NOT_SET = 0xFF000000;
// Exactly this value means "draw nothing": the background shows through.
constexpr uint32_t COLOR_TRANSPARENT = 0xFF000001;

// Seven characters, "#RRGGBB", give 0x00BBGGRR: the digit pairs are red,
// green, blue. Nine characters, "#AARRGGBB", give the number as written.
// Any other length, a null text or a character that is no hexadecimal
// digit gives 0. The first character is not looked at.
uint32_t ParseColor(const char* text);
// The mirror of ParseColor: up to 0xFFFFFF "#RRGGBB", above it the eight
// digits of the value; upper case either way.
SString FormatColor(uint32_t color);
