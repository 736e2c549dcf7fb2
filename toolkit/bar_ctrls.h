// The status bar and the control bar of a window, drawn by the toolkit.
//
// SStatusBarCtrl: a row of parts, each with a width in pixels or -1 for
// the rest of the bar, and a line of text each, drawn in the theme's
// colours with a thin divider between parts. With STATUS_SIZE_GRIP in its
// style it draws a size grip in the bottom right corner, and the last part
// stops short of it. Its mouse events go to the parent as
// SN_STATUS_BAR_MOUSE.
//
// SControlBarCtrl: a bar holding child windows as bands, laid out left to
// right in the order added and wrapped to a new row when one does not fit;
// a band's child takes the band's place less its small gripper. When its
// height changes it tells the parent with SN_CONTROL_BAR_HEIGHT, so that
// the parent can move what lies below. The children stay owned by the
// caller; the bar only places them.
#pragma once

#include <vector>

#include "foundation/string.h"
#include "toolkit/ctrl_common.h"

constexpr unsigned STATUS_SIZE_GRIP = 0x0100;

class SStatusBarCtrl : public SCtrlBase {
public:
    SStatusBarCtrl() : SCtrlBase(SN_STATUS_BAR_MOUSE) {}
    // The widths of the parts, left to right; -1 takes what the parts of a
    // fixed width leave (shared alike when more than one asks). Texts of
    // parts that remain are kept.
    void SetParts(const std::vector<int>& widths);
    int GetPartCount() const { return static_cast<int>(parts.size()); }
    // One part's width; false for an index out of range.
    bool SetPartWidth(int index, int width);
    bool SetText(int index, const char* text);
    SString GetText(int index) const;
    // The part's place in client coordinates, empty out of range.
    SRect GetPartRect(int index) const;
    // The height that shows a line of text in the window's font.
    int GetIdealHeight() const;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    struct Part {
        int width = -1;
        SString text;
        SRect rect;
    };
    void Layout();
    std::vector<Part> parts;
};

class SControlBarCtrl : public SCtrlBase {
public:
    SControlBarCtrl() : SCtrlBase(SN_CONTROL_BAR_MOUSE) {}
    // Adds child (a window already created as this bar's child) as a band
    // of width by height (the child's own height when 0 or less). Returns
    // the band's index, -1 for a null child.
    int AddBand(SWnd* child, int width, int height = 0);
    bool RemoveBand(int index);
    void RemoveAllBands();
    int GetBandCount() const { return static_cast<int>(bands.size()); }
    SRect GetBandRect(int index) const; // the band with its gripper
    // The height that shows every band at the bar's present width.
    int GetIdealHeight() const { return height; }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    struct Band {
        SWnd* child = nullptr;
        int width = 0;
        int height = 0;
        SRect rect;
    };
    void Layout();
    std::vector<Band> bands;
    int height = 0;
};
