// SWndDialog: a window whose controls come from a dialog definition. It
// keeps the controls it was built with (owned, each with its ID and name),
// the fonts and pictures made for them, and the status bar, control bar and
// toolbar it may carry. Application windows derive from it; the modal run
// is SWnd::DoModal.
//
// Built by the control factory (dialogs/control_factory.h) through
// CreateFromDefinition. While the window is modal, a button named "OK"
// ends the run with 0 and one named "CANCEL" with -1 (names compared byte
// for byte); Enter and Escape do the same unless the definition turned
// them off.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "dialogs/dialog_definition.h"
#include "foundation/image.h"
#include "foundation/string.h"
#include "toolkit/menu_definition.h"
#include "toolkit/toolbar_definition.h"
#include "toolkit/wnd.h"

class SControlBarCtrl;
class SFile;
class SFileMem;
class SFont;
class SMenu;
class SStatusBarCtrl;
class SToolBarCtrl;

// Finds a file a definition names (a page, a list, a picture): fills
// contents and returns true, or false when there is none. A definition
// built without a provider loads no such file.
using SDialogResourceProvider = std::function<bool(const char* name, SFileMem* contents)>;

// What a dialog is built with, beyond its definition.
struct SDialogBuildOptions {
    // The parent: the dialog becomes its child unless forcePopup, in which
    // case it is a top-level window owned by the parent's top-level window.
    SWnd* parent = nullptr;
    bool forcePopup = false;
    SDialogResourceProvider provider;
    // Where the commands of the definition's menu and toolbar go (null: the
    // dialog itself), and the IDs of their item names.
    SWnd* commandTarget = nullptr;
    SMenuNameToId menuNames;
    SToolbarNameToId toolbarNames;
    // Built but not shown, whatever the definition's style says.
    bool stayHidden = false;
};

class SWndDialog : public SWnd {
public:
    SWndDialog();
    ~SWndDialog() override;

    // Builds the window and its controls from a definition (its position
    // the file's, from the start). False when the window already exists,
    // the definition cannot be read, or the window cannot be made; a
    // control that cannot be made is left out and the rest is built.
    bool CreateFromDefinition(SFile* definition, const SDialogBuildOptions& options = {});

    // Bars. Each is made once (false the second time) as a visible child,
    // and the client area grows by its height so the controls keep their
    // room. A status bar has at least one part.
    bool AddStatusBar(int parts);
    bool AddControlBar();
    bool AddToolBar(SFile* definition, const SToolbarNameToId& nameToId,
                    const std::function<bool(const SString& name, SImage* image)>& loadImage);
    SStatusBarCtrl* GetStatusBar() const { return statusBar.get(); }
    SControlBarCtrl* GetControlBar() const { return controlBar.get(); }
    SToolBarCtrl* GetToolBar() const { return toolBar.get(); }
    // Nothing without a status bar.
    void SetStatusText(int part, const char* text);
    void SetStatusPartWidth(int part, int width);
    // Moves control into the control bar (made when missing) as a band; its
    // anchoring is dropped.
    void AddBarControl(SWnd* control, int width, int height);

    // The built controls. Null, -1 or empty when absent; names compare byte
    // for byte.
    SWnd* GetControl(unsigned id) const;
    SWnd* GetControl(const char* name) const;
    template <class T> T* GetControlAs(const char* name) const {
        return dynamic_cast<T*>(GetControl(name));
    }
    int GetControlIndex(const SWnd* control) const;
    SString GetControlName(const SWnd* control) const;
    int GetControlCount() const { return static_cast<int>(controls.size()); }
    SWnd* GetControlAt(int index) const;
    // The type the control was built as (CTRL_*), -1 for one added by code.
    int GetControlType(const SWnd* control) const;
    // Takes control (made with new, created or not) into the lists; it is
    // owned from then on. A face not empty makes it a font of points size
    // and FONT_* flags. False for a null control or one already listed.
    bool AddControl(SWnd* control, unsigned id, const char* name, const char* fontFace = nullptr,
                    int points = 0, unsigned flags = 0);

    // A picture kept for as long as the dialog's controls live (controls
    // that draw a picture they do not copy point at it).
    const SImage* KeepImage(SImage&& image);
    // A font made for the controls, owned by the dialog; null for an empty
    // face.
    SFont* MakeControlFont(const char* face, int points, unsigned flags);

    // Slot 30: the dialog's control for the application, 0 by default.
    virtual int GetDialogControl() { return 0; }
    // The last slot: an instance of the application's own class for a
    // record, or null for the factory's class of the type. The factory
    // calls Create on it; the dialog owns it.
    virtual std::unique_ptr<SWnd> MakeDialogControl(int type,
                                                    const SDialogDefinition::_SCtrl& record);

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

    // The factory's record of a control whose anchor the window core cannot
    // express with its edges: the dialog moves it on each resize.
    void KeepDialogAnchor(SWnd* control, uint32_t anchor);

private:
    friend struct SDialogBuilder;
    struct Entry {
        std::unique_ptr<SWnd> control;
        unsigned id = 0;
        SString name;
        int type = -1;
    };
    struct DialogAnchor {
        HWND control = 0;
        uint32_t anchor = 0;
        SAnchorBox box;
        SSize parentSize;
    };
    // Grows the client height by delta and moves every child down by shift.
    void GrowForBar(int delta, int shift);
    void LayoutBars();
    void ApplyDialogAnchors();
    void DestroyContents();

    std::vector<Entry> controls;
    std::vector<DialogAnchor> dialogAnchors;
    int barHeight = 0;
    int lastRadioGroup = 0; // the RADIO_GROUP of the radio built last
    bool anyRadio = false;
    HWND commandTarget = 0; // where the menu's and toolbar's commands go
    std::unique_ptr<SControlBarCtrl> controlBar;
    std::unique_ptr<SToolBarCtrl> toolBar;
    std::unique_ptr<SStatusBarCtrl> statusBar;
    std::unique_ptr<SMenu> menu;
    std::vector<std::unique_ptr<SImage>> images;
    std::vector<std::unique_ptr<SFont>> fonts;
};
