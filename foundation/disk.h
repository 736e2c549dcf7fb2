// SDisk: the one place where the program looks at folders and changes the
// disk: listing with the filters the library scan needs, attributes, file
// sizes, temporary names, starting documents, creating, renaming, moving
// to the trash and writing a plain ZIP archive.
//
// Objects are cheap and made on the stack where needed; the only state is
// the trailing-separator mode, so each thread uses its own object.
// Failures are the result (false, -1, 0, the empty string); nothing shows a
// message.
#pragma once

#include "foundation/string.h"

class SStringArray;

// Attribute flags of GetAttributes and SetAttributes.
constexpr int DISK_READONLY = 1; // no write permission for anyone
constexpr int DISK_HIDDEN = 2;   // the name starts with "." or is listed in the folder's ".hidden"
constexpr int DISK_SYSTEM = 4;   // never reported on Linux; ignored when set

// Enumeration flags; callers pass plain sums (11 and 13 are the usual ones).
constexpr int ENUM_RECURSIVE = 1;                 // descend into subfolders
constexpr int ENUM_FOLDERS = 2;                   // list folders
constexpr int ENUM_FILES = 4;                     // list files
constexpr int ENUM_NO_HIDDEN = 8;                 // skip every hidden entry
constexpr int ENUM_NO_FOLDERS_WITH_FILES = 16;    // leave out a folder that directly holds a file
constexpr int ENUM_NO_FOLDERS_WITHOUT_FILES = 32; // ... that directly holds no file
constexpr int ENUM_NO_FOLDERS_WITH_FOLDERS = 64;  // ... that directly holds a folder
constexpr int ENUM_NO_FOLDERS_WITHOUT_FOLDERS = 128; // ... that directly holds no folder

// The listing order of names within one folder: bytes compared with the
// ASCII letters folded to lower case, ties broken by plain byte order.
// Negative, 0 or positive.
int CompareListingNames(const char* a, const char* b);

// Case-blind match of a name against a file-name filter: "*" stands for any
// run, "?" for one character, ASCII letters match either case, and a final
// ".*" also matches a name without a dot ("*.*" matches every name).
bool MatchFileFilter(const char* filter, const char* name);

// Whether path, once every symbolic link on the way is followed (the file's
// own included), lies in folder's real path or is that folder. A path that
// does not exist yet is judged by its folder, which must exist. The rule
// behind every write the program makes into a collection: nothing is
// written, renamed or deleted outside the root's real path.
bool IsInsideFolder(const char* folder, const char* path);
// Whether a "/"-separated relative path has a ".." part.
bool HasDotDotPart(const char* relative);

class SDisk {
public:
    SDisk() = default;
    virtual ~SDisk();

    // With the mode on (the default) GetTempFolder ends in "/".
    bool SetTrailingSeparator(bool on);
    bool GetTrailingSeparator() const { return trailingSeparator; }

    // Listing.
    // pattern is a folder and a filter, "/music/*.mp3". With a "*" in the
    // filter the entries are full paths and ENUM_RECURSIVE descends into
    // every subfolder (matching or not, kept or not); without one the
    // entries are bare names of that folder, looked up by exact name (or
    // matched case-blind when the filter holds "?"), and nothing recurses.
    // A folder entry ends in "/". Each folder's entries come sorted by
    // CompareListingNames, every folder directly before its contents.
    // Symbolic links count as what they point to; a link back to a folder
    // being listed is not followed again. Returns how many entries were
    // found (result may be null to count only); fileCount and folderCount,
    // when given, are increased by the files and folders this folder itself
    // adds, not those found below it.
    int Enumerate(SStringArray* result, const char* pattern, int flags, int* fileCount = nullptr,
                  int* folderCount = nullptr);
    // Enumerate with flags from the arguments; onlyEmptyFolders keeps only
    // folders holding neither files nor folders.
    int GetEntries(SStringArray* result, const char* pattern, bool recursive, bool folders,
                   bool files, bool onlyEmptyFolders, bool withHidden);

    // Queries. Names are exact: the file system tells case apart.
    bool Exists(const char* path) const;
    // A regular file (or a link to one); false for a path ending in "/".
    bool IsFile(const char* path) const;
    // A folder (or a link to one); one trailing "/" is allowed.
    bool IsFolder(const char* path) const;
    bool IsHidden(const char* path) const;
    // DISK_* flags, or -1 when the path does not exist.
    int GetAttributes(const char* path) const;
    // Sets exactly the given flags: DISK_READONLY takes away or gives back
    // write permission, DISK_HIDDEN adds the name to or removes it from the
    // ".hidden" file of its folder (rewritten atomically). A name starting
    // with "." cannot lose DISK_HIDDEN: asking for that is false and
    // changes nothing.
    bool SetAttributes(const char* path, int flags) const;
    // The size of a regular file in bytes; -1 for an empty or unreadable
    // path, a folder, or a file of 2 GB or more.
    int GetFileSize(const char* path) const;

    // Temporary files.
    // $TMPDIR, else "/tmp".
    SString GetTempFolder() const;
    // Creates a new empty file "tmpXXXXXX.tmp" in the temporary folder and
    // returns its full path; empty on failure.
    SString GetTempFileName() const;

    // Starting documents and programs through the desktop. showCommand is
    // accepted for the callers' sake; the desktop decides how windows show.
    // Opens a folder in the file manager.
    bool Explore(const char* folder, int showCommand);
    // A program file (executable, starting with "#!" or an ELF header) is
    // started with the parameters (split as a shell would), in the file's
    // folder when fileFolderAsCurrent, and waited for when wait is true;
    // the result tells whether it started. Anything else (a document, a
    // folder, a URL) goes to the desktop's default application, and
    // parameters, folder and wait do not apply.
    bool Run(const char* file, const char* parameters, bool wait, bool fileFolderAsCurrent,
             int showCommand);

    // Changing the disk.
    // Renames a file; false when the old name is no file or the new name
    // already exists, which is never replaced.
    bool Rename(const char* oldName, const char* newName);
    // folder + base + extension when free, else folder + base + a number
    // below 1000 + extension, trying up to 1000 numbers; empty when the
    // folder does not exist or nothing was free. The extension may be null
    // or empty; it gets its "." here.
    SString MakeUniqueName(const char* folder, const char* base, const char* extension);
    // True when the folder exists afterwards; with parents, missing folders
    // above it are made too.
    bool CreateFolder(const char* path, bool parents);
    // Makes an empty file, or one filled with the embedded resource
    // resourceId (when not 0). Without overwrite an existing file is left
    // untouched and the result is false.
    bool CreateFile(const char* path, bool overwrite, bool parents, unsigned resourceId);
    // Moves a file or folder to the desktop's trash. When the trash cannot
    // take it (no trash on that file system, no permission) the result is
    // false and the file stays where it was: nothing is ever deleted
    // outright. A path that is not local, or the root, gives false. The
    // owner window, progress and confirmation belong to the desktop and are
    // not used.
    bool Delete(const char* path, void* window, bool showProgress, bool confirm);
    // Writes an archive of stored (uncompressed) entries, one for each file
    // in order, named by the file's path without its first skipParts parts
    // (SPath::GetSlice), with "/" between folders. The archive is written
    // to a temporary file beside it and renamed over it at the end; on
    // failure (no files, a file that cannot be read, 2 GB or 65,535 entries
    // passed) the result is false and an archive already there stays as it
    // was.
    bool WriteZip(const char* archive, SStringArray* files, int skipParts);

private:
    bool trailingSeparator = true;
};
