// The push-button family and the plain drawn controls: SButtonCtrl,
// SCheckCtrl, SRadioCtrl (in groups), SLabelCtrl, SStaticCtrl and
// SGroupCtrl. Each is drawn by the toolkit in the theme's colours and sends
// its parent its mouse events as one notification of its class
// (SN_BUTTON_MOUSE...), then handles them. Space and Enter press a focused
// button, check or radio; a disabled control takes no input.
#pragma once

#include "foundation/image.h"
#include "toolkit/ctrl_common.h"

// Style bits of a radio: RADIO_GROUP starts a group (the radios after it, up
// to the next that starts one, are its members); RADIO_CHECKED makes it
// checked when created.
constexpr unsigned RADIO_GROUP = 0x00020000u;
constexpr unsigned RADIO_CHECKED = 0x00000001u;

class SButtonCtrl : public SCtrlBase {
public:
    SButtonCtrl() : SCtrlBase(SN_BUTTON_MOUSE) {}
    explicit SButtonCtrl(unsigned eventMessage) : SCtrlBase(eventMessage) {}
    // The face colour; 0xFF000000 uses the theme's button face.
    void SetBackColor(uint32_t color) override;
    uint32_t GetBackColor() const override { return face; }
    // A press by key or mouse: SN_BUTTON_CLICKED to the parent.
    virtual void Press();
    // A button that stays down, as a toggle button shows its on state.
    void SetPushed(bool on);
    bool IsPushed() const { return pushed; }
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool keyDown = false;
    bool doublePress = false; // the press under way is the second of a double click

private:
    uint32_t face = 0xFF000000u;
    bool pushed = false;
};

class SCheckCtrl : public SButtonCtrl {
public:
    SCheckCtrl() : SButtonCtrl(SN_CHECK_MOUSE) {}
    explicit SCheckCtrl(unsigned eventMessage) : SButtonCtrl(eventMessage) {}
    bool GetCheck() const { return checked; }
    void SetCheck(bool check);
    // Toggles and sends SN_CHECK_CLICKED with the new state.
    void Press() override;
    LRESULT OnColorButton(cairo_t* cr) override;

protected:
    void Paint(cairo_t* cr) override;
    // The mark: a box, or a circle for a radio.
    virtual void PaintMark(cairo_t* cr, const SRect& box);
    bool checked = false;
};

class SRadioCtrl : public SCheckCtrl {
public:
    SRadioCtrl() : SCheckCtrl(SN_RADIO_MOUSE) {}
    bool StartsGroup() const { return (GetStyle() & RADIO_GROUP) != 0 || groupStart; }
    void SetGroupStart(bool start) { groupStart = start; }
    // The radios of this one's group, in the parent's order.
    std::vector<SRadioCtrl*> GetGroup() const;
    // Checks this one and clears the rest of its group; SN_CHECK_CLICKED 1.
    void Press() override;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void PaintMark(cairo_t* cr, const SRect& box) override;

private:
    bool groupStart = false;
};

// Text and an optional image beside it.
class SLabelCtrl : public SCtrlBase {
public:
    SLabelCtrl() : SCtrlBase(SN_LABEL_MOUSE) {}
    void SetAlign(SAlign value);
    SAlign GetAlign() const { return align; }
    // The image (copied; null removes it), drawn left of the text.
    void SetImage(const SImage* image);
    void SetTextColor(uint32_t color); // 0xFF000000: the theme's

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    SAlign align = SAlign::LEFT;
    SImage image;
    uint32_t textColor = 0xFF000000u;
};

// Edges on the chosen sides, then an image in its draw mode.
constexpr unsigned STATIC_EDGE_LEFT = 1;
constexpr unsigned STATIC_EDGE_TOP = 2;
constexpr unsigned STATIC_EDGE_RIGHT = 4;
constexpr unsigned STATIC_EDGE_BOTTOM = 8;

class SStaticCtrl : public SCtrlBase {
public:
    SStaticCtrl() : SCtrlBase(SN_STATIC_MOUSE) {}
    void SetEdges(unsigned sides);
    unsigned GetEdges() const { return edges; }
    void SetImage(const SImage* image);

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    unsigned edges = 0;
    SImage image;
};

// A titled frame round other controls.
class SGroupCtrl : public SCtrlBase {
public:
    SGroupCtrl() : SCtrlBase(SN_GROUP_MOUSE) {}
    void SetAlign(SAlign value);
    SAlign GetAlign() const { return align; }
    LRESULT OnColorButton(cairo_t* cr) override;

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    SAlign align = SAlign::LEFT;
};
