// What the Book needs to know of the collection: the media class of a file
// and where a folder's cover lies.
// FIXME: moves to library/ with the collection's own media classes and
// companion-file lookup, which these follow, once that layer has them.
#pragma once

#include "foundation/array.h"
#include "foundation/string.h"

// Media classes: 0 other, 1 video, 2 song, 3 radio, 4 picture.
inline constexpr int BOOK_MEDIA_OTHER = 0;
inline constexpr int BOOK_MEDIA_VIDEO = 1;
inline constexpr int BOOK_MEDIA_SONG = 2;
inline constexpr int BOOK_MEDIA_RADIO = 3;
inline constexpr int BOOK_MEDIA_PICTURE = 4;

// The class of a file name by its extension, without regard to case.
int GetBookMediaClass(const char* fileName);

// The names of one folder's files (not hidden), in listing order, for the
// lookups below: one listing serves every question about that folder.
class PFolderFiles {
public:
    // Lists folder (ending in "/"); false when it cannot be read.
    bool Read(const char* folder);
    const SString& GetFolder() const { return folder; }
    // The full path of the file called name: an exact match first, then
    // one without regard to ASCII case; empty when there is none.
    SString Find(const char* name) const;
    // Full paths of the songs, videos and radios, sorted ascending.
    void GetMedia(SStringArray& files) const;

private:
    SString folder;
    SStringArray names;
};

// The pictures to try for the cover of the folder called name, in order:
// "<name>.png" then "<name>.jpg" beside it (parent lists the folder that
// holds it), then when name is one of sharedNames "<name>.png" and
// "<name>.jpg" in the root (rootFiles), then "cover", "folder", "front" and
// "albumart" with ".jpg", ".jpeg" and ".png" inside the folder itself.
void GetCoverCandidates(const SString& name, const PFolderFiles& parent,
                        const PFolderFiles& rootFiles, const PFolderFiles& inside,
                        const SStringArray& sharedNames, SStringArray& candidates);
