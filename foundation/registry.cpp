#include "foundation/registry.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pwd.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

#include "foundation/disk.h"
#include "foundation/file.h"

namespace {

// The first line of every store this program writes.
const char STORE_MAGIC[] = "MELKORA REGISTRY 1";
// A store larger than this is not ours: it reads as empty.
const int STORE_MAX_SIZE = 16 * 1024 * 1024;

struct Value {
    bool isDefault = false; // the key's unnamed value
    std::string name;
    uint32_t type = SRegistry::REG_SZ;
    // The stored bytes: a text with its terminator, a number as 4 bytes
    // low byte first, or the raw bytes.
    std::string bytes;
};

struct Key {
    std::string path;
    std::vector<Value> values;
};

using Store = std::vector<Key>;

// ASCII case-blind equality, as key and value names compare.
bool SameName(const std::string& a, const char* b) {
    size_t length = std::strlen(b);
    if (a.size() != length) {
        return false;
    }
    for (size_t i = 0; i < length; ++i) {
        unsigned char x = static_cast<unsigned char>(a[i]);
        unsigned char y = static_cast<unsigned char>(b[i]);
        if (x >= 'A' && x <= 'Z') {
            x = static_cast<unsigned char>(x + 32);
        }
        if (y >= 'A' && y <= 'Z') {
            y = static_cast<unsigned char>(y + 32);
        }
        if (x != y) {
            return false;
        }
    }
    return true;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

const char HEX[] = "0123456789abcdef";

// Escapes a name or text for the store: backslash, quote, and every byte
// below a space or 127 as "\xHH". Bytes from 128 (UTF-8) stay as they are.
std::string Escape(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        unsigned char byte = static_cast<unsigned char>(c);
        if (c == '\\' || c == '"') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            out += "\\x";
            out += HEX[byte >> 4];
            out += HEX[byte & 15];
        } else {
            out += c;
        }
    }
    return out;
}

// Reads an escaped text from line at pos up to an unescaped quote (when
// quoted) or the end. False on a bad escape, a raw control byte, or a
// missing closing quote; pos then stands past the closing quote.
bool Unescape(const std::string& line, size_t& pos, bool quoted, std::string& out) {
    out.clear();
    while (pos < line.size()) {
        char c = line[pos];
        unsigned char byte = static_cast<unsigned char>(c);
        if (quoted && c == '"') {
            ++pos;
            return true;
        }
        if (byte < 0x20 || byte == 0x7F) {
            return false;
        }
        if (c != '\\') {
            out += c;
            ++pos;
            continue;
        }
        if (pos + 1 >= line.size()) {
            return false;
        }
        char next = line[pos + 1];
        if (next == '\\' || next == '"') {
            out += next;
            pos += 2;
        } else if (next == 'x' && pos + 3 < line.size() && HexDigit(line[pos + 2]) >= 0 &&
                   HexDigit(line[pos + 3]) >= 0) {
            out += static_cast<char>(HexDigit(line[pos + 2]) * 16 + HexDigit(line[pos + 3]));
            pos += 4;
        } else {
            return false;
        }
    }
    return !quoted;
}

// Parses the data part of a value line, after the "=". False when it is
// not exactly one of the three forms.
bool ParseData(const std::string& line, size_t pos, Value& value) {
    if (line.compare(pos, 1, "\"") == 0) {
        ++pos;
        std::string text;
        if (!Unescape(line, pos, true, text) || pos != line.size()) {
            return false;
        }
        // A text ends at its first zero byte, as it would be read.
        text.resize(std::strlen(text.c_str()));
        value.type = SRegistry::REG_SZ;
        value.bytes = text;
        value.bytes += '\0';
        return true;
    }
    if (line.compare(pos, 6, "dword:") == 0) {
        pos += 6;
        if (line.size() - pos != 8) {
            return false;
        }
        uint32_t number = 0;
        for (size_t i = pos; i < line.size(); ++i) {
            int digit = HexDigit(line[i]);
            if (digit < 0) {
                return false;
            }
            number = number * 16 + uint32_t(digit);
        }
        value.type = SRegistry::REG_DWORD;
        value.bytes.clear();
        for (int i = 0; i < 4; ++i) {
            value.bytes += static_cast<char>((number >> (8 * i)) & 0xFF);
        }
        return true;
    }
    if (line.compare(pos, 4, "hex:") == 0) {
        pos += 4;
        value.type = SRegistry::REG_BINARY;
        value.bytes.clear();
        // Pairs of digits, separated by single commas.
        while (pos < line.size()) {
            if (!value.bytes.empty()) {
                if (line[pos] != ',') {
                    return false;
                }
                ++pos;
            }
            if (pos + 2 > line.size() || HexDigit(line[pos]) < 0 || HexDigit(line[pos + 1]) < 0) {
                return false;
            }
            value.bytes += static_cast<char>(HexDigit(line[pos]) * 16 + HexDigit(line[pos + 1]));
            pos += 2;
        }
        return true;
    }
    return false;
}

// Parses one value line; false when it does not parse.
bool ParseValueLine(const std::string& line, Value& value) {
    size_t pos = 0;
    if (line.compare(0, 2, "@=") == 0) {
        value.isDefault = true;
        pos = 1;
    } else if (line.compare(0, 1, "\"") == 0) {
        pos = 1;
        if (!Unescape(line, pos, true, value.name)) {
            return false;
        }
    } else {
        return false;
    }
    if (pos >= line.size() || line[pos] != '=') {
        return false;
    }
    return ParseData(line, pos + 1, value);
}

Key* FindKey(Store& store, const char* path) {
    for (Key& key : store) {
        if (SameName(key.path, path)) {
            return &key;
        }
    }
    return nullptr;
}

Value* FindValue(Key& key, const char* name) {
    for (Value& value : key.values) {
        if (name == nullptr ? value.isDefault : !value.isDefault && SameName(value.name, name)) {
            return &value;
        }
    }
    return nullptr;
}

// Parses a whole store. Lines end in LF (a CR before it is dropped); a
// line that does not parse is skipped, and so is a value before any key or
// one already seen (the first wins). Without the magic the store is empty.
Store ParseStore(const char* data, int size) {
    Store store;
    std::vector<std::string> lines;
    int start = 0;
    for (int i = 0; i <= size; ++i) {
        if (i == size || data[i] == '\n') {
            int end = i;
            if (end > start && data[end - 1] == '\r') {
                --end;
            }
            lines.emplace_back(data + start, size_t(end - start));
            start = i + 1;
        }
    }
    if (lines.empty() || lines[0] != STORE_MAGIC) {
        return store;
    }
    Key* current = nullptr;
    for (size_t i = 1; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        if (line.size() >= 2 && line.front() == '[' && line.back() == ']') {
            std::string inner = line.substr(1, line.size() - 2);
            size_t pos = 0;
            std::string path;
            current = nullptr;
            if (!Unescape(inner, pos, false, path) || path.find('\0') != std::string::npos) {
                continue;
            }
            current = FindKey(store, path.c_str());
            if (current == nullptr) {
                store.push_back(Key{path, {}});
                current = &store.back();
            }
            continue;
        }
        Value value;
        if (current == nullptr || !ParseValueLine(line, value)) {
            continue;
        }
        if (value.name.find('\0') != std::string::npos) {
            continue;
        }
        if (FindValue(*current, value.isDefault ? nullptr : value.name.c_str()) == nullptr) {
            current->values.push_back(std::move(value));
        }
    }
    return store;
}

std::string FormatStore(const Store& store) {
    std::string out = STORE_MAGIC;
    out += '\n';
    for (const Key& key : store) {
        if (key.values.empty()) {
            continue;
        }
        out += "\n[" + Escape(key.path) + "]\n";
        for (const Value& value : key.values) {
            out += value.isDefault ? std::string("@") : "\"" + Escape(value.name) + "\"";
            out += '=';
            if (value.type == SRegistry::REG_SZ) {
                out += "\"" + Escape(std::string(value.bytes.c_str())) + "\"";
            } else if (value.type == SRegistry::REG_DWORD) {
                uint32_t number = 0;
                for (int i = 3; i >= 0; --i) {
                    number = number * 256 + static_cast<unsigned char>(value.bytes[size_t(i)]);
                }
                char digits[16];
                std::snprintf(digits, sizeof(digits), "dword:%08x", number);
                out += digits;
            } else {
                out += "hex:";
                for (size_t i = 0; i < value.bytes.size(); ++i) {
                    if (i > 0) {
                        out += ',';
                    }
                    unsigned char byte = static_cast<unsigned char>(value.bytes[i]);
                    out += HEX[byte >> 4];
                    out += HEX[byte & 15];
                }
            }
            out += '\n';
        }
    }
    return out;
}

Store LoadStore(HKEY root) {
    SString path = SRegistry::GetStorePath(root);
    SFileMem image;
    if (path.IsEmpty() || SDisk().GetFileSize(path.c_str()) > STORE_MAX_SIZE ||
        !image.LoadFile(path.c_str())) {
        return Store();
    }
    return ParseStore(image.GetData(), image.GetSize());
}

// Copies the stored bytes of a value; false when it is absent.
bool FindStoredBytes(HKEY root, const char* subKey, const char* name, std::string& bytes) {
    Store store = LoadStore(root);
    Key* key = FindKey(store, subKey != nullptr ? subKey : "");
    if (key == nullptr) {
        return false;
    }
    Value* value = FindValue(*key, name);
    if (value == nullptr) {
        return false;
    }
    bytes = value->bytes;
    return true;
}

// Holds an exclusive lock on the settings folder while a store is loaded,
// changed and replaced, so that writers in other processes and threads do
// not lose each other's values. The lock goes with the descriptor, also
// when the process dies.
class FolderLock {
public:
    explicit FolderLock(const SString& folder) {
        descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor >= 0) {
            while (flock(descriptor, LOCK_EX) != 0 && errno == EINTR) {
            }
        }
    }
    ~FolderLock() {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int descriptor = -1;
};

// Loads the store of root, lets change edit it, and replaces the file when
// change returns true. False when the sub key is empty or the store cannot
// be written.
template <typename Change> bool UpdateStore(HKEY root, const char* subKey, Change change) {
    if (subKey == nullptr || *subKey == 0) {
        return false;
    }
    SString path = SRegistry::GetStorePath(root);
    if (path.IsEmpty() || !SDisk().CreateFolder(SRegistry::GetFolder().c_str(), true)) {
        return false;
    }
    FolderLock lock(SRegistry::GetFolder());
    Store store = LoadStore(root);
    Key* key = FindKey(store, subKey);
    if (key == nullptr) {
        store.push_back(Key{subKey, {}});
        key = &store.back();
    }
    if (!change(*key)) {
        return true;
    }
    std::string text = FormatStore(store);
    return WriteFileAtomic(path.c_str(), text.data(), int(text.size()));
}

bool SetValue(HKEY root, const char* subKey, const char* name, uint32_t type,
              const std::string& bytes) {
    return UpdateStore(root, subKey, [&](Key& key) {
        Value* value = FindValue(key, name);
        if (value == nullptr) {
            key.values.emplace_back();
            value = &key.values.back();
            value->isDefault = name == nullptr;
            value->name = name != nullptr ? name : "";
        }
        value->type = type;
        value->bytes = bytes;
        return true;
    });
}

} // namespace

SRegistry::~SRegistry() = default;

SString SRegistry::GetFolder() {
    const char* own = std::getenv("MELKORA_CONFIG_HOME");
    SString folder;
    if (own != nullptr && *own != 0) {
        folder = own;
    } else {
        const char* config = std::getenv("XDG_CONFIG_HOME");
        // The base directory rules ignore a relative setting.
        if (config != nullptr && config[0] == '/') {
            folder = SString(config) + "/melkora";
        } else {
            const char* home = std::getenv("HOME");
            if (home == nullptr || *home == 0) {
                struct passwd* entry = getpwuid(getuid());
                home = entry != nullptr ? entry->pw_dir : nullptr;
            }
            if (home == nullptr || *home == 0) {
                return SString();
            }
            folder = SString(home) + "/.config/melkora";
        }
    }
    while (folder.GetLength() > 1 && folder.GetAt(folder.GetLength() - 1) == '/') {
        folder.Delete(folder.GetLength() - 1, 1);
    }
    return folder;
}

SString SRegistry::GetStorePath(HKEY root) {
    const char* file = nullptr;
    switch (root) {
    case HKEY_CURRENT_USER:
        file = "registry.ini";
        break;
    case HKEY_CLASSES_ROOT:
        file = "registry-classes-root.ini";
        break;
    case HKEY_LOCAL_MACHINE:
        file = "registry-local-machine.ini";
        break;
    case HKEY_USERS:
        file = "registry-users.ini";
        break;
    case HKEY_CURRENT_CONFIG:
        file = "registry-current-config.ini";
        break;
    default:
        return SString();
    }
    SString folder = GetFolder();
    if (folder.IsEmpty()) {
        return SString();
    }
    if (folder != "/") {
        folder += "/";
    }
    return folder + file;
}

SString SRegistry::ReadString(HKEY root, const char* subKey, const char* name) {
    std::string bytes;
    if (!FindStoredBytes(root, subKey, name, bytes) || int(bytes.size()) > READ_LIMIT) {
        return SString();
    }
    // The text stops at the first zero byte, or at the end of the bytes.
    SString text;
    text.Assign(bytes.data(), int(std::strlen(bytes.c_str())));
    return text;
}

uint32_t SRegistry::ReadInt(HKEY root, const char* subKey, const char* name) {
    std::string bytes;
    if (!FindStoredBytes(root, subKey, name, bytes) || bytes.size() > 4) {
        return 0;
    }
    uint32_t number = 0;
    for (size_t i = bytes.size(); i > 0; --i) {
        number = number * 256 + static_cast<unsigned char>(bytes[i - 1]);
    }
    return number;
}

int SRegistry::ReadBinary(HKEY root, const char* subKey, const char* name, void* buffer,
                          int maxBytes) {
    std::string bytes;
    if (!FindStoredBytes(root, subKey, name, bytes)) {
        return -1;
    }
    int size = int(bytes.size());
    if (buffer != nullptr && size <= maxBytes && size > 0) {
        std::memcpy(buffer, bytes.data(), size_t(size));
    }
    return size;
}

bool SRegistry::WriteInt(HKEY root, const char* subKey, const char* name, uint32_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
    }
    return SetValue(root, subKey, name, REG_DWORD, bytes);
}

bool SRegistry::WriteString(HKEY root, const char* subKey, const char* name, const char* text) {
    std::string bytes = text != nullptr ? text : "";
    bytes += '\0';
    return SetValue(root, subKey, name, REG_SZ, bytes);
}

bool SRegistry::WriteBinary(HKEY root, const char* subKey, const char* name, const void* data,
                            int count) {
    if (count < 0 || (data == nullptr && count > 0)) {
        return false;
    }
    std::string bytes;
    if (count > 0) {
        bytes.assign(static_cast<const char*>(data), size_t(count));
    }
    return SetValue(root, subKey, name, REG_BINARY, bytes);
}

bool SRegistry::DeleteValue(HKEY root, const char* subKey, const char* name) {
    return UpdateStore(root, subKey, [&](Key& key) {
        for (size_t i = 0; i < key.values.size(); ++i) {
            const Value& value = key.values[i];
            if (name == nullptr ? value.isDefault
                                : !value.isDefault && SameName(value.name, name)) {
                key.values.erase(key.values.begin() + long(i));
                return true;
            }
        }
        return false;
    });
}
