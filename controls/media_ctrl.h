// SMediaCtrl: the toolkit's all-purpose drawn control. One class is a label,
// a picture, a skinned push button, a marked-up text with bold, italic,
// underline, colours, links, pictures and line alignment, and a ticker
// that scrolls its text at a speed in pixels per second. It draws its client
// area with Cairo and Pango; the layout logic is SMediaLayout, the ticker's
// arithmetic SMediaTicker.
//
// Notifications go to the parent with the control as wParam:
// SN_MEDIA_BUTTON_CLICKED, SN_MEDIA_MOUSE (lParam an SMouseEvent*) and
// SN_MEDIA_LINK_CLICKED (lParam the link's text as const char*; a non-zero
// result keeps the control from opening the link).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "controls/media_images.h"
#include "controls/media_layout.h"
#include "controls/media_ticker.h"
#include "toolkit/mouse_event.h"
#include "toolkit/wnd.h"

// The ticker's window timer: id and period in milliseconds.
constexpr uintptr_t MEDIA_TICKER_TIMER = 82;
constexpr unsigned MEDIA_TICKER_PERIOD = 20;

class SMediaCtrl : public SWnd {
public:
    using _STag = SMediaLayout::_STag;
    using _SText = SMediaLayout::_SText;
    using _SLine = SMediaLayout::_SLine;

    SMediaCtrl();
    ~SMediaCtrl() override;

    // The text is set by SWnd::SetText or WM_SETTEXT, one path: a new text
    // stops the ticker and lays out.

    // Settings. Each repaints, and does nothing when the value is unchanged.
    // The picture is drawn into the inner rectangle with its own draw mode;
    // it is not copied and must outlive its use here (null removes it).
    void SetImage(const SImage* image);
    const SImage* GetImage() const { return image; }
    // Program colours (0x00BBGGRR); kept with the alpha 0xFE of a set colour.
    // Until set (or after COLOR_NOT_SET) the system's window text and
    // highlight colours are used.
    void SetTextColor(uint32_t color);
    uint32_t GetTextColor() const;
    void SetLinkColor(uint32_t color);
    uint32_t GetLinkColor() const;
    // MEDIA_ALIGN_* across and down; other bits are dropped.
    void SetAlign(unsigned flags);
    unsigned GetAlign() const { return align; }
    // Negative margins count as 0.
    void SetMargins(int left, int top, int right, int bottom);
    void SetWrapping(bool wrapping);
    bool GetWrapping() const { return wrapping; }
    // Plain text that does not fit ends in an ellipsis.
    void SetTrimming(bool trimming);
    bool GetTrimming() const { return trimming; }
    // The text is read for marks.
    void SetMarkup(bool markup);
    bool GetMarkup() const { return markup; }
    // A button is clickable: hover and press show in its frame and skin, and
    // a left click notifies the parent.
    void SetButton(bool button);
    bool IsButton() const { return clickable; }
    void SetChecked(bool checked);
    bool IsChecked() const { return checked; }
    // A flat button draws no frame.
    void SetFlat(bool flat);
    // Where image marks find their pictures.
    void SetImageArchive(SMediaArchive archive);

    // The ticker. Speeds in pixels per second; unless forced an axis on which
    // the text fits stands still. start, when given, is the first offset.
    // Both speeds 0 stop it and put the text back in place.
    void SetAutoScroll(double speedX, double speedY, bool force = false,
                       const SPoint* start = nullptr);
    void SetAutoScrollLoop(bool loop);
    bool IsAutoScrollOn() const { return ticker.IsOn(); }
    SPoint GetScrollOffset() const { return SPoint{ticker.GetOffsetX(), ticker.GetOffsetY()}; }

    // What was laid out and painted.
    SRect GetInnerRect() const;
    SSize GetContentSize() const { return SSize{contentWidth, contentHeight}; }
    const std::vector<_SLine>& GetLines() const { return layout.GetLines(); }
    int GetFrameState() const;
    // The links of the last paint: text and client rectangle.
    int GetLinkCount() const { return static_cast<int>(linkTexts.size()); }
    SString GetLinkText(int index) const;
    SRect GetLinkRect(int index) const;
    // The index of the painted link under a client point, -1 for none.
    int LinkAt(SPoint point) const;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    class PangoMeasure;

    void Layout();
    void Paint(cairo_t* cr);
    void PaintPlainText(cairo_t* cr, const SRect& inner);
    void PaintMarkup(cairo_t* cr, const SRect& inner);
    void PaintFrame(cairo_t* cr);
    void TickerStep();
    SMediaTicker::Frame TickerFrame() const;
    bool ScrollingHorizontally() const;
    bool ScrollingVertically() const;
    void UpdateCursor(SPoint point);
    void UpdateSkin();
    void Notify(unsigned message, LPARAM lParam);
    void NotifyMouse(unsigned message, LPARAM lParam);
    void OpenLink(const SString& text);
    SMediaFont BaseFont() const;

    const SImage* image = nullptr;
    uint32_t textColor;
    uint32_t linkColor;
    unsigned align = MEDIA_ALIGN_MIDDLE;
    bool wrapping = false;
    bool trimming = true;
    int margins[4] = {1, 1, 1, 1}; // left, top, right, bottom
    int contentWidth = 0;
    int contentHeight = 0;
    SMediaTicker ticker;
    bool markup = false;
    SMediaLayout layout;
    SString laidOutText; // the text the layout was made from
    std::vector<SString> linkTexts;
    std::vector<SRect> linkRects;
    SMediaImageCache images;

    // The button.
    bool clickable = false;
    bool hovered = false;
    bool pressed = false;
    bool checked = false;
    bool flat = false;
    bool overLink = false;
};
