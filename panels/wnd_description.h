// PWndDescription: the top-level window in which the user writes the
// description files of the collection's folders. A toolbar generates the
// pages and writes the marks, a tree on the left lists the folders that
// hold subfolders (genres and artists; albums have no description here),
// the code editor on the right holds the selected folder's ".txt", and a
// status bar tells what is going on. The marks and the files are the
// window-free rules of pages/description_edit.h; the pages are those of
// pages/description_page.h. The window reaches the main window only
// through PDescriptionHost.
//
// The user's text is never dropped: leaving a folder or closing the window
// saves the text first; when that save fails the tree stays on the folder
// (the status bar says why), and closing asks before the changes go. A
// file that is there but cannot be read is shown read-only and never
// written.
#pragma once

#include <functional>

#include "editors/code_edit_ctrl.h"
#include "foundation/geometry.h"
#include "foundation/string.h"
#include "pages/description.h"
#include "pages/description_edit.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/toolbar_ctrl.h"
#include "toolkit/tree_ctrl.h"
#include "toolkit/wnd.h"

// What the description window asks of the main window.
class PDescriptionHost {
public:
    virtual ~PDescriptionHost() = default;
    // The collection's root folder, ending in "/".
    virtual SString GetRootFolder() const = 0;
    // Shows a page just generated (an absolute path) in the main window's
    // web pane.
    virtual void ShowDescriptionPage(const char* path) = 0;
    // The window placement kept under name; false when none is kept.
    virtual bool LoadPlacement(const char* name, SRect* rect, bool* maximized) = 0;
    virtual void SavePlacement(const char* name, const SRect& rect, bool maximized) = 0;
    // A Yes/No question over owner; true on Yes.
    virtual bool AskYesNo(SWnd* owner, const char* text, const char* caption) = 0;
};

inline constexpr const char* DESCRIPTION_TITLE = "Description - Melkora Browser";
inline constexpr const char* DESCRIPTION_PLACEMENT = "WindowDescription";
constexpr int DESCRIPTION_WIDTH = 800;
constexpr int DESCRIPTION_HEIGHT = 600;
constexpr int DESCRIPTION_MIN_WIDTH = 640;
constexpr int DESCRIPTION_MIN_HEIGHT = 480;
constexpr int DESCRIPTION_TREE_WIDTH = 250;

// The toolbar's commands, in button order.
enum PDescriptionCommand {
    DESCRIPTION_CMD_PAGE = 1,
    DESCRIPTION_CMD_ALL_PAGES = 2,
    DESCRIPTION_CMD_GROUP = 3,
    DESCRIPTION_CMD_GENRE = 4,
    DESCRIPTION_CMD_NAME = 5,
    DESCRIPTION_CMD_TITLE = 6,
    DESCRIPTION_CMD_QUOTE = 7,
    DESCRIPTION_CMD_IMAGE = 8,
    DESCRIPTION_CMD_BOLD = 9,
};

// The tree of folders: it tells its owner each time the selection moved,
// whatever moved it (a press, a key, a branch closing).
class PFolderTree : public STreeCtrl {
public:
    std::function<void(HTREEITEM before, HTREEITEM now)> onSelect;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;
};

class PWndDescription : public SWnd {
public:
    explicit PWndDescription(PDescriptionHost* host);
    ~PWndDescription() override;

    // Creates the window at its kept placement and lists the folders, or,
    // when it stands already, shows and raises it (listing the folders
    // again when the collection's root changed meanwhile). False when the
    // window could not be made.
    bool Open();
    // Saves the text and the placement; false (the window stays) when the
    // text could not be saved and the user chose to keep it. The caller
    // destroys the window on true.
    bool CloseWindow();

    // Lists the folders again into the tree, keeping the open description
    // selected when its folder is still there. Under another root the open
    // text is saved and closed first (when it cannot be saved, nothing
    // changes).
    void ReloadFolders();
    // Opens the description of a tree item (null: none; the editor is
    // emptied). Saves nothing itself.
    void LoadDescription(HTREEITEM item);
    // Writes the editor back when it changed; true when nothing was left
    // unsaved.
    bool SaveDescription();
    // Selects the folder of a path relative to the root ("Rock/Artist"),
    // saving the text of the one before; false when it is not listed or the
    // text before could not be saved.
    bool SelectFolder(const char* relative);
    // Runs a toolbar command.
    void RunCommand(int command);

    // For the main window and the tests.
    PFolderTree& GetTree() { return tree; }
    SCodeEditCtrl& GetEditor() { return editor; }
    SToolBarCtrl& GetToolBar() { return toolBar; }
    SStatusBarCtrl& GetStatusBar() { return statusBar; }
    const PKnownFolders& GetKnownFolders() const { return known; }
    // The open description's path ("" for none), its state, and whether
    // the editor holds changes not yet written.
    const SString& GetDocumentPath() const { return documentPath; }
    PDescriptionState GetDocumentState() const { return documentState; }
    bool IsModified() const;
    // The relative path of a tree item's folder ("" for none).
    SString GetItemPath(HTREEITEM item) const;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void BuildControls();
    void Layout();
    void OnTreeSelect(HTREEITEM before, HTREEITEM now);
    void EnableCommands();
    void SetStatus(const char* text);
    void ApplyEdit(const PDescriptionEdit& edit);
    void MarkCommand(int command);
    void GeneratePage();
    void GenerateAllPages();
    std::vector<std::string> SelectedLines(PTextPoint* start, PTextPoint* end) const;

    PDescriptionHost* host;
    SToolBarCtrl toolBar;
    SStatusBarCtrl statusBar;
    PFolderTree tree;
    SCodeEditCtrl editor;
    PKnownFolders known;
    SString root;
    SString documentPath;
    PDescriptionState documentState = DESCRIPTION_NEW;
    bool hasDocument = false;
    uint64_t savedVersion = 0;
    SString lastFailure; // why the last save failed
    bool selecting = false; // the window moves the tree's selection itself
};
