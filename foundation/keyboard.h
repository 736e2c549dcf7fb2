// SKeyboard: the names of the 256 virtual key codes ("RETURN", "F5",
// "NUM0", "A") and the bits that tell which modifier keys are held. Key
// codes are the classic virtual-key numbers the toolkit uses everywhere.
#pragma once

#include "foundation/string.h"

class SKeyboard {
public:
    // Bits of a modifier state.
    static constexpr unsigned MODIFIER_SHIFT = 1;
    static constexpr unsigned MODIFIER_CTRL = 2;
    static constexpr unsigned MODIFIER_ALT = 4;

    // Key codes run from 0 to KEY_CODE_COUNT - 1.
    static constexpr int KEY_CODE_COUNT = 256;

    virtual ~SKeyboard();

    // The name of a key code; empty for a code without a name or out of
    // range.
    static SString GetKeyName(int code);
    // The code whose name is text, compared without regard to case; -1 for
    // a null, empty or unknown name.
    static int GetKeyCode(const char* text);

    // The modifier keys held now: MODIFIER_CTRL and MODIFIER_SHIFT bits.
    // Reading them needs the platform: the window core installs the source
    // (SetModifierSource); without one nothing is held.
    static unsigned GetModifiers();
    using ModifierSource = unsigned (*)();
    static void SetModifierSource(ModifierSource source);
};
