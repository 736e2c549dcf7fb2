// Feeds arbitrary bytes to SIni as a memory image: every section and key
// name found in the input is looked up, a value is written into the first
// section found and into a new one, and both are read back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "foundation/file.h"
#include "foundation/ini.h"

namespace {

// Names seen in the input: the text of "[...]" lines and the text before
// "=" on the others, cut as the ini reader cuts lines.
struct Names {
    SString sections[8];
    SString keys[8];
    int sectionCount = 0;
    int keyCount = 0;
};

Names CollectNames(SFileMem& image) {
    Names names;
    image.Rewind();
    while (!image.IsEnd() && (names.sectionCount < 8 || names.keyCount < 8)) {
        SString line = image.ReadLine(false);
        int length = line.GetLength();
        if (length >= 2 && line.GetAt(0) == '[' && line.GetAt(length - 1) == ']') {
            if (names.sectionCount < 8) {
                names.sections[names.sectionCount++] = line.Mid(1, length - 2);
            }
        } else if (line.Find('=') >= 0 && names.keyCount < 8) {
            names.keys[names.keyCount++] = line.Left(line.Find('='));
        }
    }
    return names;
}

bool ContainsNoCase(const uint8_t* data, size_t size, const char* text) {
    size_t length = std::strlen(text);
    for (size_t i = 0; i + length <= size; ++i) {
        if (strncasecmp(reinterpret_cast<const char*>(data) + i, text, length) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 64 * 1024) {
        return 0;
    }
    SFileMem source;
    source.Write(data, int(size));
    source.Rewind();
    Names names = CollectNames(source);
    source.Rewind();

    SIni ini;
    if (!ini.SetSource(&source)) {
        abort();
    }
    for (int s = 0; s < names.sectionCount; ++s) {
        for (int k = 0; k < names.keyCount; ++k) {
            ini.ReadString(names.sections[s].c_str(), names.keys[k].c_str());
            ini.ReadInt(names.sections[s].c_str(), names.keys[k].c_str());
        }
    }

    // Writing into a section of the input (a line or its line end may be
    // odd there, so the result is only read, not checked).
    const char* section = names.sectionCount > 0 ? names.sections[0].c_str() : "fuzz";
    if (!ini.WriteString(section, "fuzzkey", "written=value")) {
        abort();
    }
    ini.ReadString(section, "fuzzkey");

    // A new section at the end must read back, unless the input already
    // holds a section of that name which would be found first.
    const char* fresh = "fuzz new section";
    if (!ini.WriteString(fresh, "k", "v")) {
        abort();
    }
    if (!ContainsNoCase(data, size, fresh) && ini.ReadString(fresh, "k") != "v") {
        abort();
    }
    return 0;
}
