// The companion files of a folder "<parent>/<name>/", which lie beside it
// and are named after it: the cover ("<name>.png", else "<name>.jpg"), the
// properties ("<name>.ini", key "site" in the section with the empty name),
// the page ("<name>.mht", else "<name>.htm"); and the text file of a track,
// "<folder>/<title>.txt".
#pragma once

#include <functional>
#include <vector>

#include "foundation/array.h"
#include "foundation/image.h"
#include "foundation/string.h"
#include "library/media.h"

// Side of every cover, in points.
constexpr int COVER_SIDE = 150;
// Track row data words: a text file beside the track, or none.
constexpr int TRACK_HAS_TEXT = 5;
constexpr int TRACK_NO_TEXT = -1;

// PCovers: finds and loads folder covers for one collection. It keeps the
// folders' file names between calls (see PFileNameCache, which serves
// several threads at once), so once set up, FindCover, FindCoverFiles and
// the loads may run on several threads together; the setters may not.
class PCoverCache;

class PCovers {
public:
    PCovers() = default;
    PCovers(const PCovers&) = delete;
    PCovers& operator=(const PCovers&) = delete;

    // The collection's root, where the shared covers lie.
    void SetRoot(const char* root);
    const SString& GetRoot() const { return root; }
    // The shared-cover names of the "Images" setting, separated by ";"
    // (a double-quoted run may hold one).
    void SetSharedNames(const char* setting);
    const SStringArray& GetSharedNames() const { return sharedNames; }
    // The picture used when a folder has no cover; without one the default
    // cover is plain white.
    void SetDefaultCover(const SImage* image);

    // The cover file of a folder, found in this order: "<parent>/<name>.png",
    // "<parent>/<name>.jpg"; when the name is one of the shared names
    // (without regard to case) "<root><name>.png", "<root><name>.jpg";
    // then inside the folder "cover", "folder", "front", "albumart" with
    // ".jpg", ".jpeg" or ".png" in that order. Each is found by exact name,
    // then case-blind. Empty when there is none.
    SString FindCover(const char* folder) const;
    // Leaves a 150 by 150 opaque picture in image (nothing when null): the
    // folder's cover stretched to that size, or the default cover, with
    // every pixel whose alpha is below 255 made opaque white. True when the
    // folder's own cover was used. The places are looked at in order and
    // only until one gives a picture. With a cache, a cover file made before
    // with the same size and time is taken from it, and a newly decoded one
    // is stored there.
    bool LoadCover(SImage* image, const char* folder, const PCoverCache* cache = nullptr) const;
    // Every cover file of the folder that exists, in the order above: a
    // file that does not decode passes to the next.
    std::vector<SString> FindCoverFiles(const char* folder) const;
    // LoadCover from the files FindCoverFiles gave, in their order.
    bool LoadCoverFrom(SImage* image, const std::vector<SString>& files,
                       const PCoverCache* cache = nullptr) const;

private:
    // Gives visit each cover file of the folder that exists, in the order of
    // FindCover, until it returns true; true when one did.
    bool VisitCoverFiles(const char* folder,
                         const std::function<bool(const SString&)>& visit) const;
    // One cover file, from the cache or decoded; false when it gives none.
    bool LoadCoverFile(SImage* image, const SString& file, const PCoverCache* cache) const;
    void LoadDefaultCover(SImage* image) const;

    SString root;
    SStringArray sharedNames;
    mutable PFileNameCache fileNames;
    SImage defaultCover;
};

// The "site" value shown as a link: "http://www." then "http://" cut from
// its start (each exactly, case-sensitive); anything else stays.
SString CutSiteLink(const char* site);
// The cover caption: the folder's name, then, when its ini file holds a
// "site" value, "\n\n<link>" and the cut value and "</link>".
SString ComposeCoverCaption(const char* folder);
// The folder's "site" value; "" when it has none.
SString ReadSite(const char* folder);
// Writes the folder's "site" value, making the ini file when missing.
bool WriteSite(const char* folder, const char* site);
// The folder's page: its ".mht", else its ".htm"; empty when neither.
SString GetFolderPage(const char* folder);

// Track text.
// The text file of a track: "<folder>/<title>.txt" found by exact name, then
// case-blind; "<folder>/<title>.txt" when there is none yet.
SString GetTrackTextPath(const char* trackPath);
// The text of a track's text file; "" when it is missing.
SString LoadTrackText(const char* trackPath);
// Saves the editor's text for a track: an empty text deletes the file,
// any other replaces it atomically. dataWord is the track row's word; it
// becomes TRACK_NO_TEXT or TRACK_HAS_TEXT, and the result tells whether it
// changed (the row is then redrawn). saved, when given, tells whether the
// disk change succeeded.
bool SaveTrackText(const char* trackPath, const char* text, int& dataWord, bool* saved = nullptr);
