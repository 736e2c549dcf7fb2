// PWndThumbs: the main window's picture view of the current folder, a
// scrolling grid of cards (a cover and a name each) beside a coloured band
// that leads up a level. It draws everything itself, with no child
// controls, and is a pure view: the main window fills it whenever a folder
// is opened, and its clicks go back to the main window through PPanelHost.
//
// Geometry, with W the client width left of the scroll bar and S the
// scroll position: C = (W - 32) / 170 columns (at least one), the card at
// row r, column c at x = c*170 + 32, y = r*200 + 8 - S, its cover at x+4,
// y+4 in 150 by 150, its label in x+12, y+160 to x+146, y+185; the band is
// the first 100 pixels of the client, top to bottom.
//
// Scrolling is vertical, with the bar always shown: a line is 40 pixels
// (a notch of the wheel, Up and Down), a page 200 (a press beside the
// bar's thumb, Page Up and Page Down); Home and End go to either end.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/array.h"
#include "foundation/image.h"
#include "foundation/string.h"
#include "library/folder_view.h"
#include "toolkit/wnd.h"

class PPanelHost;
typedef struct _cairo_surface cairo_surface_t;
typedef struct _PangoContext PangoContext;
typedef struct _PangoLayout PangoLayout;

class PWndThumbs : public SWnd {
public:
    static constexpr int CARD_WIDTH = 170;
    static constexpr int CARD_HEIGHT = 200;
    static constexpr int GRID_LEFT = 32;
    static constexpr int GRID_TOP = 8;
    static constexpr int BAND_WIDTH = 100;
    static constexpr int LINE_STEP = 40;
    static constexpr int PAGE_STEP = 200;
    // HoverIndex values besides a card's index.
    static constexpr int HOVER_NONE = -1;
    static constexpr int HOVER_BAND = -2;
    // The main window's id of the view.
    static constexpr uintptr_t ID = 1008;

    // host answers the clicks; it must outlive the window.
    explicit PWndThumbs(PPanelHost* host);
    ~PWndThumbs() override;

    // A visible child of parent at rect (the parent's client coordinates).
    bool Create(SWnd* parent, const SRect& rect, uintptr_t id = ID);

    // Filling. ClearThumbs scrolls to the top, drops every card and the
    // hover. AddThumb appends a card: the image (stretched to 150 by 150
    // when it is not), its name (also the file or folder name) and whether
    // it is played rather than opened. SetThumbs does both for a folder's
    // items, a leaf folder (one without subfolders) being played.
    void ClearThumbs();
    void AddThumb(const SImage& image, const char* name, bool isMedia);
    void SetThumbs(const std::vector<PThumbItem>& items);

    // State, for the main window and tests.
    int GetThumbCount() const { return names.GetCount(); }
    const char* GetThumbName(int index) const;
    bool IsThumbMedia(int index) const;
    int GetHoverIndex() const { return hoverIndex; }
    int GetScrollPos() const { return GetScrollPosition(1); }
    // The columns (at least 1), and the rows the cards take.
    int GetColumns() const;
    int GetRows() const;
    // The width the cards are laid in: the client's, less the scroll bar.
    int GetGridWidth() const;
    // The card's rectangle at the present scroll position (client
    // coordinates); empty for an index out of range.
    SRect GetCardRect(int index) const;
    // The card whose cover is at x, y (client coordinates), else HOVER_BAND
    // on the band, else HOVER_NONE. The label and the rim of a card count
    // as the band or nothing.
    int HitTest(int x, int y) const;
    // Scrolls to position (kept inside the range) and repaints.
    void ScrollTo(int position);
    // The scroll bar's rectangle, at the right edge of the client.
    SRect GetScrollBarRect() const;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void LoadArt();
    void FreeCards();
    // The scroll range from the count and the client height.
    void UpdateScrollRange();
    void SetHover(int index);
    // The area that changes when the hover moves from or to index.
    void InvalidateHover(int index);
    void Paint(cairo_t* cr);
    void PaintCard(cairo_t* cr, int index, int x, int y);
    PangoLayout* GetLabel(int index);
    void OnMouseMove(int x, int y);
    void OnPress(unsigned message, WPARAM wParam, int x, int y);
    void PlayCard(int index, bool shiftDown);
    void OnScroll(unsigned code, int thumbPosition);
    int MaxScroll() const;
    int ContentHeight() const;

    PPanelHost* host;
    // One entry a card, in the order added.
    std::vector<cairo_surface_t*> bitmaps; // 150 by 150, owned
    SStringArray names;
    std::vector<bool> mediaFlags;
    std::vector<PangoLayout*> labels; // made when first painted; owned
    std::vector<int> labelHeights;
    // Card art: first column normal, band hovered, card hovered; other
    // columns normal and hovered; the play overlay.
    cairo_surface_t* artFirst = nullptr;
    cairo_surface_t* artFirstBandHot = nullptr;
    cairo_surface_t* artFirstHot = nullptr;
    cairo_surface_t* art = nullptr;
    cairo_surface_t* artHot = nullptr;
    cairo_surface_t* playOverlay = nullptr;
    PangoContext* textContext = nullptr;
    int hoverIndex = HOVER_NONE;
    bool thumbDrag = false;
    int thumbGrab = 0;
};
