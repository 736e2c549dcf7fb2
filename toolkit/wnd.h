// SWnd: the base of every window and control. One object is tied to one
// window of the toolkit's tree, known by an integer handle; its messages
// become virtual calls (slot 19 PreMessage, slot 20 OnMessage) and the
// toolkit's own vocabulary (clicks, enter and leave, hot items, drag-move,
// shortcuts, anchoring, backgrounds). Top-level windows are platform
// surfaces; children are drawn by the toolkit.
//
// Everything here runs on the thread that owns the window; other threads
// post. The object outlives its window: Destroy clears the handle, nothing
// deletes the object for its owner.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "foundation/array.h"
#include "foundation/geometry.h"
#include "foundation/image.h"
#include "foundation/message.h"
#include "foundation/string.h"
#include "toolkit/messages.h"

enum class SDockState; // toolkit/platform/platform.h

typedef struct _cairo cairo_t;
class SMenu;
using HCURSOR = int; // an index of the cursor table plus 1; 0 is none

class SWnd;

// A window procedure of a registered class (CreateControl).
using SWindowProc = LRESULT (*)(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam);

// The default handling of messages for windows of the toolkit.
LRESULT DefWindowProc(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam);
// The procedure of every toolkit window: slot 19, then slot 20.
LRESULT SWndProc(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam);
// Registers a class for CreateControl; its procedure becomes oldProc.
// classStyle holds CS_* bits: CS_DBLCLKS asks for double clicks.
bool RegisterWindowClass(const char* className, SWindowProc procedure, unsigned classStyle = 0);

// Draws a window's menu bar into cr over bar (window coordinates). The menu
// code installs it; without one the bar is a plain strip of the menu bar
// colour. Null restores that.
using SMenuBarPainter = void (*)(SWnd* window, SMenu* menu, cairo_t* cr, const SRect& bar);
void SetMenuBarPainter(SMenuBarPainter painter);
// Told of a left press on a window's menu bar (x, y in window
// coordinates). The menu code installs it; null: presses do nothing.
using SMenuBarPressHandler = void (*)(SWnd* window, SMenu* menu, int x, int y);
void SetMenuBarPressHandler(SMenuBarPressHandler handler);
// Told of F10 pressed in a window whose top-level window has a menu bar;
// true when it opened the bar's menu (the key then goes no further).
using SMenuBarKeyHandler = bool (*)(SWnd* top, SMenu* menu);
void SetMenuBarKeyHandler(SMenuBarKeyHandler handler);

// Thread-wide window state, each for the calling thread.
HWND GetFocus();
HWND SetFocus(HWND hwnd);        // returns the previous focus
HWND GetCapture();
HWND SetCapture(HWND hwnd);      // returns the previous capture
void ReleaseCapture();
// Starts (TME_LEAVE) or queries (TME_QUERY, result true when tracking
// hwnd) leave tracking; TME_NONCLIENT for the frame.
bool TrackMouseEvent(unsigned flags, HWND hwnd);

// A data block built by SM_DATA_ALLOC, SM_DATA_SET_WORD and
// SM_DATA_FINISH; SM_DATA_READY hands it (wParam) to the window itself.
struct SDataBlock {
    uintptr_t tag = 0;
    int size = 0;           // as asked
    uint32_t value = 0;     // given by SM_DATA_FINISH
    std::vector<uint8_t> bytes; // size padded to a multiple of 4 (4 more when
                                // already one) plus 16; the first 4 hold the
                                // word of SM_DATA_SET_WORD, high byte first
};

class SWnd {
public:
    SWnd();
    SWnd(const SWnd&) = delete;
    SWnd& operator=(const SWnd&) = delete;
    virtual ~SWnd(); // slot 0

    // Creation. rect is in the parent's client coordinates (screen for a
    // top-level window); parent 0 makes a top-level window. The window is
    // shown after SM_CREATE when style holds WS_VISIBLE.
    bool Create(const char* title, unsigned style, unsigned exStyle, const SRect* rect,
                HWND parent, uintptr_t menuOrId = 0, LPARAM userData = 0, void* instance = nullptr,
                bool noClose = false);
    bool CreateControl(const char* className, const char* title, unsigned style,
                       unsigned exStyle, const SRect* rect, SWnd* parent, uintptr_t id,
                       LPARAM userData = 0);
    bool Destroy();
    // Sends WM_CLOSE; true when the result is 0.
    bool Close();

    static SWnd* FromHandle(HWND hwnd);
    HWND GetHandle() const { return handle; }
    unsigned GetThreadId() const { return threadId; }
    int GetType() const { return type; }
    void SetType(int value) { type = value; }
    HWND GetParent() const;
    SWnd* GetParentWnd() const { return FromHandle(GetParent()); }
    // The top-level window of the tree this window is in.
    HWND GetTopWindow() const;
    uintptr_t GetId() const;

    // Geometry. Rectangles of a child are in its parent's client coordinates.
    SRect GetClientRect() const;
    SRect GetWindowRect() const; // in screen coordinates
    SRect GetRect() const;       // in the parent's client coordinates
    SSize GetClientSize() const;
    int GetClientWidth() const;
    int GetClientHeight() const;
    SSize GetSize() const;
    int GetWidth() const;
    int GetHeight() const;
    void GetFrameWidths(int* left, int* top, int* right, int* bottom) const;
    void GetClientOffset(SRect* offset) const;
    void SetClientHeight(int height);
    void SetClientSize(int width, int height);
    void SetSize(int width, int height);
    // Moves and sizes the window (parent coordinates), sending WM_MOVE and
    // WM_SIZE, and SM_PARENT_SIZE to each child when the size changed.
    bool MoveWindow(const SRect& rect, bool repaint = true);
    void ScreenToClient(SPoint* point) const;
    void ClientToScreen(SPoint* point) const;
    void ScreenToClient(SRect* rect) const;
    void ClientToScreen(SRect* rect) const;
    void CenterOnParent(bool useParent);
    void Minimize();
    void Maximize();
    void Restore(bool force);
    bool IsMinimized() const { return showState == SW_SHOWMINIMIZED; }
    bool IsMaximized() const { return showState == SW_SHOWMAXIMIZED; }

    // A desktop bar: docks this top-level window across the bottom of the
    // work area, height pixels high, and shows it without taking the
    // keyboard (SPlatform::DockSurface says what each desktop gives). NONE
    // (a child window, or a desktop without such bars) leaves it hidden.
    // Docking a docked window again places it anew.
    SDockState DockToBottomEdge(int height);
    // Hides a docked window and gives its space back; false when it was
    // not docked.
    bool Undock();

    // Visibility and state.
    bool Show(int command);
    bool IsVisible() const; // this window and all its parents
    bool Enable(bool enable);
    bool IsEnabled() const;
    unsigned GetStyle() const { return style; }
    unsigned GetExStyle() const { return exStyle; }
    // The CS_* bits of the window's class: the toolkit's own windows have
    // CS_HREDRAW, CS_VREDRAW and CS_DBLCLKS (and CS_NOCLOSE when made with
    // noClose); a control has those its class was registered with.
    unsigned GetClassStyle() const { return classStyle; }
    SString GetText() const;
    // Sends WM_SETTEXT, so that a control that lays out its text sees the
    // change whichever way it is made (this call, or a SendMessage).
    void SetText(const char* text);

    // Window state.
    void SetAnchor(unsigned anchor);
    unsigned GetAnchor() const { return anchor; }
    void SetCaret(int height, int width, int x, int y, bool atPosition);
    bool IsCaretShown() const { return caretShown; }
    void SetCursor(HCURSOR cursor) { this->cursor = cursor; }
    void EnableCursor(bool enable) { cursorEnabled = enable; }
    bool GetCursorPosition(SPoint* point) const;
    // Tool tips: with tips on and a tip text set, the text shows in a small
    // box by the pointer once it has rested on the window for a moment, and
    // goes at a click, a key, when the pointer leaves, or after a while.
    void SetToolTip(bool enable);
    bool IsToolTipEnabled() const { return toolTip; }
    void SetToolTipText(const char* text);
    const SString& GetToolTipText() const { return toolTipText; }
    // The menu bar of a top-level window, drawn by the toolkit in the top of
    // its frame (null removes it). keepClientHeight grows or shrinks the
    // window so that the client area keeps its height; otherwise the
    // window keeps its size and the client area gives the bar its room.
    // False for a child window or one without a handle.
    bool SetMenu(SMenu* menu, bool keepClientHeight);
    SMenu* GetMenu() const { return menu; }
    void SetLayered(bool layered);
    void SetAlpha(int alpha);
    // Backgrounds. The image is copied; slices (image coordinates of the
    // stretchable centre) make a nine-slice; keyColor turns a colour clear.
    bool SetBackgroundImage(const SImage* image, uint32_t keyColor = 0xFF000000, int alpha = 255,
                            const SRect* slices = nullptr, bool redraw = true);
    bool SetBackgroundResource(const char* type, unsigned id, uint32_t keyColor = 0xFF000000,
                               int alpha = 255, const SRect* slices = nullptr,
                               bool redraw = true);
    // Four pictures, normal, hot, down, disabled; each copied. Null leaves
    // a state without a picture of its own (normal is used).
    void SetSkin(const SImage* normal, const SImage* hot, const SImage* down,
                 const SImage* disabled);
    bool SetSkinFiles(const char* normal, const char* hot, const char* down,
                      const char* disabled);
    void SetSkinState(bool hot, bool down);
    // The skin picture the present state selects: 0 normal, 1 hot, 2 down,
    // 3 disabled.
    int GetSkinIndex() const;
    void SetRedraw(bool enable, bool repaint);
    // Marks part of the window for repainting: rect in client coordinates,
    // or null for the whole window with its frame. The part is added to the
    // invalid region of the top-level window, clipped by every parent on
    // the way, and the platform is asked to redraw that area only.
    void Invalidate(const SRect* rect = nullptr);
    // The bounding rectangle of a top-level window's invalid region, in
    // surface coordinates (menu bar included); empty when nothing waits.
    SRect GetInvalidBounds() const;
    // The frame of a top-level window, width by height pixels, onto cr (the
    // platform's target, usually clipped to the damaged area): the windows
    // meeting the invalid region are painted into the back buffer, clipped
    // to it, and the buffer is copied to cr. The buffer is kept between
    // frames; a new size repaints it whole.
    void PaintSurface(cairo_t* cr, int width, int height);
    // Paints the window and its children now onto cr, whose origin is the
    // window's client origin. During PaintSurface, children that do not meet
    // the invalid region are skipped.
    void PaintTree(cairo_t* cr);
    // Paints this window's background into cr (client coordinates) at
    // width by height.
    void PaintBackground(cairo_t* cr, int width, int height);
    void PaintImage(cairo_t* cr, int width, int height);

    // Bounds in the settings store under Software\company\product.
    bool SaveBounds(const char* company, const char* product, const char* valueName);
    bool RestoreBounds(const char* company, const char* product, const char* valueName,
                       bool keepHidden);

    // Scrolling of the window's own scroll bars (bar 0 horizontal, 1 vertical).
    void SetScrollRange(int bar, int minimum, int maximum);
    void SetScrollPosition(int bar, int position);
    int GetScrollPosition(int bar) const;
    void SetScrollSteps(int bar, int line, int page, int grid);

    // Enumeration.
    int GetChildren(SArray<SWnd*>* result, SArray<SWnd*>* exclude = nullptr,
                    bool recursive = false, int type = -1) const;
    int GetChildHandles(SArray<HWND>* result, SArray<HWND>* exclude = nullptr,
                        bool recursive = false) const;
    int GetSiblings(SArray<SWnd*>* result, SArray<SWnd*>* exclude = nullptr, int type = -1) const;
    // The visible top-level windows of this thread.
    int GetOrphans(SArray<SWnd*>* result) const;
    SWnd* GetNextInTabOrder() const;
    // The window Tab (or Shift+Tab, backward) gives the focus to from this
    // one: the focus order runs through the descendants of the top-level
    // window depth first, siblings by their tab order (which starts as the
    // order they were made in), and wraps. A window is in it when it and
    // its parents are shown and enabled and it has WS_TABSTOP, a tab group
    // (SetTabOrder), or answers SM_TAB_STOP with non-zero. Null when none is.
    SWnd* GetNextFocus(bool backward) const;
    // The deepest visible, enabled window under a point of this window's
    // client area (this window when no child is there).
    HWND ChildFromPoint(SPoint point) const;

    // Accessors of the fields.
    void SetShortcuts(bool enabled, unsigned mask) {
        shortcutsEnabled = enabled;
        shortcutMask = mask;
    }
    void SetMoveByDrag(bool enable) { moveByDrag = enable; }
    // Size limits (-1 free), of the whole window and of its client area;
    // WM_GETMINMAXINFO hands them out, and the window is brought inside them.
    void SetMinMax(int minWidth, int minHeight, int maxWidth, int maxHeight);
    void SetMinMaxClient(int minWidth, int minHeight, int maxWidth, int maxHeight);
    // The limits of the window's size as WM_GETMINMAXINFO gives them.
    SMinMaxInfo GetMinMaxInfo() const;
    void SetHotItems(const std::vector<SRect>& items);
    int GetHotIndex() const { return hotIndex; }
    void SetTabOrder(int group, int order) {
        tabGroup = group;
        tabOrder = order;
    }
    int GetTabGroup() const { return tabGroup; }
    int GetTabOrder() const { return tabOrder; }
    // Keeps a window out of the focus order whatever its style or answer
    // (a dialog's control whose definition does not ask for Tab).
    void SetTabStopOff(bool off) { tabStopOff = off; }
    bool IsTabStopOff() const { return tabStopOff; }
    bool IsModal() const { return isModal; }
    void SetModal(bool modal) { isModal = modal; }
    // The owner of a top-level window (0 for none): the window stays above
    // it, a modal run of the window disables it, and closing the modal
    // window enables it again. Ignored on a child window.
    void SetOwner(HWND owner);
    HWND GetOwner() const { return owner; }
    // Runs this top-level window modally and returns its modalResult (0 at
    // once for a child window). The windows it makes wait: without
    // allThreadWindows the top owner (the end of the chain of owners of
    // this window's top-level window); with it every shown top-level
    // window of the thread but this one, less, with excludeOwned, those
    // whose owner is shown. Windows already disabled are left alone, so
    // they stay disabled afterwards. SM_MODAL_START (first, second) may
    // refuse the run with a non-zero answer (result 0). The window is
    // shown and RunModalLoop pumps until EndModal, the window's end or
    // WM_QUIT; with hideAfter the window is then hidden (and its owner
    // enabled first, so the focus goes back there). The waiting windows
    // are enabled again and the top owner activated.
    int DoModal(WPARAM first = 0, LPARAM second = 0, bool allThreadWindows = false,
                bool excludeOwned = false, bool hideAfter = true);
    // Ends the modal run with result; only the first call of a run counts.
    void EndModal(int result);
    bool enterKey = true;
    bool escapeKey = true;
    int modalResult = 0;

    // Slots 1 to 29.
    virtual void PrintTo(cairo_t* cr, unsigned flags);
    virtual void SetBackColor(uint32_t color);
    virtual uint32_t GetBackColor() const;
    virtual void OnUndo() {}
    virtual void OnCut() {}
    virtual void OnCopy() {}
    virtual void OnPaste() {}
    virtual void OnDelete() {}
    virtual void OnSelectAll() {}
    virtual void OnFind() {}
    virtual void OnReplace() {}
    virtual void OnGoTo() {}
    virtual void OnPrint() {}
    virtual void OnEscape() {}
    virtual void OnNew() {}
    virtual void OnOpen() {}
    virtual void OnSave() {}
    virtual void OnSaveAs() {}
    // Sees every message first; may change the values or set the result.
    // True lets OnMessage run.
    virtual bool PreMessage(unsigned message, WPARAM* wParam, LPARAM* lParam, LRESULT* result);
    // The handler; the default ends in the window's default procedure.
    virtual LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnColorDialog(cairo_t*) { return 0; }
    virtual LRESULT OnColorButton(cairo_t*) { return 0; }
    virtual LRESULT OnColorEdit(cairo_t*) { return 0; }
    virtual LRESULT OnColorList(cairo_t*) { return 0; }
    virtual LRESULT OnColorScrollBar(cairo_t*) { return 0; }
    virtual LRESULT OnColorStatic(cairo_t*) { return 0; }
    virtual void OnHotEnter(int /*item*/, int /*x*/, int /*y*/, int /*index*/) {}
    virtual void OnHotMove(int /*item*/, int /*x*/, int /*y*/, int /*index*/) {}
    virtual void OnHotLeave(int /*item*/, int /*x*/, int /*y*/, int /*index*/) {}

    // The default procedure: the class procedure of a control, else
    // DefWindowProc.
    LRESULT DefaultProc(unsigned message, WPARAM wParam, LPARAM lParam);

    // The desktop work area when the object was made.
    SRect workArea;

private:
    friend LRESULT SWndProc(HWND, unsigned, WPARAM, LPARAM);
    friend LRESULT DefWindowProc(HWND, unsigned, WPARAM, LPARAM);
    friend struct SWndInternals;
    class Port;
    struct SurfaceFrame; // the back buffer and invalid region of a top-level window

    // Adds rect (client coordinates, null for the whole window) to the
    // top-level's invalid region, visible or not.
    void AddDamage(const SRect* area);
    void StoreText(const char* value); // the default of WM_SETTEXT

    void ResetState();
    bool CreateWindow(const char* className, const char* title, unsigned style,
                      unsigned exStyle, const SRect* rect, HWND parent, uintptr_t id,
                      LPARAM userData, SWindowProc classProc, unsigned classStyle);
    void DestroyTree(); // WM_DESTROY down the tree, then WM_NCDESTROY up
    void ComputeFrameFlags();
    // rect with its size held inside the limits (the top-left corner stays).
    SRect LimitSize(const SRect& target) const;
    // Hands the limits to the platform and brings the window inside them.
    void ApplyLimits();
    void SendClientSize();
    void ApplyAnchor();
    bool HandleKeyDown(unsigned key);
    void HandleClick(unsigned message, LPARAM lParam, bool nonClient);
    void HandleHotMove(LPARAM lParam);
    void HandleScroll(int bar, WPARAM wParam);
    void HandleDrop(WPARAM wParam);
    void PaintCaret(cairo_t* cr);
    bool HandleDataBlock(unsigned message, WPARAM wParam, LPARAM lParam, LRESULT* result);

    // Identity.
    unsigned threadId = 0;
    SWindowProc oldProc = nullptr;
    bool subclassed = false;
    HWND handle = 0;
    int type = 0;
    bool visibleFlag = true;
    std::unique_ptr<Port> port;

    // The window itself (what the windowing system keeps on other
    // platforms): tree, rectangle, style, text.
    HWND parent = 0;
    std::vector<HWND> children; // paint order, first painted first
    SRect rect;                 // parent client coordinates (screen for a top-level)
    unsigned style = 0;
    unsigned exStyle = 0;
    unsigned classStyle = 0;
    uintptr_t id = 0;
    bool shown = false;
    bool enabled = true;
    int showState = SW_SHOWNORMAL;
    unsigned sizeKind = SIZE_RESTORED; // the kind of the last WM_SIZE
    SRect normalRect;
    SString text;
    struct ScrollBar {
        int minimum = 0;
        int maximum = 100;
        int position = 0;
    } scrollBars[2];

    unsigned anchor = 0;
    SSize anchorParentSize;
    SRect anchorRect;
    int minSize[2] = {-1, -1};
    int maxSize[2] = {-1, -1};
    int minClient[2] = {-1, -1};
    int maxClient[2] = {-1, -1};
    bool isFramed = false;
    bool isCaptioned = false;
    int paintDepth = 0;
    int lineStep[2] = {1, 1};
    int pageStep[2] = {10, 10};
    int scrollGrid[2] = {1, 1};
    bool shortcutsEnabled = true;
    unsigned shortcutMask = 0x7FFF;
    bool isModal = false;
    HWND owner = 0;
    bool caretVisible = false;
    bool caretShown = false;
    int caretHeight = 0;
    int caretWidth = 0;
    bool caretAtPosition = false;
    int caretX = 0;
    int caretY = 0;
    bool cursorEnabled = true;
    HCURSOR cursor = 0;
    std::vector<SRect> hotItems;
    int hotIndex = -2;
    bool moveByDrag = false;
    bool moveActive = false;
    SPoint moveOffset;
    std::unique_ptr<SImage[]> skinImages; // four, or null
    bool skinHot = false;
    bool skinDown = false;
    bool skinDisabled = false;
    bool skinEnabled = false;
    SImage background;
    uint32_t backColor = 0xFF000000;
    SRect backgroundSlices;
    int tabGroup = -1;
    int tabOrder = -1;
    bool tabStopOff = false;
    bool toolTip = false;
    SString toolTipText;
    SMenu* menu = nullptr;
    int alpha = 255;
    void* font = nullptr;
    std::vector<std::unique_ptr<SDataBlock>> dataBlocks; // a free row is null
    std::unique_ptr<SurfaceFrame> surfaceFrame;          // top-level windows, once painted or invalidated
};
