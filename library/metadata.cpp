#include "library/metadata.h"

#include <cstdio>
#include <cstring>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/ini.h"
#include "foundation/parser.h"
#include "foundation/path.h"
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

SString PCovers::FindCover(const char* folder) const {
    SString name = FolderName(folder);
    if (name.IsEmpty()) {
        return SString("");
    }
    for (const char* extension : {".png", ".jpg"}) {
        SString found = FindCompanion(folder, extension);
        if (!found.IsEmpty()) {
            return found;
        }
    }
    if (!root.IsEmpty() && sharedNames.Find(name.c_str()) >= 0) {
        for (const char* extension : {".png", ".jpg"}) {
            SString found = FindFileNoCase(root.c_str(), (name + extension).c_str());
            if (!found.IsEmpty()) {
                return found;
            }
        }
    }
    for (const char* inner : INNER_NAMES) {
        for (const char* extension : INNER_EXTENSIONS) {
            SString found = FindFileNoCase(folder, (SString(inner) + extension).c_str());
            if (!found.IsEmpty()) {
                return found;
            }
        }
    }
    return SString("");
}

bool PCovers::LoadCover(SImage* image, const char* folder) const {
    if (image == nullptr) {
        return false;
    }
    // A cover that fails to decode passes to the next place in the order.
    bool own = false;
    SString name = FolderName(folder);
    if (!name.IsEmpty()) {
        const char* firstTwo[] = {".png", ".jpg"};
        for (const char* extension : firstTwo) {
            if (!own) {
                own = LoadScaledFile(*image, FindCompanion(folder, extension));
            }
        }
        if (!own && !root.IsEmpty() && sharedNames.Find(name.c_str()) >= 0) {
            for (const char* extension : firstTwo) {
                if (!own) {
                    SString path = FindFileNoCase(root.c_str(), (name + extension).c_str());
                    own = LoadScaledFile(*image, path);
                }
            }
        }
        for (const char* inner : INNER_NAMES) {
            for (const char* extension : INNER_EXTENSIONS) {
                if (!own) {
                    SString path = FindFileNoCase(folder, (SString(inner) + extension).c_str());
                    own = LoadScaledFile(*image, path);
                }
            }
        }
    }
    if (!own) {
        if (defaultCover.IsValid()) {
            image->CopyFrom(&defaultCover);
        } else {
            image->Create(COVER_SIDE, COVER_SIDE, PIXEL_FORMAT_24RGB);
            image->Fill(0xFFFFFFFF);
        }
    }
    if (image->GetWidth() != COVER_SIDE || image->GetHeight() != COVER_SIDE) {
        image->Resize(COVER_SIDE, COVER_SIDE);
    }
    if (image->HasAlpha()) {
        image->FlattenAlpha();
    }
    return own;
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

SString ComposeCoverCaption(const char* folder) {
    SString caption = FolderName(folder);
    SString ini = FindCompanion(folder, ".ini");
    if (ini.IsEmpty()) {
        return caption;
    }
    SIni file;
    if (!file.SetFile(ini.c_str(), false)) {
        return caption;
    }
    SString site = file.ReadString("", "site");
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
    return path.GetFolderPath() + path.GetTitle() + ".txt";
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
