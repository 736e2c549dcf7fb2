// Description files: the short hand-written text beside a folder
// ("Rock/Some Artist.txt" describes the folder "Rock/Some Artist") with its
// inline marks, the known folders that a name mark links to, and the
// conversion of one text line into HTML.
#pragma once

#include "foundation/array.h"
#include "foundation/string.h"

class SWalkGuard;

// The folders the description window lists: every folder below the root
// that is not hidden and holds at least one subfolder (artists and genres,
// not albums). FolderNames and FolderPaths are parallel: the last path
// component of each folder, and its path relative to the root with "/"
// between folders and no trailing separator. They are filled one folder's
// children at a time, in listing order, each child's own children after all
// its siblings. TreeOrder holds the same paths in depth-first order, the
// order of the window's tree.
class PKnownFolders {
public:
    PKnownFolders();

    // Rebuilds the three lists from the folders under root (with or without
    // its trailing "/"). onFolder, when given, is called with the running
    // count after each folder is added (the "Loading... N" status). False
    // when root is no folder; the lists are then empty.
    bool Load(const char* root, void (*onFolder)(int count, void* context) = nullptr,
              void* context = nullptr);
    void Clear();
    int GetCount() const { return FolderPaths.GetCount(); }

    // Searches FolderNames without regard to case, from the first entry;
    // the index, or -1.
    int FindName(const SString& name) const;

    SStringArray FolderNames; // searched ignoring case
    SStringArray FolderPaths;
    SStringArray TreeOrder;

private:
    void LoadChildren(const SString& root, const SString& relative, SWalkGuard& guard,
                      SStringArray& children);
};

// The bullet written in place of a leading "." (the byte 0x95 of the
// Windows character set, written here as UTF-8).
inline constexpr const char* DESCRIPTION_BULLET = "\xE2\x80\xA2";

// One text line of a description turned into HTML: the marks "#tag text#"
// and "#tag text@link#" (tags genre, name, title, quote, image), a leading
// "." or a tab followed by "." as a bullet, leading tabs as nested indented
// blocks, and "<br>" after a line that is not indented. Nothing is escaped:
// HTML in the line passes through. known may be null (no folder is known).
// Runs in time linear in the line's length.
SString ConvertDescriptionLine(const SString& line, const PKnownFolders* known);

// Reads a whole description file into text. Bytes that are not valid UTF-8
// are taken as Windows-1252, the code page of descriptions written on
// Windows, and converted. False (text empty) when the file cannot be read.
bool ReadDescriptionFile(const char* path, SString& text);

// The kinds of line in a description.
enum PDescriptionLineKind {
    DESCRIPTION_EMPTY = 0,   // no character at all (a blank is text)
    DESCRIPTION_HEADING = 1, // "{title}" opens a group
    DESCRIPTION_TEXT = 2,
};
// The kind of a line; for a heading, title receives what stands between the
// first "{" and the first "}", untrimmed. title may be null.
int GetDescriptionLineKind(const SString& line, SString* title);
