// SDisk::WriteZip: a plain ZIP archive of stored (uncompressed) entries,
// each a local header, the name and the data, then the central directory
// and the end record. All numbers are little-endian; times and dates are 0.
#include "foundation/disk.h"

#include <climits>
#include <cstdint>
#include <vector>

#include "foundation/array.h"
#include "foundation/file.h"
#include "foundation/path.h"

namespace {

constexpr uint32_t LOCAL_HEADER_SIGNATURE = 0x04034b50;
constexpr uint32_t CENTRAL_HEADER_SIGNATURE = 0x02014b50;
constexpr uint32_t END_RECORD_SIGNATURE = 0x06054b50;
constexpr int LOCAL_HEADER_SIZE = 30;
constexpr uint16_t ZIP_VERSION = 20;
// Set on an entry whose name holds bytes above 127: the name is UTF-8.
// Without it readers take the name as code page 437.
constexpr uint16_t FLAG_UTF8_NAME = 0x0800;
constexpr uint16_t INTERNAL_ATTRIBUTES = 1;  // text
constexpr uint32_t EXTERNAL_ATTRIBUTES = 32; // archive
// The end record counts entries in 16 bits.
constexpr int MAX_ENTRIES = 65535;

struct ZipEntry {
    SString name;
    uint16_t flags;
    uint32_t crc;
    uint32_t size;
    uint32_t offset;
};

class HeaderBytes {
public:
    void Put16(uint16_t value) {
        bytes.push_back(static_cast<uint8_t>(value));
        bytes.push_back(static_cast<uint8_t>(value >> 8));
    }
    void Put32(uint32_t value) {
        Put16(static_cast<uint16_t>(value));
        Put16(static_cast<uint16_t>(value >> 16));
    }
    // Writes the bytes gathered so far, then the name; false when the
    // archive took less.
    bool WriteWith(SFile& archive, const SString& name) {
        int size = static_cast<int>(bytes.size());
        bool written = archive.Write(bytes.data(), size) == size &&
                       archive.WriteText(name.c_str(), name.GetLength()) == name.GetLength();
        bytes.clear();
        return written;
    }

private:
    std::vector<uint8_t> bytes;
};

bool HasHighBytes(const SString& text) {
    for (int i = 0; i < text.GetLength(); ++i) {
        if (static_cast<unsigned char>(text.GetAt(i)) > 127) {
            return true;
        }
    }
    return false;
}

// The stored name of a file: its path without the first skipParts parts,
// and never absolute, since readers refuse or strip a leading "/".
SString MakeEntryName(const char* file, int skipParts) {
    SString name = SPath(file).GetSlice(skipParts, -1, false, '/');
    int leading = 0;
    while (leading < name.GetLength() && name.GetAt(leading) == '/') {
        ++leading;
    }
    name.Delete(0, leading);
    return name;
}

// Writes one local header, the name and the file's data; fills entry.
bool WriteEntry(SFile& archive, const char* file, int skipParts, ZipEntry& entry) {
    SFilePath source;
    if (!source.Open(file, false, false, true, false)) {
        return false;
    }
    uint32_t crc = 0;
    if (!source.GetCrc32(crc)) {
        return false;
    }
    entry.name = MakeEntryName(file, skipParts);
    if (entry.name.IsEmpty() || entry.name.GetLength() > UINT16_MAX) {
        return false;
    }
    int size = source.GetSize();
    int offset = archive.GetPosition();
    long long end =
        static_cast<long long>(offset) + LOCAL_HEADER_SIZE + entry.name.GetLength() + size;
    if (size < 0 || end > INT_MAX) {
        return false;
    }
    entry.flags = HasHighBytes(entry.name) ? FLAG_UTF8_NAME : 0;
    entry.crc = crc;
    entry.size = static_cast<uint32_t>(size);
    entry.offset = static_cast<uint32_t>(offset);

    HeaderBytes header;
    header.Put32(LOCAL_HEADER_SIGNATURE);
    header.Put16(ZIP_VERSION);
    header.Put16(entry.flags);
    header.Put16(0); // stored
    header.Put16(0); // time
    header.Put16(0); // date
    header.Put32(entry.crc);
    header.Put32(entry.size);
    header.Put32(entry.size);
    header.Put16(static_cast<uint16_t>(entry.name.GetLength()));
    header.Put16(0); // extra length
    if (!header.WriteWith(archive, entry.name)) {
        return false;
    }
    source.Rewind();
    return archive.AppendFrom(&source) == size;
}

bool WriteDirectory(SFile& archive, const std::vector<ZipEntry>& entries) {
    long long start = archive.GetPosition();
    HeaderBytes header;
    for (const ZipEntry& entry : entries) {
        header.Put32(CENTRAL_HEADER_SIGNATURE);
        header.Put16(ZIP_VERSION); // made by
        header.Put16(ZIP_VERSION); // needed
        header.Put16(entry.flags);
        header.Put16(0); // stored
        header.Put16(0); // time
        header.Put16(0); // date
        header.Put32(entry.crc);
        header.Put32(entry.size);
        header.Put32(entry.size);
        header.Put16(static_cast<uint16_t>(entry.name.GetLength()));
        header.Put16(0); // extra length
        header.Put16(0); // comment length
        header.Put16(0); // disk start
        header.Put16(INTERNAL_ATTRIBUTES);
        header.Put32(EXTERNAL_ATTRIBUTES);
        header.Put32(entry.offset);
        if (!header.WriteWith(archive, entry.name)) {
            return false;
        }
    }
    long long end = archive.GetPosition();
    if (end + 22 > INT_MAX) {
        return false;
    }
    auto count = static_cast<uint16_t>(entries.size());
    header.Put32(END_RECORD_SIGNATURE);
    header.Put16(0); // this disk
    header.Put16(0); // directory disk
    header.Put16(count);
    header.Put16(count);
    header.Put32(static_cast<uint32_t>(end - start));
    header.Put32(static_cast<uint32_t>(start));
    header.Put16(0); // comment length
    return header.WriteWith(archive, SString(""));
}

} // namespace

bool SDisk::WriteZip(const char* archive, SStringArray* files, int skipParts) {
    if (archive == nullptr || archive[0] == 0 || files == nullptr || files->GetCount() == 0 ||
        files->GetCount() > MAX_ENTRIES) {
        return false;
    }
    if (skipParts < 0) {
        skipParts = 0;
    }
    // Written beside the archive and put in place at the end; an early
    // return leaves any old archive as it was and removes the new one.
    SFilePath output;
    if (!output.OpenReplace(archive)) {
        return false;
    }
    std::vector<ZipEntry> entries(files->GetCount());
    for (int i = 0; i < files->GetCount(); ++i) {
        const SString* file = files->GetAt(i);
        if (file == nullptr || !WriteEntry(output, file->c_str(), skipParts, entries[i])) {
            return false;
        }
    }
    return WriteDirectory(output, entries) && output.Commit();
}
