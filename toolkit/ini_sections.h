// SIniSections: the body of a menu or toolbar definition, read with SIni
// one section at a time. The body is cut once into its sections, and each
// section asked for gets an SIni over its own text alone, so reading a
// definition of n items costs one pass and n small searches instead of n
// searches of the whole text. The answers are those SIni gives over the
// whole body: the first section whose trimmed line "[name]" matches
// without regard to case, and in it the lines up to the next line that
// opens a section as it stands.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/ini.h"
#include "foundation/string.h"

class SFile;

class SIniSections {
public:
    SIniSections() = default;
    SIniSections(const SIniSections&) = delete;
    SIniSections& operator=(const SIniSections&) = delete;
    ~SIniSections();

    // All that remains of source from its position; false for a null or
    // closed source.
    bool SetSource(SFile* source);
    // A definition file: its first line must be magic, the rest is the
    // body. False, with the reason, for a null or closed file or another
    // first line.
    bool SetDefinitionSource(SFile* file, const char* magic, SString* reason);
    // The section lines of the body, counted as SIni finds them.
    int GetSectionCount() const { return static_cast<int>(sections.size()); }

    // As SIni reads them: "" (0, false) when absent; ReadBool is exactly
    // "1". The section "" is the line "[]".
    SString ReadString(const char* section, const char* key);
    int ReadInt(const char* section, const char* key);
    bool ReadBool(const char* section, const char* key);

private:
    struct SSection {
        SString name; // the trimmed line without its brackets
        int start;    // the section line's first byte
        int end;      // the first byte after its last key line
    };
    // The SIni over the first section matching name, or null.
    SIni* Find(const char* name);

    std::string body;
    std::vector<SSection> sections;
    std::map<std::string, std::unique_ptr<SIni>> opened; // by the name asked for
};

// Writing a definition: "key=value" CR LF, false (and nothing added) when
// the value holds CR LF; a number the same way.
bool AddIniLine(SString& text, const char* key, const SString& value);
void AddIniNumber(SString& text, const char* key, long long value);
