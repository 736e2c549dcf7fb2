// PFolderView: what the main window shows of the folder tree, without the
// window: the current folder, the rows of the folder list with their data
// words and 16-point images, the thumbnails' items, and for the selected
// folder its cover, caption, parent cover, track rows and track table, and
// whether its page takes the place of the track list. The window draws
// this state and forwards the user's commands here.
//
// The current folder is never above the root, and a leaf folder (one with
// no visible subfolder) is never current: it is only selected in its
// parent.
#pragma once

#include <memory>
#include <vector>

#include "foundation/array.h"
#include "foundation/image.h"
#include "foundation/image_list.h"
#include "foundation/path.h"
#include "foundation/string.h"
#include "library/cover_cache.h"
#include "library/metadata.h"
#include "library/statistics.h"

// Folder row data words: a folder with subfolders is entered, a leaf is
// played.
constexpr int FOLDER_HAS_SUBFOLDERS = 0;
constexpr int FOLDER_IS_LEAF = -1;

struct PFolderRow {
    SString name;
    int image = 0; // index into the row images: its place + 1
    int data = FOLDER_IS_LEAF;
};

struct PTrackRow {
    SString text; // the file's title, without extension
    int icon = 0; // its media class
    int data = TRACK_NO_TEXT;
};

struct PThumbItem {
    SString name;
    SImage cover; // 150 by 150
    bool isLeaf = false;
};

class PFolderView {
public:
    PFolderView();
    PFolderView(const PFolderView&) = delete;
    PFolderView& operator=(const PFolderView&) = delete;

    // Setting up. The root becomes the current folder; nothing is listed
    // until a navigation.
    void SetRoot(const char* root);
    const SPath& GetRoot() const { return root; }
    const SPath& GetCurrent() const { return current; }
    PCovers& GetCovers() { return covers; }
    // Where the covers of the cards are kept once made (PCoverCache); ""
    // (the default) makes every cover anew.
    void SetCoverCacheFolder(const char* folder) { coverCache.SetFolder(folder); }
    const PCoverCache& GetCoverCache() const { return coverCache; }
    // The statistics table the info pane reads; null until a run ends.
    void SetStatistics(std::shared_ptr<const PStatsTable> table) { statistics = std::move(table); }

    // Navigation.
    // Moves to the current folder followed by relative ("..", "." and names
    // are accepted). A missing folder or one above the root makes the root
    // current and gives false; a folder without subfolders leaves the view
    // as it was and gives false. Otherwise lists the subfolders, selects
    // selectName when given and focusThumbs is off, and gives true. Every
    // card's cover is made before it returns, on one thread per core
    // (through the cover cache when it has a folder), so the view is
    // shown complete.
    bool NavigateFolder(const char* relative, const char* selectName, bool focusThumbs);
    // NavigateFolder from nothing, so that an absolute path stands as given.
    bool OpenFolder(const char* path, const char* selectName, bool focusThumbs);
    // Lists the current folder again, keeping the selected name.
    bool RefreshFolder();

    // The folder list.
    const std::vector<PFolderRow>& GetRows() const { return rows; }
    const std::vector<PThumbItem>& GetThumbnails() const { return thumbnails; }
    // Index 0 is the default small image, then one per row.
    const SImageList& GetRowImages() const { return rowImages; }
    int GetSelectedRow() const { return selectedRow; }
    // Selects a row (-1 for none) and fills the selection's state.
    bool SelectRow(int row);
    bool SelectName(const char* name);
    // The selected folder's path ending in "/", or "" for none.
    SString GetSelectedFolder() const;
    // Whether the thumbnails or the folder list should take the focus.
    bool IsThumbnailFocus() const { return focusThumbs; }

    // The selection's state, filled by SelectRow.
    // Fills the panes for the selected row; false when none is selected.
    bool ShowSelection();
    const SImage& GetCover() const { return cover; }
    const SString& GetCaption() const { return caption; }
    // The current folder's own cover, greyed and faint; invalid at the root.
    const SImage& GetParentCover() const { return parentCover; }
    const SString& GetParentCaption() const { return parentCaption; }
    const std::vector<PTrackRow>& GetTrackRows() const { return trackRows; }
    // Full paths, row for row with the track rows.
    const SStringArray& GetTrackTable() const { return trackTable; }
    // The page shown instead of the track list, or "".
    const SString& GetPage() const { return page; }
    // The status bar's first pane: the current path.
    const SString& GetStatusText() const { return statusText; }
    // The info pane: the counts of the selected folder, else the current
    // one, from the statistics table; "" when the table lacks it.
    SString GetFolderCountsText() const;
    // The track table's entries of rows, in the order given.
    int GetSelectedTracks(const SArray<int>& rowsSelected, SStringArray& dest) const;
    // Toolbar commands 3 and 5 (play the folder's tracks): a track to play.
    bool CanPlayTracks() const { return selectedRow >= 0 && trackTable.GetCount() > 0; }

private:
    // Makes the root current after a failed move.
    bool ResetToRoot();
    void ClearSelection();

    SPath root;
    SPath current;
    PCovers covers;
    PCoverCache coverCache;
    std::shared_ptr<const PStatsTable> statistics;
    std::vector<PFolderRow> rows;
    std::vector<PThumbItem> thumbnails;
    SImageList rowImages;
    SImage defaultSmallImage;
    int selectedRow = -1;
    bool focusThumbs = true;
    SImage cover;
    SString caption;
    SImage parentCover;
    SString parentCaption;
    std::vector<PTrackRow> trackRows;
    SStringArray trackTable;
    SString page;
    SString statusText;
};
