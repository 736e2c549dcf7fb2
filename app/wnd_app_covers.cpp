// The cover search window opened for the selected folder.
#include "app/settings.h"
#include "app/trace.h"
#include "app/wnd_app_main.h"
#include "foundation/disk.h"
#include "foundation/path.h"
#include "library/media.h"
#include "toolkit/selector.h"

bool PWndApp::DownloadCover(bool both) {
    SString folder = SelectedFolderPath();
    int row = view.GetSelectedRow();
    if (folder.IsEmpty() || row < 0) {
        return false;
    }
    SString selectedName = view.GetRows()[row].name;
    int top = folders.GetTopRow();
    SPath path;
    path.SetFolder(folder.c_str());
    SString name = path.GetLastFolder(true);
    SString parent = path.GetParent();
    SDisk disk;
    if (name.IsEmpty() || parent.IsEmpty() || !disk.IsFolder(folder.c_str())) {
        return false;
    }
    // The cover is named by the folder in lower case; one that is there
    // already under another case is the one replaced, so the folder never
    // has two.
    SString fileName = name + ".png";
    SString target = FindFileNoCase(parent.c_str(), fileName.c_str());
    if (target.IsEmpty()) {
        fileName.MakeLower();
        target = parent + fileName;
    }
    if (disk.IsFile(target.c_str()) &&
        MessageBox(GetHandle(), "Do you wish to delete the existing file?", "Confirmation",
                   MB_YESNO | MB_ICONQUESTION) != IDYES) {
        return false;
    }
    SString query = both ? view.GetCurrent().GetLastFolder(true) + " " + selectedName
                         : selectedName;

    // The window's way back to this one, for this run only.
    class Host : public PCoverHost {
    public:
        Host(PWndApp& app, const SString& target) : app(app), target(target) {}
        bool SaveCover(const SImage& cover) override {
            saved = app.SaveImageAtomic(cover, target.c_str());
            if (saved) {
                Trace("cover", false, target.c_str());
            }
            return saved;
        }
        void ShowMessage(const char* text, const char* caption, unsigned flags) override {
            HWND owner = app.coverSearch != nullptr ? app.coverSearch->GetHandle() : 0;
            MessageBox(owner != 0 ? owner : app.GetHandle(), text, caption, flags);
        }
        bool saved = false;

    private:
        PWndApp& app;
        SString target;
    };
    Host host(*this, target);
    // The last search's window goes first; its worker, told to stop when
    // that window ended, has long finished.
    coverSearch.reset();
    coverSearch = std::make_unique<PWndGoogle>(&host, ReadCoverSearchSettings(ReadSettingString));
    coverSearch->SetQuery(query.c_str());
    Trace("cover-search", false, query.c_str());
    int result = coverSearch->Run(this);
    // The window is kept (hidden) until the next search, so that a worker
    // still ending a cancelled download never holds this thread; it no
    // longer reaches the host.
    coverSearch->SetHost(nullptr);
    coverSearch->Destroy();
    if (result != 0 || !host.saved) {
        return false;
    }
    OpenFolder(GetCurrentFolder().c_str(), selectedName.c_str(), false);
    folders.ScrollTo(top * folders.GetRowHeight());
    ShowSelection();
    SetFocus(folders.GetHandle());
    return true;
}
