// ReadLine over the same bytes in memory and on disk, whatever the bytes,
// keepBlanks and maxChars: no line is longer than maxChars, a disk line never
// holds a CR or LF, and with blanks kept and no limit the disk line is the
// memory line without its lone CRs and LFs, at the same positions, and the
// memory lines and their ends put back together give the bytes again.
// FindBytes: both find the same whole match; memory may add only a match cut
// off by the end of the data.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#include "foundation/file.h"

namespace {

// One scratch file for the whole run, removed at exit.
const char* ScratchPath() {
    static std::string path;
    if (path.empty()) {
        const char* folder = getenv("TMPDIR");
        path = std::string(folder != nullptr && folder[0] != 0 ? folder : "/tmp") +
               "/readline-fuzz-XXXXXX";
        int fd = mkstemp(path.data());
        if (fd < 0) {
            abort();
        }
        close(fd);
        atexit([] { unlink(path.c_str()); });
    }
    return path.c_str();
}

void Check(bool condition) {
    if (!condition) {
        abort();
    }
}

bool Same(const SString& a, const SString& b) {
    return a.GetLength() == b.GetLength() && memcmp(a.c_str(), b.c_str(), a.GetLength()) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2 || size > 1 << 16) {
        return 0;
    }
    bool keepBlanks = (data[0] & 1) != 0;
    // -1 (no limit), 0, or 1..126.
    int maxChars = (data[0] & 2) != 0 ? -1 : data[1] & 0x7F;
    const char* bytes = reinterpret_cast<const char*>(data + 2);
    int count = static_cast<int>(size - 2);

    FILE* out = fopen(ScratchPath(), "wb");
    Check(out != nullptr);
    Check(fwrite(bytes, 1, count, out) == static_cast<size_t>(count));
    fclose(out);

    SFileMem memory;
    memory.Write(bytes, count);
    memory.Rewind();
    SFilePath disk(ScratchPath(), false, false, true, false);
    Check(disk.IsOpen() && disk.GetSize() == count);

    std::string joined;
    bool sameSpans = maxChars < 0;
    for (int lines = 0; lines <= count + 1; ++lines) {
        bool memoryCrlf = false;
        bool diskCrlf = false;
        SString fromMemory = memory.ReadLine(keepBlanks, maxChars, &memoryCrlf);
        SString fromDisk = disk.ReadLine(keepBlanks, maxChars, &diskCrlf);
        Check(maxChars < 0 || fromMemory.GetLength() <= maxChars);
        Check(maxChars < 0 || fromDisk.GetLength() <= maxChars);
        Check(memchr(fromDisk.c_str(), '\r', fromDisk.GetLength()) == nullptr);
        Check(memchr(fromDisk.c_str(), '\n', fromDisk.GetLength()) == nullptr);
        if (sameSpans) {
            Check(memoryCrlf == diskCrlf);
            Check(memory.GetPosition() == disk.GetPosition());
            if (keepBlanks) {
                std::string kept;
                for (int i = 0; i < fromMemory.GetLength(); ++i) {
                    char c = fromMemory.GetAt(i);
                    if (c != '\r' && c != '\n') {
                        kept.push_back(c);
                    }
                }
                Check(kept == std::string(fromDisk.c_str(), fromDisk.GetLength()));
            }
        }
        joined.append(fromMemory.c_str(), fromMemory.GetLength());
        if (memoryCrlf) {
            joined.append("\r\n");
        }
        if (memory.IsEnd() || maxChars == 0) {
            break;
        }
    }
    if (keepBlanks && maxChars < 0) {
        Check(joined == std::string(bytes, count));
    }

    // A pattern taken from the data, searched from a position also taken
    // from it.
    int patternLength = 1 + data[1] % 8;
    if (count >= patternLength) {
        int from = data[0] % (count - patternLength + 1);
        int start = data[1] % (count + 1);
        memory.Seek(start);
        disk.Seek(start);
        bool after = (data[0] & 4) != 0;
        int atMemory = memory.FindBytes(bytes + from, patternLength, after);
        int atDisk = disk.FindBytes(bytes + from, patternLength, after);
        Check(start > from || atDisk >= 0);
        if (atDisk >= 0) {
            Check(atMemory == atDisk);
            Check(memory.GetPosition() == disk.GetPosition());
        } else if (atMemory >= 0) {
            // cut off: the match starts where fewer than the pattern's bytes remain
            int matchStart = after ? atMemory - patternLength : atMemory;
            Check(matchStart > count - patternLength && matchStart < count);
            Check(memory.GetPosition() == matchStart + patternLength);
        } else {
            Check(memory.GetPosition() == count);
        }
    }
    return 0;
}
