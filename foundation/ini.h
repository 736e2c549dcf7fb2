// SIni: reads and changes texts of sections and keys, from a file on disk
// or from a memory image (the definition files of dialogs, menus, toolbars
// and trees are read the same way).
//
// The text: lines end in CR LF, and only that pair ends a line (a lone CR or
// LF stays inside its line). A section starts at a line "[name]", found
// after trimming blanks; a key line is everything up to its first "=", the
// value everything after it, neither trimmed. A line under 2 characters or
// without "=" is skipped: there is no comment syntax. Names compare without
// regard to case; the first matching section, and in it the first matching
// key, is the one used.
#pragma once

#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/string.h"

// Values of the mode: where the text comes from.
constexpr int INI_NONE = 0;   // nothing set: reads are empty, writes fail
constexpr int INI_FILE = 1;   // the file at the path, loaded again for each call
constexpr int INI_MEMORY = 2; // the memory image; nothing goes to disk

class SIni {
public:
    SIni() = default;
    SIni(const SIni&) = delete;
    SIni& operator=(const SIni&) = delete;
    virtual ~SIni();

    // Choosing the text.
    // Uses the file at path. When it is not a file: false without create,
    // else an empty file is made (false when that fails).
    bool SetFile(const char* path, bool create);
    // Copies all that remains of source from its position into the memory
    // image; false for a null source. The path is emptied.
    bool SetSource(SFile* source);
    // Back to INI_NONE, with the path and the memory image emptied.
    void Clear();
    bool IsMemory() const { return mode == INI_MEMORY; }
    int GetMode() const { return mode; }
    const SString& GetPath() const { return path; }
    // The memory image, changed by writes in INI_MEMORY mode.
    const SFileMem& GetMemory() const { return memory; }

    // Reading. An absent section or key reads as "", 0 or false.
    SString ReadString(const char* section, const char* key);
    int ReadInt(const char* section, const char* key);   // atoi of the text
    bool ReadBool(const char* section, const char* key); // exactly "1"

    // Writing. An existing key's line is rewritten in place, keeping its
    // line end and taking the key's spelling of this call; a new key
    // becomes the first line of its section; a new section is added at the
    // end after one blank line. A file is loaded, changed and replaced
    // atomically; false when it cannot be loaded or saved.
    bool WriteString(const char* section, const char* key, const char* value);

private:
    // Points source at the text to work on: the memory image, or the file
    // loaded into fileImage. False when the file cannot be loaded.
    bool PickSource(SFileMem& fileImage, SFileMem*& source);

    SDisk disk;
    int mode = INI_NONE;
    SString path;
    SFileMem memory;
};
