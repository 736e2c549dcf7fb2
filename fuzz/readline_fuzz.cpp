// ReadLine over the same bytes in memory and on disk must give the same
// lines, line ends and positions, whatever the bytes, keepBlanks and
// maxChars. With blanks kept and no limit, the lines and their ends put back
// together must give the bytes again. FindBytes must agree too.
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
    for (int lines = 0; lines <= count + 1; ++lines) {
        bool memoryCrlf = false;
        bool diskCrlf = true;
        SString fromMemory = memory.ReadLine(keepBlanks, maxChars, &memoryCrlf);
        SString fromDisk = disk.ReadLine(keepBlanks, maxChars, &diskCrlf);
        Check(Same(fromMemory, fromDisk));
        Check(memoryCrlf == diskCrlf);
        Check(memory.GetPosition() == disk.GetPosition());
        Check(memory.IsEnd() == disk.IsEnd());
        Check(maxChars < 0 || fromMemory.GetLength() <= maxChars);
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
    // from it, is found at the same place by both.
    int patternLength = 1 + data[1] % 8;
    if (count >= patternLength) {
        int from = data[0] % (count - patternLength + 1);
        int start = data[1] % (count + 1);
        memory.Seek(start);
        disk.Seek(start);
        int atMemory = memory.FindBytes(bytes + from, patternLength, (data[0] & 4) != 0);
        int atDisk = disk.FindBytes(bytes + from, patternLength, (data[0] & 4) != 0);
        Check(atMemory == atDisk);
        Check(memory.GetPosition() == disk.GetPosition());
        Check(start > from || atMemory >= 0);
    }
    return 0;
}
