#include "library/folder_view.h"

#include <unordered_set>
#include <string>

#include "foundation/disk.h"
#include "library/cover_cache.h"
#include "library/media.h"

namespace {

constexpr int SMALL_SIDE = 16;
// The parent cover is drawn this faint: alpha of at most 64 of 255.
constexpr int PARENT_ALPHA = 64;
// The tint of the parent cover: its luminance grey.
constexpr uint32_t PARENT_TINT = 0x00FFFFFF;

// A folder's visible subfolders.
int CountSubfolders(const SString& folder) {
    return SDisk().Enumerate(nullptr, (folder + "*").c_str(), ENUM_FOLDERS | ENUM_NO_HIDDEN);
}

// The small image of a cover: each pixel the mean of the block of the
// cover it stands for. Far cheaper than a filtered resize, and as good at
// a ninth of the size.
void Shrink(const SImage& cover, int side, SImage& small) {
    int width = cover.GetWidth();
    int height = cover.GetHeight();
    const uint32_t* source = cover.GetBits();
    small.Create(side, side, PIXEL_FORMAT_24RGB);
    uint32_t* target = small.GetBits();
    if (source == nullptr || target == nullptr || width < side || height < side) {
        small.CopyFrom(&cover);
        small.Resize(side, side);
        return;
    }
    for (int y = 0; y < side; ++y) {
        int top = y * height / side;
        int bottom = (y + 1) * height / side;
        for (int x = 0; x < side; ++x) {
            int left = x * width / side;
            int right = (x + 1) * width / side;
            uint32_t red = 0, green = 0, blue = 0;
            for (int row = top; row < bottom; ++row) {
                const uint32_t* line = source + size_t(row) * size_t(width);
                for (int column = left; column < right; ++column) {
                    red += (line[column] >> 16) & 0xFF;
                    green += (line[column] >> 8) & 0xFF;
                    blue += line[column] & 0xFF;
                }
            }
            uint32_t area = uint32_t((bottom - top) * (right - left));
            target[y * side + x] = 0xFF000000u | ((red + area / 2) / area) << 16 |
                                   ((green + area / 2) / area) << 8 | ((blue + area / 2) / area);
        }
    }
}

std::string LowerAscii(const char* text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? char(c + 32) : c;
    }
    return lower;
}

} // namespace

PFolderView::PFolderView() {
    rowImages.Create(SMALL_SIDE, SMALL_SIDE, 0);
    defaultSmallImage.Create(SMALL_SIDE, SMALL_SIDE, PIXEL_FORMAT_24RGB);
    defaultSmallImage.Fill(0xFFFFFFFF);
}

void PFolderView::SetRoot(const char* newRoot) {
    root.SetFolder(newRoot != nullptr ? newRoot : "");
    current = root;
    covers.SetRoot(root.GetFullPath().c_str());
    statusText = root.GetFullPath();
}

bool PFolderView::ResetToRoot() {
    current = root;
    statusText = root.GetFullPath();
    page = "";
    return false;
}

bool PFolderView::OpenFolder(const char* path, const char* selectName, bool focusThumbs) {
    current = SPath();
    return NavigateFolder(path, selectName, focusThumbs);
}

bool PFolderView::NavigateFolder(const char* relative, const char* selectName,
                                 bool wantThumbs) {
    SPath old = current;
    SString text = current.IsValid() ? current.GetFullPath() : SString("");
    text += relative != nullptr ? relative : "";
    SPath target;
    SDisk disk;
    if (!target.SetFolder(text.c_str()) || !disk.IsFolder(target.GetFullPath().c_str())) {
        return ResetToRoot();
    }
    current = target;
    if (!current.IsValid() || current.GetDepth() < root.GetDepth()) {
        return ResetToRoot();
    }
    SString folder = current.GetFullPath();
    SStringArray names;
    disk.Enumerate(&names, (folder + "*").c_str(), ENUM_FOLDERS | ENUM_NO_HIDDEN);
    for (SString* name : names) {
        name->SetLength(name->GetLength() - 1); // the final "/"
        *name = SPath(name->c_str()).GetName();
    }
    names.SetFlags(SORT_NOCASE);
    names.Sort();
    if (names.GetCount() == 0) {
        current = old;
        page = "";
        return false;
    }

    // Each folder's facts, its cover and its small image are made on every
    // core, and the view is complete before it is shown.
    size_t count = static_cast<size_t>(names.GetCount());
    std::vector<PThumbItem> items(count);
    std::vector<SImage> smallImages(count);
    RunOnAllCores(count, [&](size_t i) {
        const SString& name = *names.GetAt(static_cast<int>(i));
        SString sub = folder + name + "/";
        items[i].isLeaf = CountSubfolders(sub) == 0;
        covers.LoadCover(&items[i].cover, sub.c_str(), &coverCache);
        Shrink(items[i].cover, SMALL_SIDE, smallImages[i]);
    });

    thumbnails.clear();
    rows.clear();
    rowImages.RemoveAll();
    rowImages.Add(&defaultSmallImage);
    for (size_t i = 0; i < count; ++i) {
        rowImages.Add(&smallImages[i]);
        items[i].name = *names.GetAt(static_cast<int>(i));
        rows.push_back({items[i].name, static_cast<int>(i) + 1,
                        items[i].isLeaf ? FOLDER_IS_LEAF : FOLDER_HAS_SUBFOLDERS});
        thumbnails.push_back(std::move(items[i]));
    }
    selectedRow = -1;
    focusThumbs = wantThumbs;
    // Selecting a name fills the panes; otherwise they are filled empty.
    if (wantThumbs || selectName == nullptr || selectName[0] == 0 || !SelectName(selectName)) {
        ShowSelection();
    }
    statusText = folder;
    return true;
}

bool PFolderView::RefreshFolder() {
    if (selectedRow >= 0) {
        SString name = rows[size_t(selectedRow)].name;
        return NavigateFolder(".", name.c_str(), false);
    }
    return NavigateFolder(".", "", true);
}

bool PFolderView::SelectRow(int row) {
    if (row < -1 || row >= int(rows.size())) {
        return false;
    }
    selectedRow = row;
    ShowSelection();
    return true;
}

bool PFolderView::SelectName(const char* name) {
    for (size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].name == name) {
            return SelectRow(int(i));
        }
    }
    return false;
}

SString PFolderView::GetSelectedFolder() const {
    if (selectedRow < 0 || !current.IsValid()) {
        return SString("");
    }
    return current.GetFullPath() + rows[size_t(selectedRow)].name + "/";
}

void PFolderView::ClearSelection() {
    cover.Empty();
    caption = "";
    parentCover.Empty();
    parentCaption = "";
    trackRows.clear();
    trackTable.DeleteAll();
    page = "";
}

bool PFolderView::ShowSelection() {
    ClearSelection();
    if (selectedRow < 0) {
        return false;
    }
    SString folder = GetSelectedFolder();
    covers.LoadCover(&cover, folder.c_str());
    caption = ComposeCoverCaption(folder.c_str());
    if (current.GetDepth() != root.GetDepth()) {
        SString own = current.GetFullPath();
        covers.LoadCover(&parentCover, own.c_str());
        parentCover.ConvertTo(PIXEL_FORMAT_32ARGB);
        parentCover.TintLuminance(PARENT_TINT);
        parentCover.SetAlpha(PARENT_ALPHA, nullptr, true);
        parentCaption = current.GetLastFolder(true);
    }
    SStringArray files;
    CollectMedia(files, folder.c_str(), false, true, true, true, false, false);
    // The folder's text files, found once, for the rows' text markers.
    std::unordered_set<std::string> texts;
    SStringArray textFiles;
    SDisk().Enumerate(&textFiles, (folder + "*.txt").c_str(), ENUM_FILES);
    for (const SString* file : textFiles) {
        texts.insert(LowerAscii(SPath(file->c_str()).GetName().c_str()));
    }
    for (const SString* file : files) {
        SPath path(file->c_str());
        PTrackRow row;
        row.text = path.GetTitle();
        row.icon = GetMediaClass(file->c_str());
        if (row.icon != MEDIA_PICTURE) {
            std::string textName = LowerAscii((row.text + ".txt").c_str());
            row.data = texts.count(textName) != 0 ? TRACK_HAS_TEXT : TRACK_NO_TEXT;
        }
        trackRows.push_back(row);
        trackTable.Add(*file);
    }
    page = GetFolderPage(folder.c_str());
    return true;
}

SString PFolderView::GetFolderCountsText() const {
    if (statistics == nullptr) {
        return SString("");
    }
    SString path = selectedRow >= 0 ? GetSelectedFolder() : current.GetFullPath();
    return statistics->FormatFolder(statistics->Find(path.c_str()));
}

int PFolderView::GetSelectedTracks(const SArray<int>& rowsSelected, SStringArray& dest) const {
    int added = 0;
    for (int row : rowsSelected) {
        if (row >= 0 && row < trackTable.GetCount()) {
            dest.Add(*trackTable.GetAt(row));
            ++added;
        }
    }
    return added;
}
