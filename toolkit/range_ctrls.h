// Controls of a value in a range: SScrollCtrl (a scroll bar with arrows,
// page clicks on the trough and a draggable thumb), SSliderCtrl (a track
// with a knob) and SProgressCtrl. A scroll bar or slider taller than wide
// runs down. Arrows, Page Up/Down, Home/End and the wheel move the value of
// a focused scroll bar or slider; each change tells the parent
// (SN_SCROLL_CHANGED from a scroll bar, SN_SCROLL_FORWARD from a slider,
// with the new value).
#pragma once

#include "toolkit/ctrl_common.h"

class SRangeCtrl : public SCtrlBase {
public:
    explicit SRangeCtrl(unsigned eventMessage) : SCtrlBase(eventMessage) {}
    // maximum below minimum is taken as minimum.
    void SetRange(int minimum, int maximum);
    int GetMinimum() const { return minimum; }
    int GetMaximum() const { return maximum; }
    // Held inside the range; no notification.
    void SetValue(int value);
    int GetValue() const { return value; }
    void SetSteps(int line, int page);
    int GetLineStep() const { return lineStep; }
    int GetPageStep() const { return pageStep; }
    bool IsVertical() const { return GetClientHeight() > GetClientWidth(); }

protected:
    // Sets the value as the user did, and tells the parent when it changed.
    void UserValue(int value);
    // WM_KEYDOWN and WM_MOUSEWHEEL; true when handled (the wheel always).
    bool HandleKeyOrWheel(unsigned message, WPARAM wParam);
    // The value at a position 0..travel along the track, rounded.
    int ValueAtTravel(int at, int travel) const;
    virtual unsigned ChangeMessage() const { return SN_SCROLL_CHANGED; }

    int minimum = 0;
    int maximum = 100;
    int value = 0;
    int lineStep = 1;
    int pageStep = 10;

private:
    bool HandleKey(WPARAM key);
    bool HandleWheel(WPARAM wParam);
};

class SScrollCtrl : public SRangeCtrl {
public:
    SScrollCtrl() : SRangeCtrl(SN_SCROLL_MOUSE) {}
    // The parts, by where they are: 0 none, 1 the first arrow, 2 the trough
    // before the thumb, 3 the thumb, 4 the trough after it, 5 the last arrow.
    int PartAt(SPoint point) const;
    SRect GetThumbRect() const;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;

private:
    int Thickness() const;
    int Length() const;
    // The thumb's length and its travel along the trough.
    void ThumbGeometry(int* start, int* length, int* travel) const;

    int dragOffset = -1; // the press's place inside the thumb while dragging
    int pressedPart = 0;
};

class SSliderCtrl : public SRangeCtrl {
public:
    SSliderCtrl() : SRangeCtrl(SN_SLIDER_MOUSE) {}
    SRect GetKnobRect() const;
    // The value at a point along the track.
    int ValueAt(SPoint point) const;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    unsigned ChangeMessage() const override { return SN_SCROLL_FORWARD; }

private:
    bool dragging = false;
};

class SProgressCtrl : public SRangeCtrl {
public:
    SProgressCtrl() : SRangeCtrl(SN_PROGRESS_MOUSE) {}
    // The trough's colour and the bar's; 0xFF000000 uses the theme's.
    void SetBackColor(uint32_t color) override;
    uint32_t GetBackColor() const override { return back; }
    void SetBarColor(uint32_t color);
    uint32_t GetBarColor() const { return bar; }

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    uint32_t back = 0xFF000000u;
    uint32_t bar = 0xFF000000u;
};
