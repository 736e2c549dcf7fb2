#include "library/metadata.h"

#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/ini.h"
#include "foundation/parser.h"
#include "foundation/path.h"
#include "library/cover_cache.h"
#include "library/media.h"

namespace {

// The names other players give the cover inside an album's folder.
constexpr const char* INNER_NAMES[] = {"cover", "folder", "front", "albumart"};
constexpr const char* INNER_EXTENSIONS[] = {".jpg", ".jpeg", ".png"};

SString FolderName(const char* folder) {
    SPath path;
    if (folder == nullptr || !path.SetFolder(folder)) {
        return SString("");
    }
    return path.GetLastFolder(true);
}

SString WithSlash(const char* folder) {
    SString text(folder != nullptr ? folder : "");
    if (text.GetLength() > 0 && text.GetAt(text.GetLength() - 1) != '/') {
        text += "/";
    }
    return text;
}

bool LoadScaledFile(SImage& image, const SString& path) {
    if (path.IsEmpty()) {
        return false;
    }
    SFilePath file;
    return file.Open(path.c_str(), false, false, true, true) &&
           image.LoadScaled(&file, COVER_SIDE, COVER_SIDE);
}

// Every cover ends 150 by 150 and opaque: a pixel that was not wholly
// opaque becomes white.
void MakeCoverOpaque(SImage& image) {
    if (image.GetWidth() != COVER_SIDE || image.GetHeight() != COVER_SIDE) {
        image.Resize(COVER_SIDE, COVER_SIDE);
    }
    if (image.HasAlpha()) {
        image.FlattenAlpha();
    }
}

} // namespace

void PCovers::SetRoot(const char* newRoot) {
    root = WithSlash(newRoot);
}

void PCovers::SetSharedNames(const char* setting) {
    sharedNames.DeleteAll();
    sharedNames.SetFlags(SORT_NOCASE);
    SStringParser parser(setting != nullptr ? setting : "");
    if (parser.IsEmpty()) {
        return;
    }
    parser.Parse(";", SStringParser::PARSE_QUOTES, '"', &sharedNames);
}

void PCovers::SetDefaultCover(const SImage* image) {
    defaultCover.Empty();
    if (image != nullptr && image->IsValid()) {
        defaultCover.CopyFrom(image);
    }
}

bool PCovers::VisitCoverFiles(const char* folder,
                              const std::function<bool(const SString&)>& visit) const {
    SPath path;
    if (folder == nullptr || !path.SetFolder(folder)) {
        return false;
    }
    SString name = path.GetLastFolder(true);
    SString parent = path.GetParent();
    if (name.IsEmpty() || parent.IsEmpty()) {
        return false;
    }
    auto offer = [&visit](const SString& file) { return !file.IsEmpty() && visit(file); };
    for (const char* extension : {".png", ".jpg"}) {
        if (offer(fileNames.Find(parent.c_str(), (name + extension).c_str()))) {
            return true;
        }
    }
    if (!root.IsEmpty() && sharedNames.Find(name.c_str()) >= 0) {
        for (const char* extension : {".png", ".jpg"}) {
            if (offer(fileNames.Find(root.c_str(), (name + extension).c_str()))) {
                return true;
            }
        }
    }
    SString inside = path.GetFullPath();
    for (const char* inner : INNER_NAMES) {
        for (const char* extension : INNER_EXTENSIONS) {
            if (offer(fileNames.Find(inside.c_str(), (SString(inner) + extension).c_str()))) {
                return true;
            }
        }
    }
    return false;
}

std::vector<SString> PCovers::FindCoverFiles(const char* folder) const {
    std::vector<SString> found;
    VisitCoverFiles(folder, [&found](const SString& file) {
        found.push_back(file);
        return false;
    });
    return found;
}

SString PCovers::FindCover(const char* folder) const {
    SString found;
    VisitCoverFiles(folder, [&found](const SString& file) {
        found = file;
        return true;
    });
    return found;
}

bool PCovers::LoadCoverFile(SImage* image, const SString& file, const PCoverCache* cache) const {
    PCoverFileKey key;
    bool keyed = cache != nullptr && cache->IsEnabled() &&
                 PCoverCache::GetFileKey(file.c_str(), &key);
    if (keyed && cache->Find(file.c_str(), key, image)) {
        return true;
    }
    if (!LoadScaledFile(*image, file)) {
        return false;
    }
    MakeCoverOpaque(*image);
    if (keyed) {
        cache->Store(file.c_str(), key, *image);
    }
    return true;
}

void PCovers::LoadDefaultCover(SImage* image) const {
    if (defaultCover.IsValid()) {
        image->CopyFrom(&defaultCover);
    } else {
        image->Create(COVER_SIDE, COVER_SIDE, PIXEL_FORMAT_24RGB);
        image->Fill(0xFFFFFFFF);
    }
    MakeCoverOpaque(*image);
}

bool PCovers::LoadCover(SImage* image, const char* folder, const PCoverCache* cache) const {
    if (image == nullptr) {
        return false;
    }
    // A cover that fails to decode passes to the next place in the order.
    if (VisitCoverFiles(folder, [&](const SString& file) {
            return LoadCoverFile(image, file, cache);
        })) {
        return true;
    }
    LoadDefaultCover(image);
    return false;
}

bool PCovers::LoadCoverFrom(SImage* image, const std::vector<SString>& files,
                            const PCoverCache* cache) const {
    if (image == nullptr) {
        return false;
    }
    for (const SString& file : files) {
        if (LoadCoverFile(image, file, cache)) {
            return true;
        }
    }
    LoadDefaultCover(image);
    return false;
}

SString CutSiteLink(const char* site) {
    SString link(site != nullptr ? site : "");
    if (strncmp(link.c_str(), "http://www.", 11) == 0) {
        link.Delete(0, 11);
    }
    if (strncmp(link.c_str(), "http://", 7) == 0) {
        link.Delete(0, 7);
    }
    return link;
}

SString ReadSite(const char* folder) {
    SString ini = FindCompanion(folder, ".ini");
    SIni file;
    if (ini.IsEmpty() || !file.SetFile(ini.c_str(), false)) {
        return SString("");
    }
    return file.ReadString("", "site");
}

SString ComposeCoverCaption(const char* folder) {
    SString caption = FolderName(folder);
    SString site = ReadSite(folder);
    if (!site.IsEmpty()) {
        caption += "\n\n<link>";
        caption += CutSiteLink(site.c_str());
        caption += "</link>";
    }
    return caption;
}

bool WriteSite(const char* folder, const char* site) {
    SString ini = FindCompanion(folder, ".ini");
    if (ini.IsEmpty()) {
        SPath path;
        if (folder == nullptr || !path.SetFolder(folder)) {
            return false;
        }
        ini = path.GetParent() + path.GetLastFolder(true) + ".ini";
    }
    SIni file;
    return file.SetFile(ini.c_str(), true) && file.WriteString("", "site", site);
}

SString GetFolderPage(const char* folder) {
    SString page = FindCompanion(folder, ".mht");
    return page.IsEmpty() ? FindCompanion(folder, ".htm") : page;
}

SString GetTrackTextPath(const char* trackPath) {
    SPath path(trackPath);
    if (!path.HasName()) {
        return SString("");
    }
    // Exact name first, then a case-blind match ("Song.TXT" beside
    // "song.mp3"); with neither, the exact name, where a save makes it.
    SString name = path.GetTitle() + ".txt";
    SString found = FindFileNoCase(path.GetFolderPath().c_str(), name.c_str());
    return found.IsEmpty() ? path.GetFolderPath() + name : found;
}

SString LoadTrackText(const char* trackPath) {
    SString path = GetTrackTextPath(trackPath);
    SFileMem file;
    if (path.IsEmpty() || !file.LoadFile(path.c_str())) {
        return SString("");
    }
    SString text;
    text.Assign(file.GetData() != nullptr ? file.GetData() : "", file.GetSize());
    return text;
}

bool SaveTrackText(const char* trackPath, const char* text, int& dataWord, bool* saved) {
    SString path = GetTrackTextPath(trackPath);
    bool done = false;
    int word = dataWord;
    if (!path.IsEmpty()) {
        if (text == nullptr || text[0] == 0) {
            done = std::remove(path.c_str()) == 0 || !SDisk().Exists(path.c_str());
            word = TRACK_NO_TEXT;
        } else {
            done = WriteFileAtomic(path.c_str(), text, int(strlen(text)));
            word = done ? TRACK_HAS_TEXT : dataWord;
        }
    }
    if (saved != nullptr) {
        *saved = done;
    }
    bool changed = word != dataWord;
    dataWord = word;
    return changed;
}
