// PProgressCtrl: the seek bar of the playing window and the taskbar strip.
// A progress control that draws itself with three pictures (the empty bar,
// the played part, and the stretch a click would cover while the pointer
// is over it) and seeks the player where it is pressed. Its range is in
// seconds, set by its owner.
#pragma once

#include "foundation/image.h"
#include "toolkit/range_ctrls.h"

class PPanelHost;

class PProgressCtrl : public SProgressCtrl {
public:
    // host answers the seeks; it may be null (the bar then only shows).
    explicit PProgressCtrl(PPanelHost* host = nullptr);

    void SetHost(PPanelHost* value) { host = value; }

    // The position under the pointer, in seconds, -1 while the pointer is
    // elsewhere or the range is 0.
    int GetHoverPosition() const { return hoverPosition; }
    // While the left button is held after a press on the bar: the position
    // under the pointer, else -1.
    int GetDragPosition() const { return dragging ? hoverPosition : -1; }
    // The position, in seconds, of a client x (held inside the range).
    int PositionAt(int x) const;
    // The pixel where a position lies across the client width.
    int PixelAt(int position) const;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    // Draws bar stretched over left..right with its rounded ends kept.
    void DrawBar(cairo_t* cr, const SImage& bar, int left, int right) const;
    void SetHover(int position);
    void Seek(int position);

    PPanelHost* host;
    SImage bars[3]; // empty, played, hover
    int hoverPosition = -1;
    bool dragging = false;
    int pressPosition = -1; // where the held press seeked
};
