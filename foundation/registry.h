// SRegistry: reads and writes single values of the settings store, a tree of
// keys under a few fixed roots, each value named and typed (text, 32-bit
// number or raw bytes). Every call stands alone: nothing is kept between
// calls, a failure reads as the empty string or 0, and a write replaces the
// store file atomically.
//
// Each root is one text file in the settings folder: $MELKORA_CONFIG_HOME
// when set, else $XDG_CONFIG_HOME/melkora, else ~/.config/melkora. The root
// of the current user is "registry.ini"; the others (rarely written) are
// "registry-<root>.ini" beside it. The file holds one section per sub key,
// "[Software\Vendor\Program]", and one line per value:
//   "Name"="text"          a text value
//   "Name"=dword:0000001f  a 32-bit number, 8 hexadecimal digits
//   "Name"=hex:01,ff,20    raw bytes
//   @=...                  the key's default value (a null name)
// Inside quotes, "\\" is a backslash, "\"" a quote and "\xHH" any byte below
// a space or 127. Sub keys and value names compare without regard to ASCII
// case. A store without its first line "MELKORA REGISTRY 1", or a line that
// does not parse, is ignored: a damaged or foreign file reads as empty.
#pragma once

#include <cstdint>

#include "foundation/string.h"

// The predefined roots, with the values the original platform gives them.
using HKEY = uint32_t;
inline constexpr HKEY HKEY_CLASSES_ROOT = 0x80000000u;
inline constexpr HKEY HKEY_CURRENT_USER = 0x80000001u;
inline constexpr HKEY HKEY_LOCAL_MACHINE = 0x80000002u;
inline constexpr HKEY HKEY_USERS = 0x80000003u;
inline constexpr HKEY HKEY_CURRENT_CONFIG = 0x80000005u;

class SRegistry {
public:
    // Value types, numbered as the original platform numbers them.
    static constexpr uint32_t REG_SZ = 1;
    static constexpr uint32_t REG_BINARY = 3;
    static constexpr uint32_t REG_DWORD = 4;
    // A read hands over at most this many bytes, the terminator of a text
    // included: a longer value reads as the empty string.
    static constexpr int READ_LIMIT = 256;

    SRegistry() = default;
    virtual ~SRegistry();

    // Reads. subKey is a path below root with "\" between its parts; a null
    // or empty subKey means the root's own values. A null name is the key's
    // default value. The stored type is not checked: a read hands over the
    // stored bytes (a number as 4 bytes, low byte first; a text with its
    // terminator), a text read stopping at the first zero byte.
    // The text, or "" when absent or longer than READ_LIMIT - 1 bytes.
    static SString ReadString(HKEY root, const char* subKey, const char* name);
    // The value's bytes as a little-endian number when they fit in 4, else 0.
    static uint32_t ReadInt(HKEY root, const char* subKey, const char* name);
    // Up to maxBytes raw bytes into buffer (maxBytes may be 0 to ask for
    // the size). Returns the stored size, or -1 when absent; nothing is
    // copied when the value is larger than maxBytes.
    static int ReadBinary(HKEY root, const char* subKey, const char* name, void* buffer,
                          int maxBytes);

    // Writes. A null or empty subKey gives false and touches nothing. The
    // key is made when missing. False when the store cannot be written.
    static bool WriteInt(HKEY root, const char* subKey, const char* name, uint32_t value);
    // A null text writes the empty text.
    static bool WriteString(HKEY root, const char* subKey, const char* name, const char* text);
    static bool WriteBinary(HKEY root, const char* subKey, const char* name, const void* data,
                            int count);
    // Removes one value; true when it is gone afterwards (absent counts).
    static bool DeleteValue(HKEY root, const char* subKey, const char* name);

    // The settings folder, without a trailing "/", and the store file of a
    // root ("" for an unknown root).
    static SString GetFolder();
    static SString GetStorePath(HKEY root);
};
