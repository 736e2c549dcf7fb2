#include "toolkit/toolbar_ctrl.h"

#include <algorithm>
#include <cairo.h>

#include "toolkit/sys_colors.h"

namespace {

constexpr int BUTTON_PAD = 4; // between a button's edge and its image
constexpr int SEPARATOR_WIDTH = 8;
constexpr int TEXT_PAD = 8; // either side of a text-only button's text
constexpr int BAR_PAD = 2;  // around the row of buttons

} // namespace

bool MakeDisabledImage(const SImage& image, SImage* result) {
    if (result == nullptr || !image.IsValid() || !result->CopyFrom(&image) ||
        !result->ConvertTo(PIXEL_FORMAT_32ARGB)) {
        return false;
    }
    uint32_t* bits = result->GetBits();
    size_t count =
        static_cast<size_t>(result->GetWidth()) * static_cast<size_t>(result->GetHeight());
    for (size_t i = 0; i < count; ++i) {
        uint32_t pixel = bits[i];
        uint32_t alpha = pixel >> 24;
        uint32_t red = (pixel >> 16) & 0xFF, green = (pixel >> 8) & 0xFF, blue = pixel & 0xFF;
        uint32_t grey = (299 * red + 587 * green + 114 * blue) / 1000;
        grey = 96 + grey * 159 / 255; // lightened towards the face
        bits[i] = ((alpha / 2) << 24) | (grey << 16) | (grey << 8) | grey;
    }
    return true;
}

void SToolBarCtrl::SetImageSize(int width, int height) {
    imageWidth = std::clamp(width, 1, 256);
    imageHeight = std::clamp(height, 1, 256);
    Layout();
}

int SToolBarCtrl::AddImage(const SImage& image) {
    SImage normal;
    if (!image.IsValid() || !normal.CopyFrom(&image) || !normal.ConvertTo(PIXEL_FORMAT_32ARGB)) {
        return -1;
    }
    if (normal.GetWidth() != imageWidth || normal.GetHeight() != imageHeight) {
        normal.Resize(imageWidth, imageHeight);
    }
    SImage disabled;
    MakeDisabledImage(normal, &disabled);
    images.push_back(std::move(normal));
    disabledImages.push_back(std::move(disabled));
    return static_cast<int>(images.size()) - 1;
}

void SToolBarCtrl::ClearImages() {
    images.clear();
    disabledImages.clear();
    Invalidate(nullptr);
}

const SImage* SToolBarCtrl::GetImage(int index) const {
    return index >= 0 && index < static_cast<int>(images.size()) ? &images[index] : nullptr;
}

const SImage* SToolBarCtrl::GetDisabledImage(int index) const {
    return index >= 0 && index < static_cast<int>(disabledImages.size()) ? &disabledImages[index]
                                                                         : nullptr;
}

int SToolBarCtrl::AddButton(int id, int image, const char* text, unsigned state, unsigned style,
                            int data) {
    Button button;
    button.id = id;
    button.image = image;
    button.text = text != nullptr ? text : "";
    button.state = state;
    button.style = style;
    button.data = data;
    buttons.push_back(button);
    Layout();
    return static_cast<int>(buttons.size()) - 1;
}

int SToolBarCtrl::AddSeparator(int id) {
    Button button;
    button.id = id;
    button.separator = true;
    button.state = 0;
    buttons.push_back(button);
    Layout();
    return static_cast<int>(buttons.size()) - 1;
}

void SToolBarCtrl::RemoveAllButtons() {
    buttons.clear();
    hot = down = -1;
    SetToolTipText(nullptr);
    Layout();
}

void SToolBarCtrl::SetDefinition(
    const SToolbarDefinition& definition,
    const std::function<bool(const SString& name, SImage* image)>& loadImage) {
    RemoveAllButtons();
    images.clear();
    disabledImages.clear();
    if (definition.width > 0 && definition.height > 0) {
        SetImageSize(definition.width, definition.height);
    }
    for (const SToolbarButtonRecord& record : definition.buttons) {
        if (record.separator) {
            AddSeparator(record.id);
            continue;
        }
        int image = -1;
        SImage picture;
        if (loadImage && !record.image.IsEmpty() && loadImage(record.image, &picture)) {
            image = AddImage(picture);
        }
        AddButton(record.id, image, record.text.c_str(), record.GetState(), TOOLBAR_BUTTON_STYLE,
                  record.data);
    }
}

bool SToolBarCtrl::LoadDefinition(
    SFile* file, const SToolbarNameToId& nameToId,
    const std::function<bool(const SString& name, SImage* image)>& loadImage) {
    SToolbarDefinition definition;
    bool loaded = definition.Load(file, nameToId);
    if (!loaded) {
        definition.Clear();
    }
    SetDefinition(definition, loadImage);
    return loaded;
}

int SToolBarCtrl::FindButton(int id) const {
    for (size_t i = 0; i < buttons.size(); ++i) {
        if (buttons[i].id == id) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int SToolBarCtrl::GetButtonId(int index) const {
    return index >= 0 && index < GetButtonCount() ? buttons[index].id : 0;
}

bool SToolBarCtrl::IsSeparator(int index) const {
    return index >= 0 && index < GetButtonCount() && buttons[index].separator;
}

SRect SToolBarCtrl::GetButtonRect(int index) const {
    return index >= 0 && index < GetButtonCount() ? buttons[index].rect : SRect{};
}

int SToolBarCtrl::HitTest(SPoint point) const {
    for (size_t i = 0; i < buttons.size(); ++i) {
        const SRect& rect = buttons[i].rect;
        if (point.x >= rect.left && point.x < rect.right && point.y >= rect.top &&
            point.y < rect.bottom) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool SToolBarCtrl::EnableButton(int id, bool enable) {
    int index = FindButton(id);
    if (index < 0) {
        return false;
    }
    unsigned& state = buttons[index].state;
    state = enable ? (state | TOOLBAR_STATE_ENABLED) : (state & ~TOOLBAR_STATE_ENABLED);
    if (!enable && down == index) {
        down = -1;
    }
    InvalidateButton(index);
    return true;
}

bool SToolBarCtrl::CheckButton(int id, bool check) {
    int index = FindButton(id);
    if (index < 0) {
        return false;
    }
    unsigned& state = buttons[index].state;
    state = check ? (state | TOOLBAR_STATE_CHECKED) : (state & ~TOOLBAR_STATE_CHECKED);
    InvalidateButton(index);
    return true;
}

bool SToolBarCtrl::IsButtonEnabled(int id) const {
    int index = FindButton(id);
    return index >= 0 && !buttons[index].separator &&
           (buttons[index].state & TOOLBAR_STATE_ENABLED) != 0;
}

bool SToolBarCtrl::IsButtonChecked(int id) const {
    int index = FindButton(id);
    return index >= 0 && (buttons[index].state & TOOLBAR_STATE_CHECKED) != 0;
}

bool SToolBarCtrl::SetButtonText(int id, const char* text) {
    int index = FindButton(id);
    if (index < 0) {
        return false;
    }
    buttons[index].text = text != nullptr ? text : "";
    if (hot == index) {
        SetToolTipText(buttons[index].text.c_str());
    }
    Layout();
    return true;
}

SSize SToolBarCtrl::GetIdealSize() const {
    int right = BAR_PAD;
    for (const Button& button : buttons) {
        right = std::max(right, button.rect.right);
    }
    return SSize{right + BAR_PAD, imageHeight + 2 * BUTTON_PAD + 2 * BAR_PAD};
}

void SToolBarCtrl::Layout() {
    const SFont* font = GetHandle() != 0 ? WindowFont(this) : nullptr;
    int x = BAR_PAD;
    int height = imageHeight + 2 * BUTTON_PAD;
    for (Button& button : buttons) {
        int width = SEPARATOR_WIDTH;
        if (!button.separator) {
            width = imageWidth + 2 * BUTTON_PAD;
            if (button.image < 0 && !button.text.IsEmpty()) {
                width =
                    std::max(width, ctrldraw::TextWidth(font, button.text.c_str()) + 2 * TEXT_PAD);
            }
        }
        button.rect = SRect{x, BAR_PAD, x + width, BAR_PAD + height};
        x += width;
    }
    Invalidate(nullptr);
}

void SToolBarCtrl::InvalidateButton(int index) {
    if (index >= 0 && index < GetButtonCount()) {
        SRect rect = buttons[index].rect;
        Invalidate(&rect);
    }
}

void SToolBarCtrl::SetHot(int index) {
    if (index == hot) {
        return;
    }
    InvalidateButton(hot);
    hot = index;
    InvalidateButton(hot);
    bool tip = index >= 0 && !buttons[index].separator;
    SetToolTipText(tip ? buttons[index].text.c_str() : nullptr);
}

void SToolBarCtrl::Click(int index) {
    Button& button = buttons[index];
    if ((button.style & TOOLBAR_BUTTON_CHECK) != 0) {
        button.state ^= TOOLBAR_STATE_CHECKED;
    }
    InvalidateButton(index);
    HWND parent = GetParent();
    if (parent != 0) {
        SendMessage(parent, WM_COMMAND,
                    static_cast<WPARAM>(static_cast<unsigned>(button.id) & 0xFFFFu),
                    static_cast<LPARAM>(GetHandle()));
    }
}

LRESULT SToolBarCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_MOUSEMOVE:
    case SM_MOUSE_ENTER:
        SetHot(HitTest(SPoint{PointParamX(lParam), PointParamY(lParam)}));
        break;
    case SM_MOUSE_LEAVE:
        SetHot(-1);
        break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: {
        int index = HitTest(SPoint{PointParamX(lParam), PointParamY(lParam)});
        if (IsEnabled() && index >= 0 && !buttons[index].separator &&
            (buttons[index].state & TOOLBAR_STATE_ENABLED) != 0) {
            down = index;
            SetCapture(GetHandle());
            InvalidateButton(index);
        }
        break;
    }
    case WM_LBUTTONUP: {
        int index = HitTest(SPoint{PointParamX(lParam), PointParamY(lParam)});
        int was = down;
        down = -1;
        if (GetCapture() == GetHandle()) {
            ReleaseCapture();
        }
        InvalidateButton(was);
        if (was >= 0 && was == index && IsEnabled() &&
            (buttons[index].state & TOOLBAR_STATE_ENABLED) != 0) {
            LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
            // The parent may have changed the buttons on the mouse event.
            if (GetHandle() != 0 && index < GetButtonCount() &&
                (buttons[index].state & TOOLBAR_STATE_ENABLED) != 0) {
                Click(index);
            }
            return result;
        }
        break;
    }
    case SM_CREATE:
    case WM_SETFONT: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        Layout();
        return result;
    }
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SToolBarCtrl::Paint(cairo_t* cr) {
    const uint32_t face = GetSysColor(SYS_COLOR_BTNFACE);
    const uint32_t highlight = GetSysColor(SYS_COLOR_HIGHLIGHT);
    ctrldraw::Fill(cr, GetClientRect(), face);
    const SFont* font = WindowFont(this);
    for (size_t i = 0; i < buttons.size(); ++i) {
        const Button& button = buttons[i];
        const SRect& rect = button.rect;
        if (button.separator) {
            int x = (rect.left + rect.right) / 2;
            ctrldraw::Fill(cr, SRect{x, rect.top + 3, x + 1, rect.bottom - 3},
                           GetSysColor(SYS_COLOR_BTNSHADOW));
            continue;
        }
        bool enabled = IsEnabled() && (button.state & TOOLBAR_STATE_ENABLED) != 0;
        bool checked = (button.state & TOOLBAR_STATE_CHECKED) != 0;
        bool isHot = enabled && static_cast<int>(i) == hot;
        bool isDown = enabled && static_cast<int>(i) == down && isHot;
        if (isDown) {
            ctrldraw::RoundBox(cr, rect, 3, ctrldraw::Mix(face, highlight, 110), highlight);
        } else if (checked) {
            ctrldraw::RoundBox(cr, rect, 3, ctrldraw::Mix(face, highlight, isHot ? 90 : 60),
                               highlight);
        } else if (isHot) {
            ctrldraw::RoundBox(cr, rect, 3, ctrldraw::Mix(face, highlight, 40),
                               ctrldraw::Mix(face, highlight, 160));
        }
        int shift = isDown ? 1 : 0;
        const SImage* image = enabled ? GetImage(button.image) : GetDisabledImage(button.image);
        if (image != nullptr) {
            int x = rect.left + (rect.Width() - imageWidth) / 2 + shift;
            int y = rect.top + (rect.Height() - imageHeight) / 2 + shift;
            image->DrawAt(cr, x, y, imageWidth, imageHeight);
        } else {
            uint32_t color = GetSysColor(enabled ? SYS_COLOR_BTNTEXT : SYS_COLOR_GRAYTEXT);
            ctrldraw::Text(cr, font, button.text.c_str(), ctrldraw::Moved(rect, shift, shift),
                           color, SAlign::CENTER);
        }
    }
}
