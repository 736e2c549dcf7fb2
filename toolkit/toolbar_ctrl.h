// SToolBarCtrl: a row of flat buttons drawn by the toolkit, made from a
// toolbar definition (toolbar_definition.h) or by code. A button shows its
// image (or its text when it has none), lights up under the pointer, looks
// sunk while pressed or checked, and draws a greyed, faded copy of its image
// when disabled. A click sends the parent WM_COMMAND with the button's ID in
// the low word and the bar's handle as lParam; a check button toggles first.
// Separators and disabled buttons take no clicks. The hovered button's text
// is the bar's tool tip.
#pragma once

#include <functional>
#include <vector>

#include "foundation/image.h"
#include "foundation/string.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/toolbar_definition.h"

// Button style bit: a check button, which stays down until clicked again.
constexpr unsigned TOOLBAR_BUTTON_CHECK = 0x02;
// Button state bits (TOOLBAR_STATE_ENABLED is 4).
constexpr unsigned TOOLBAR_STATE_CHECKED = 1;

class SToolBarCtrl : public SCtrlBase {
public:
    SToolBarCtrl() : SCtrlBase(SN_TOOLBAR_MOUSE) {}

    // The size of the button images; pictures of another size are scaled.
    void SetImageSize(int width, int height);
    int GetImageWidth() const { return imageWidth; }
    int GetImageHeight() const { return imageHeight; }
    // Adds a picture to the bar's images; its disabled look is made here.
    // Returns its index, -1 for an invalid picture.
    int AddImage(const SImage& image);
    void ClearImages();
    const SImage* GetImage(int index) const;
    const SImage* GetDisabledImage(int index) const;

    // image: an index of AddImage, -1 for none. state: TOOLBAR_STATE_* bits.
    // Returns the button's index.
    int AddButton(int id, int image, const char* text, unsigned state = TOOLBAR_STATE_ENABLED,
                  unsigned style = TOOLBAR_BUTTON_STYLE, int data = 0);
    int AddSeparator(int id = 0);
    void RemoveAllButtons();
    // Replaces the buttons and images with those of definition; loadImage
    // (may be null) fills a picture from a file name, false for none.
    void SetDefinition(const SToolbarDefinition& definition,
                       const std::function<bool(const SString& name, SImage* image)>& loadImage);

    // Reads a toolbar definition from the file's position and makes its
    // buttons. A null file, a wrong first line or a body that cannot be
    // read leaves the bar empty, with no message; false then.
    bool LoadDefinition(SFile* file, const SToolbarNameToId& nameToId,
                        const std::function<bool(const SString& name, SImage* image)>& loadImage);

    int GetButtonCount() const { return static_cast<int>(buttons.size()); }
    int FindButton(int id) const; // index, -1 when none
    int GetButtonId(int index) const;
    bool IsSeparator(int index) const;
    SRect GetButtonRect(int index) const; // client coordinates
    int HitTest(SPoint point) const;      // button index, -1 for none
    int GetHotButton() const { return hot; }

    // By ID; false when no button has it.
    bool EnableButton(int id, bool enable);
    bool CheckButton(int id, bool check);
    bool IsButtonEnabled(int id) const;
    bool IsButtonChecked(int id) const;
    bool SetButtonText(int id, const char* text);
    // The width and height that show every button.
    SSize GetIdealSize() const;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    struct Button {
        int id = 0;
        int image = -1;
        SString text;
        unsigned state = TOOLBAR_STATE_ENABLED;
        unsigned style = TOOLBAR_BUTTON_STYLE;
        int data = 0;
        bool separator = false;
        SRect rect;
    };
    void Layout();
    void SetHot(int index);
    void InvalidateButton(int index);
    void Click(int index);

    std::vector<Button> buttons;
    std::vector<SImage> images;
    std::vector<SImage> disabledImages;
    int imageWidth = 16;
    int imageHeight = 16;
    int hot = -1;
    int down = -1; // the button pressed by the left button, -1 for none
};

// The disabled look of a picture: each pixel greyed, lightened and half as
// opaque. The picture is kept; result is in 32-bit ARGB.
bool MakeDisabledImage(const SImage& image, SImage* result);
