// Media classes of the collection's files, the search for a folder's media
// (CollectMedia), companion files found beside a folder, and the stream
// address inside a radio file.
#pragma once

#include <ctime>
#include <mutex>
#include <string>
#include <unordered_map>

#include "foundation/string.h"

class SStringArray;

// Media classes; each is also the track row's icon index.
constexpr int MEDIA_OTHER = 0; // never listed
constexpr int MEDIA_VIDEO = 1;
constexpr int MEDIA_SONG = 2;
constexpr int MEDIA_RADIO = 3;
constexpr int MEDIA_PICTURE = 4;

// The class of a file by its extension, without regard to case:
// video mpg mpeg avi wmv mp4 m4v mkv webm mov; song mp3 wma flac ogg oga
// opus m4a aac wav ape wv; radio wax wvx asx pls; picture jpg jpeg png.
int GetMediaClass(const char* path);
// The same for an extension alone, without its dot ("MP3").
int GetMediaClassOfExtension(const char* extension, int length = -1);

// Adds the full paths of the media files of folder (a folder path, with or
// without its final "/") to dest, sorted together in byte order at the end.
// Songs and videos include radio files unless noRadio; recursive searches
// the whole tree. Hidden files and folders are left out. With companions,
// every folder searched (the given one first) adds the files beside it that
// exist: its cover (".png", else ".jpg"), its ".txt", and its page (".mht",
// else ".htm"). Returns how many paths were added.
int CollectMedia(SStringArray& dest, const char* folder, bool recursive, bool songs, bool videos,
                 bool pictures, bool companions, bool noRadio);

// The companion "<parent>/<name><extension>" of a folder, found by exact
// name first and then by a case-blind match in the parent; empty when there
// is none. folder may end in "/"; extension includes its dot (".png").
SString FindCompanion(const char* folder, const char* extension);
// A file named name in folder, exact first and then case-blind; empty when
// there is none.
SString FindFileNoCase(const char* folder, const char* name);

// Case-blind lookups of file names, each folder listed once and listed
// again only when its modification time changes (an entry added, removed
// or renamed). Finding the covers of a folder's subfolders asks the same
// folders many times. One thread per object.
class PFileNameCache {
public:
    // As FindFileNoCase. Safe to call from several threads at once (the
    // Book makes its pictures on worker threads).
    SString Find(const char* folder, const char* name);

private:
    struct Listing {
        struct timespec modified;
        bool settled; // the folder was unchanged for a while before the listing
        std::unordered_map<std::string, std::string> names; // lower case -> as on disk
    };
    // Folders kept at most; past it the cache starts again.
    static constexpr size_t MAX_FOLDERS = 16;
    std::mutex mutex; // guards folders
    std::unordered_map<std::string, Listing> folders;
};

// The address a player is given for a file: for an ASX radio file (asx,
// wax, wvx) the first <ref href="..."> inside it, for a PLS list its first
// "FileN=" entry, and for anything else the path itself. Empty for a radio
// file that holds no address or cannot be read.
SString GetPlayableAddress(const char* path);
