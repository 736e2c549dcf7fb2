#include "foundation/keyboard.h"

#include <array>
#include <atomic>

namespace {

using KeyNames = std::array<const char*, SKeyboard::KEY_CODE_COUNT>;

// Fills names from first on with the given list.
template <size_t N> void Put(KeyNames& names, int first, const char* const (&list)[N]) {
    for (size_t i = 0; i < N; ++i) {
        names[first + i] = list[i];
    }
}

KeyNames BuildKeyNames() {
    KeyNames names;
    names.fill("");
    Put(names, 1, {"LBUTTON", "RBUTTON", "CANCEL", "MBUTTON"});
    Put(names, 8, {"BACK", "TAB"});
    Put(names, 12, {"CLEAR", "RETURN"});
    Put(names, 16, {"SHIFT", "CONTROL", "MENU", "PAUSE", "CAPITAL"});
    Put(names, 27, {"ESCAPE"});
    Put(names, 32, {"SPACE", "PRIOR", "NEXT", "END", "HOME", "LEFT", "UP", "RIGHT", "DOWN"});
    Put(names, 41, {"SELECT", "PRINT", "EXECUTE", "SNAPSHOT", "INSERT", "DELETE", "HELP"});
    Put(names, 48, {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"});
    Put(names, 65, {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M",
                    "N", "O", "P", "Q", "R", "S", "T", "U", "V", "W", "X", "Y", "Z"});
    Put(names, 91, {"LWIN", "RWIN", "APPS"});
    Put(names, 96,
        {"NUM0", "NUM1", "NUM2", "NUM3", "NUM4", "NUM5", "NUM6", "NUM7", "NUM8", "NUM9"});
    Put(names, 106, {"MULTIPLY", "ADD", "SEPARATOR", "SUBTRACT", "DECIMAL", "DIVIDE"});
    Put(names, 112,
        {"F1",  "F2",  "F3",  "F4",  "F5",  "F6",  "F7",  "F8",  "F9",  "F10", "F11", "F12",
         "F13", "F14", "F15", "F16", "F17", "F18", "F19", "F20", "F21", "F22", "F23", "F24"});
    Put(names, 144, {"NUMLOCK", "SCROLL"});
    Put(names, 246, {"ATTN", "CRSEL", "EXSEL", "EREOF", "PLAY", "ZOOM"});
    return names;
}

// ASCII comparison without regard to case, the same in every locale.
bool EqualNoCase(const char* a, const char* b) {
    for (;; ++a, ++b) {
        char x = (*a >= 'a' && *a <= 'z') ? char(*a - 32) : *a;
        char y = (*b >= 'a' && *b <= 'z') ? char(*b - 32) : *b;
        if (x != y) {
            return false;
        }
        if (x == 0) {
            return true;
        }
    }
}

// Built once on first use; a function-local static is initialised safely
// even when several threads ask at once.
const KeyNames& GetKeyNames() {
    static const KeyNames names = BuildKeyNames();
    return names;
}

} // namespace

SKeyboard::~SKeyboard() = default;

SString SKeyboard::GetKeyName(int code) {
    if (code < 0 || code >= KEY_CODE_COUNT) {
        return SString("");
    }
    return SString(GetKeyNames()[code]);
}

int SKeyboard::GetKeyCode(const char* text) {
    if (text == nullptr || *text == 0) {
        return -1;
    }
    const KeyNames& names = GetKeyNames();
    for (int code = 0; code < KEY_CODE_COUNT; ++code) {
        if (EqualNoCase(names[code], text)) {
            return code;
        }
    }
    return -1;
}

namespace {
std::atomic<SKeyboard::ModifierSource> modifierSource{nullptr};
} // namespace

unsigned SKeyboard::GetModifiers() {
    ModifierSource source = modifierSource.load();
    return source != nullptr ? source() : 0;
}

void SKeyboard::SetModifierSource(ModifierSource source) {
    modifierSource.store(source);
}
