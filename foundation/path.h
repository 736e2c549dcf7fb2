// SPath: the path value that the whole program passes around. It splits a
// path into root, folders and name, and tells local, UNC and URL paths apart.
//
// Every kind uses "/" as its separator. A local path is absolute from its
// root "/" (relative texts are completed with the current folder, and "."
// and ".." are resolved by text alone, without touching the disk); a UNC
// path begins "//host"; a URL holds "scheme://host". A "\" in a local path
// is an ordinary character of a name, as the file system reads it: code
// that turns a stored Windows-style entry into a disk path changes "\" to
// "/" before it makes an SPath.
//
// The trailing-separator mode (on by default) decides whether folder texts
// come back with their final "/": "/a/b/" with it, "/a/b" without. A root
// always keeps its separator.
#pragma once

#include "foundation/string.h"

class SStringArray;

// Values of SPath::GetType.
constexpr int PATH_INVALID = 0; // nothing set, or the text was refused
constexpr int PATH_LOCAL = 1;   // "/music/a.mp3"
constexpr int PATH_UNC = 2;     // "//host/share/a.mp3"
constexpr int PATH_URL = 3;     // "http://host/a/b.htm"

class SPath {
public:
    SPath() = default;
    SPath(const char* text);
    SPath(const SPath& other) = default;
    SPath& operator=(const SPath& other) = default;
    virtual ~SPath();

    // Setting. A text holding a control character (below 32), a double
    // quote, "*", "<", ">" or "?" is refused and leaves the path invalid;
    // so is an empty or null text. True when the result is valid.
    bool Set(const char* text);
    // As Set, with a "/" added when the text does not end in one, so that
    // the result names a folder.
    bool SetFolder(const char* text);
    // Takes the other's full path (in the other's trailing-separator mode)
    // and type; the text as passed in is not kept.
    void Assign(const SPath& other);

    // Kind.
    bool IsValid() const { return type != PATH_INVALID; }
    bool IsLocal() const { return type == PATH_LOCAL; }
    bool IsUnc() const { return type == PATH_UNC; }
    bool IsUrl() const { return type == PATH_URL; }
    int GetType() const { return type; }

    // Returns the old mode.
    bool SetTrailingSeparator(bool on);
    bool GetTrailingSeparator() const { return trailingSeparator; }

    // Parts. All are empty on an invalid path.
    // "/" for a local path, "//host/" for UNC, "http://host/" for a URL;
    // a UNC or URL path without a "/" after its host gets one appended.
    SString GetRoot() const;
    // The text after the last separator; empty for a folder path.
    SString GetName() const;
    // The name up to its last "."; the whole name when it has no ".".
    SString GetTitle() const;
    // The text after the last "." of the name; empty when there is none.
    SString GetExtension(bool withDot = true, bool lowerCase = false) const;
    // Between root and name ("a/b/" of "/a/b/c.mp3"); empty directly under
    // the root. The final "/" follows the trailing-separator mode.
    SString GetFolder() const;
    // GetRoot() followed by GetFolder().
    SString GetFolderPath() const;
    // The normalised path; a folder path follows the trailing-separator mode.
    SString GetFullPath() const;
    // The folder holding this file, or for a folder the one above it; empty
    // on a bare root.
    SString GetParent() const;
    // The last folder's name ("b" of "/a/b/c.mp3"), with its "/" when the
    // trailing-separator mode is on and noSeparator is false.
    SString GetLastFolder(bool noSeparator = false) const;
    bool HasName() const;
    // Valid, with at least one folder and no name. A bare root is not one.
    bool IsFolder() const;

    // Splitting. GetParts appends the root, each folder with its "/", then
    // the name (even when empty) and returns how many it appended: the
    // number of folders + 2, or 0 for an invalid path. parts may be null.
    int GetParts(SStringArray* parts) const;
    int GetDepth() const { return GetParts(nullptr); }
    // The parts from start joined, each "/" replaced by separator. A
    // negative start, a start past the last part or a count of 0 gives the
    // empty string; a negative count means to the end. With dropName a
    // slice that reaches the last part leaves the name out.
    SString GetSlice(int start, int count, bool dropName, char separator) const;
    // Same type and the same parts, compared without regard to case.
    bool IsSame(const SPath* other) const;

private:
    // Where the pieces of path lie. rootEnd is just past the root's "/", or
    // the length of path when that "/" is missing; nameStart is where the
    // name begins (the length of path when there is no name).
    struct Layout {
        int rootEnd = 0;
        int nameStart = 0;
        bool rootSeparatorMissing = false;
    };
    Layout GetLayout() const;
    // The folder text with its final "/", whatever the mode.
    SString GetRawFolder(const Layout& layout) const;

    bool trailingSeparator = true;
    SString text; // as passed in
    SString path; // normalised
    int type = PATH_INVALID;
};
