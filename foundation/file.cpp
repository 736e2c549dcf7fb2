// SFile: the operations shared through its slots, the line scanner of
// both kinds of file, SFileMem, and the table of embedded resources. Disk
// files are in file_path.cpp.
#include "foundation/file.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// The largest size a memory block may reach: the capacity rule adds up to
// 1,024 bytes, which must still fit in a signed 32-bit count.
constexpr int MAX_MEM_SIZE = INT_MAX - 2048;
constexpr int APPEND_BLOCK = 1000;

// The line rule of both kinds of file. Only CR LF, the end of the data or
// maxChars end a line. They differ by design in what a lone CR or LF does:
// in memory the whole span is copied, so it stays in the text and every
// byte consumed counts toward maxChars; on disk it is dropped (dropLone) and
// only the kept characters count. Source gives Next() (a byte 0..255, or -1
// at the end) and Back() (un-reads the byte that Next gave last).
template <typename Source>
SString ScanLine(Source& source, bool dropLone, bool keepBlanks, int maxChars,
                 bool* endedWithCrlf) {
    bool crlf = false;
    std::string text;
    int counted = 0;
    while (maxChars < 0 || counted < maxChars) {
        int c = source.Next();
        if (c < 0) {
            break;
        }
        if (c == '\r') {
            int next = source.Next();
            if (next == '\n') {
                crlf = true;
                break;
            }
            if (next >= 0) {
                source.Back();
            }
        }
        if (dropLone && (c == '\r' || c == '\n')) {
            continue;
        }
        text.push_back(static_cast<char>(c));
        ++counted;
    }
    if (endedWithCrlf != nullptr) {
        *endedWithCrlf = crlf;
    }
    size_t first = 0;
    size_t last = text.size();
    if (!keepBlanks) {
        while (first < last && (text[first] == ' ' || text[first] == '\t')) {
            ++first;
        }
        while (last > first && (text[last - 1] == ' ' || text[last - 1] == '\t')) {
            --last;
        }
    }
    SString result;
    result.Assign(text.data() + first, static_cast<int>(last - first));
    return result;
}

class MemSource {
public:
    MemSource(const char* data, int size, int& position)
        : data(data), size(size), position(position) {}
    int Next() { return position < size ? static_cast<unsigned char>(data[position++]) : -1; }
    void Back() { --position; }

private:
    const char* data;
    int size;
    int& position;
};

class DiskSource {
public:
    explicit DiskSource(FILE* stream) : stream(stream) {}
    int Next() {
        last = getc_unlocked(stream);
        return last == EOF ? -1 : last;
    }
    void Back() { ungetc(last, stream); }

private:
    FILE* stream;
    int last = EOF;
};

// Embedded resources by upper-cased type and number.
struct ResourceTable {
    std::mutex lock;
    std::map<std::pair<std::string, unsigned>, std::pair<const void*, int>> entries;
};

ResourceTable& Resources() {
    static ResourceTable table;
    return table;
}

std::string ResourceType(const char* type) {
    std::string key = type != nullptr ? type : "";
    for (char& c : key) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return key;
}

} // namespace

// SFile: the operations that work through the other slots.

SFile::~SFile() = default;

void SFile::Skip(int count) {
    long long target = static_cast<long long>(GetPosition()) + count;
    Seek(target < 0 ? 0 : target > INT_MAX ? -1 : static_cast<int>(target));
}

void SFile::SkipBack(int count) {
    long long target = static_cast<long long>(GetPosition()) - count;
    Seek(target < 0 ? 0 : target > INT_MAX ? -1 : static_cast<int>(target));
}

int SFile::AppendFrom(SFile* source, int count) {
    if (source == nullptr || source == this) {
        return 0;
    }
    int left = count < 0 ? INT_MAX : count;
    int total = 0;
    char block[APPEND_BLOCK];
    while (left > 0) {
        int got = source->Read(block, std::min(left, APPEND_BLOCK));
        if (got <= 0) {
            break;
        }
        int written = Write(block, got);
        total += written;
        left -= got;
        if (written < got) {
            break;
        }
    }
    return total;
}

bool SFile::WriteResource(const char* type, unsigned id, void* module) {
    return ReadResource(module, type, id, this);
}

int SFile::WriteBytes(const void* buffer, int count) {
    return Write(buffer, count);
}

int SFile::WriteText(const char* text, int count) {
    if (text == nullptr) {
        return 0;
    }
    if (count < 0) {
        size_t measured = strlen(text);
        count = measured > INT_MAX ? INT_MAX : static_cast<int>(measured);
    }
    return Write(text, count);
}

int SFile::WriteInt(int32_t value) {
    uint32_t bits = static_cast<uint32_t>(value);
    unsigned char bytes[4] = {
        static_cast<unsigned char>(bits), static_cast<unsigned char>(bits >> 8),
        static_cast<unsigned char>(bits >> 16), static_cast<unsigned char>(bits >> 24)};
    return WriteBytes(bytes, 4);
}

int SFile::WriteWide(const char16_t* text, int count) {
    if (text == nullptr) {
        return 0;
    }
    if (count < 0) {
        count = 0;
        while (count < INT_MAX / 2 && text[count] != 0) {
            ++count;
        }
    }
    count = std::min(count, INT_MAX / 2);
    int total = 0;
    unsigned char bytes[1024];
    for (int done = 0; done < count;) {
        int piece = std::min(count - done, static_cast<int>(sizeof bytes / 2));
        for (int i = 0; i < piece; ++i) {
            char16_t c = text[done + i];
            bytes[2 * i] = static_cast<unsigned char>(c & 0xFF);
            bytes[2 * i + 1] = static_cast<unsigned char>(c >> 8);
        }
        int written = WriteBytes(bytes, 2 * piece);
        total += written;
        if (written < 2 * piece) {
            break;
        }
        done += piece;
    }
    return total;
}

int SFile::WriteLine(const char* text) {
    int written = text != nullptr ? WriteText(text) : 0;
    return written + WriteBytes("\r\n", 2);
}

SString SFile::ReadText(int count) {
    int remaining = GetRemaining();
    if (count < 0 || count > remaining) {
        count = remaining;
    }
    SString result;
    if (count <= 0) {
        return result;
    }
    std::unique_ptr<char[]> buffer(new char[count]);
    int got = ReadBytes(buffer.get(), count);
    result.Assign(buffer.get(), std::max(got, 0));
    return result;
}

int SFile::ReadBytes(void* buffer, int count) {
    return Read(buffer, count);
}

int32_t SFile::ReadInt() {
    unsigned char bytes[4] = {0, 0, 0, 0};
    ReadBytes(bytes, 4);
    uint32_t bits =
        bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) | (static_cast<uint32_t>(bytes[3]) << 24);
    return static_cast<int32_t>(bits);
}

SUniString SFile::ReadWide(int count) {
    int available = GetRemaining() / 2;
    if (count < 0 || count > available) {
        count = available;
    }
    SUniString result;
    if (count <= 0) {
        return result;
    }
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[2 * static_cast<size_t>(count)]);
    int got = std::max(ReadBytes(bytes.get(), 2 * count), 0);
    if (got % 2 != 0) {
        SkipBack(1);
    }
    result.SetLength(got / 2);
    char16_t* text = result.GetBuffer();
    for (int i = 0; i < got / 2; ++i) {
        text[i] = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
    }
    return result;
}

SString SFile::ReadLineWithEnd(bool keepBlanks, int maxChars) {
    bool crlf = false;
    SString line = ReadLine(keepBlanks, maxChars, &crlf);
    if (crlf) {
        line.Append("\r\n");
    }
    return line;
}

SString SFile::ReadZeroString(bool keep) {
    std::string text;
    char block[256];
    for (;;) {
        int start = GetPosition();
        int got = Read(block, sizeof block);
        if (got <= 0) {
            break;
        }
        const void* zero = memchr(block, 0, static_cast<size_t>(got));
        if (zero != nullptr) {
            int used = static_cast<int>(static_cast<const char*>(zero) - block);
            if (keep) {
                text.append(block, static_cast<size_t>(used));
            }
            Seek(start + used + 1);
            break;
        }
        if (keep) {
            text.append(block, static_cast<size_t>(got));
        }
    }
    SString result;
    if (keep) {
        result.Assign(text.data(), static_cast<int>(text.size()));
    }
    return result;
}

int SFile::GetRemaining() const {
    return std::max(GetSize() - GetPosition(), 0);
}

int SFile::FindText(const char* text, bool after) {
    if (text == nullptr) {
        return -1;
    }
    size_t length = strlen(text);
    return FindBytes(text, length > INT_MAX ? INT_MAX : static_cast<int>(length), after);
}

// Lines: a disk file drops a lone CR or LF (see ScanLine).

SString SFilePath::ReadLine(bool keepBlanks, int maxChars, bool* endedWithCrlf) {
    if (handle == nullptr || maxChars == 0) {
        if (endedWithCrlf != nullptr) {
            *endedWithCrlf = false;
        }
        return SString();
    }
    PrepareFor(OP_READ);
    DiskSource source(static_cast<FILE*>(handle));
    return ScanLine(source, true, keepBlanks, maxChars, endedWithCrlf);
}

// SFileMem

SFileMem::SFileMem() : SFile(KIND_MEMORY) {}

SFileMem::SFileMem(const char* type, unsigned id) : SFile(KIND_MEMORY) {
    LoadResource(type, id);
}

SFileMem::SFileMem(SFileMem&& other) noexcept : SFile(KIND_MEMORY) {
    *this = std::move(other);
}

SFileMem& SFileMem::operator=(SFileMem&& other) noexcept {
    if (this != &other) {
        Close();
        std::swap(handle, other.handle);
        std::swap(size, other.size);
        std::swap(capacity, other.capacity);
        std::swap(position, other.position);
    }
    return *this;
}

SFileMem::~SFileMem() {
    Close();
}

bool SFileMem::SetSize(int newSize, bool keep) {
    newSize = std::max(newSize, 0);
    if (newSize > MAX_MEM_SIZE) {
        return false;
    }
    int newCapacity = newSize + 1024 - newSize % 1024;
    char* block = static_cast<char*>(handle);
    if (block == nullptr || newCapacity != capacity) {
        char* fresh = static_cast<char*>(malloc(static_cast<size_t>(newCapacity)));
        if (fresh == nullptr) {
            return false;
        }
        int carried = keep && block != nullptr ? std::min(size, newSize) : 0;
        if (carried > 0) {
            memcpy(fresh, block, static_cast<size_t>(carried));
        }
        memset(fresh + carried, 0, static_cast<size_t>(newCapacity - carried));
        free(block);
        handle = fresh;
        capacity = newCapacity;
    } else if (newSize > size) {
        memset(block + size, 0, static_cast<size_t>(newSize - size));
    }
    size = newSize;
    position = std::min(position, size);
    return true;
}

bool SFileMem::Reset(int newSize) {
    if (!SetSize(newSize, false)) {
        return false;
    }
    memset(handle, 0, static_cast<size_t>(size));
    position = 0;
    return true;
}

bool SFileMem::LoadFile(const char* path) {
    SFilePath file(path, false, false, true, false);
    if (!file.IsOpen()) {
        return false;
    }
    int fileSize = file.GetSize();
    if (!Reset(fileSize)) {
        return false;
    }
    int got = file.Read(handle, fileSize);
    if (got != fileSize) {
        SetSize(std::max(got, 0), true);
        return false;
    }
    return true;
}

bool SFileMem::SaveFile(const char* path) {
    return WriteFileAtomic(path, handle, size);
}

bool SFileMem::LoadResource(const char* type, unsigned id, void* /*module*/) {
    const void* data = nullptr;
    int dataSize = 0;
    if (!FindResourceData(type, id, &data, &dataSize) || !Reset(dataSize)) {
        return false;
    }
    if (dataSize > 0) {
        memcpy(handle, data, static_cast<size_t>(dataSize));
    }
    return true;
}

bool SFileMem::RemoveBytes(int count) {
    if (count < 1 || count > size - position) {
        return false;
    }
    char* block = static_cast<char*>(handle);
    memmove(block + position, block + position + count,
            static_cast<size_t>(size - position - count));
    return SetSize(size - count, true);
}

bool SFileMem::InsertBytes(int count, bool moveAfter) {
    if (count < 1 || count > MAX_MEM_SIZE - size) {
        return false;
    }
    int oldSize = size;
    int at = position;
    if (!SetSize(size + count, true)) {
        return false;
    }
    char* block = static_cast<char*>(handle);
    memmove(block + at + count, block + at, static_cast<size_t>(oldSize - at));
    memset(block + at, 0, static_cast<size_t>(count));
    if (moveAfter) {
        position = at + count;
    }
    return true;
}

char* SFileMem::GetDataAtPosition() {
    return handle != nullptr ? static_cast<char*>(handle) + position : nullptr;
}

void SFileMem::Close() {
    free(handle);
    handle = nullptr;
    size = 0;
    capacity = 0;
    position = 0;
}

bool SFileMem::GetCrc32(uint32_t& crc) {
    if (handle == nullptr) {
        return false;
    }
    crc = Crc32(handle, size);
    return true;
}

SString SFileMem::GetMd5() {
    return handle != nullptr ? Md5Hex(handle, size) : SString();
}

SString SFileMem::GetSha1() {
    return handle != nullptr ? Sha1Hex(handle, size) : SString();
}

int SFileMem::Write(const void* buffer, int count) {
    if (buffer == nullptr || count < 1) {
        return 0;
    }
    count = std::min(count, MAX_MEM_SIZE - position);
    if (count < 1) {
        return 0;
    }
    // A source inside this block would move when the block grows.
    const char* source = static_cast<const char*>(buffer);
    const char* block = static_cast<const char*>(handle);
    std::unique_ptr<char[]> copy;
    if (block != nullptr && source >= block && source < block + capacity) {
        copy.reset(new char[count]);
        memcpy(copy.get(), source, static_cast<size_t>(count));
        source = copy.get();
    }
    if (position + count > size && !SetSize(position + count, true)) {
        return 0;
    }
    memcpy(static_cast<char*>(handle) + position, source, static_cast<size_t>(count));
    position += count;
    return count;
}

int SFileMem::Read(void* buffer, int count) {
    if (handle == nullptr || buffer == nullptr || count < 1 || position >= size) {
        return 0;
    }
    count = std::min(count, size - position);
    memcpy(buffer, static_cast<char*>(handle) + position, static_cast<size_t>(count));
    position += count;
    return count;
}

SString SFileMem::ReadLine(bool keepBlanks, int maxChars, bool* endedWithCrlf) {
    if (handle == nullptr || maxChars == 0) {
        if (endedWithCrlf != nullptr) {
            *endedWithCrlf = false;
        }
        return SString();
    }
    MemSource source(static_cast<const char*>(handle), size, position);
    return ScanLine(source, false, keepBlanks, maxChars, endedWithCrlf);
}

int SFileMem::Seek(int newPosition) {
    position = newPosition < 0 || newPosition > size ? size : newPosition;
    return position;
}

bool SFileMem::SetSize(int newSize) {
    return newSize >= 0 && SetSize(newSize, true);
}

int SFileMem::FindBytes(const void* buffer, int count, bool after) {
    if (buffer == nullptr || count < 1) {
        return -1;
    }
    if (handle == nullptr || position >= size) {
        position = std::max(position, size);
        return -1;
    }
    // Sliding one byte at a time, a pattern cut off by the end of the data
    // counts as a match. One Knuth-Morris-Pratt pass finds the first whole
    // match or, failing that, the longest tail of the data that begins the
    // pattern, which is the earliest cut-off match.
    const char* pattern = static_cast<const char*>(buffer);
    std::vector<int> fallback(static_cast<size_t>(count), 0);
    for (int i = 1, k = 0; i < count; ++i) {
        while (k > 0 && pattern[i] != pattern[k]) {
            k = fallback[static_cast<size_t>(k - 1)];
        }
        if (pattern[i] == pattern[k]) {
            ++k;
        }
        fallback[static_cast<size_t>(i)] = k;
    }
    const char* data = static_cast<const char*>(handle);
    int matched = 0;
    int at = position;
    for (; at < size; ++at) {
        while (matched > 0 && data[at] != pattern[matched]) {
            matched = fallback[static_cast<size_t>(matched - 1)];
        }
        if (data[at] == pattern[matched] && ++matched == count) {
            ++at;
            break;
        }
    }
    if (matched == 0) {
        position = size;
        return -1;
    }
    // A whole match ends at `at`; a cut-off one at the end of the data, and
    // the position passes the end by the missing bytes.
    int start = at - matched;
    position = start + count;
    return after ? position : start;
}

// Embedded resources.

void RegisterResource(const char* type, unsigned id, const void* data, int size) {
    ResourceTable& table = Resources();
    std::lock_guard<std::mutex> guard(table.lock);
    table.entries[{ResourceType(type), id}] = {data, data != nullptr ? std::max(size, 0) : 0};
}

bool FindResourceData(const char* type, unsigned id, const void** data, int* size) {
    ResourceTable& table = Resources();
    std::lock_guard<std::mutex> guard(table.lock);
    auto found = table.entries.find({ResourceType(type), id});
    if (found == table.entries.end()) {
        return false;
    }
    if (data != nullptr) {
        *data = found->second.first;
    }
    if (size != nullptr) {
        *size = found->second.second;
    }
    return true;
}

bool ReadResource(void* /*module*/, const char* type, unsigned id, SFile* target) {
    const void* data = nullptr;
    int size = 0;
    if (target == nullptr || !FindResourceData(type, id, &data, &size)) {
        return false;
    }
    return size == 0 || target->Write(data, size) == size;
}
