#include "dialogs/wnd_dialog.h"

#include <algorithm>
#include <cstring>

#include "dialogs/control_factory.h"
#include "foundation/file.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/draw.h"
#include "toolkit/menu.h"
#include "toolkit/notification.h"
#include "toolkit/toolbar_ctrl.h"

namespace {

// The band style of a control moved into the control bar, as the bar's
// callers have always given it, and the least height of such a band.
constexpr int BAR_BAND_MIN_HEIGHT = 50;

bool SameName(const SString& a, const char* b) {
    size_t length = std::strlen(b);
    return static_cast<size_t>(a.GetLength()) == length && std::memcmp(a.c_str(), b, length) == 0;
}

} // namespace

SWndDialog::SWndDialog() = default;

SWndDialog::~SWndDialog() {
    // The window goes while this is still a dialog, so that its controls
    // go with WM_DESTROY as they do when the window is destroyed first.
    if (GetHandle() != 0) {
        Destroy();
    }
    DestroyContents();
}

bool SWndDialog::CreateFromDefinition(SFile* definition, const SDialogBuildOptions& options) {
    return BuildDialog(definition, this, options);
}

std::unique_ptr<SWnd> SWndDialog::MakeDialogControl(int /*type*/,
                                                    const SDialogDefinition::_SCtrl& /*record*/) {
    return nullptr;
}

void SWndDialog::GrowForBar(int delta, int shift) {
    if (delta == 0) {
        return;
    }
    // The controls keep their room: anchors are held while the window
    // grows, and then record the new size, so nothing anchored to the
    // bottom slides under a bar.
    SArray<SWnd*> children;
    GetChildren(&children);
    std::vector<std::pair<HWND, unsigned>> anchors;
    for (int i = 0; i < children.GetCount(); ++i) {
        SWnd* child = children.GetAt(i);
        if (child == statusBar.get() || child == toolBar.get() || child == controlBar.get()) {
            continue;
        }
        if (child->GetAnchor() != 0) {
            anchors.emplace_back(child->GetHandle(), child->GetAnchor());
            child->SetAnchor(0);
        }
        if (shift != 0) {
            SRect rect = child->GetRect();
            rect.top += shift;
            rect.bottom += shift;
            child->MoveWindow(rect, false);
        }
    }
    for (DialogAnchor& kept : dialogAnchors) {
        kept.parentSize.height += delta;
        kept.box.top += shift;
    }
    SSize client = GetClientSize();
    SetClientSize(client.width, client.height + delta);
    for (const auto& [handle, anchor] : anchors) {
        if (SWnd* child = FromHandle(handle)) {
            child->SetAnchor(anchor);
        }
    }
    LayoutBars();
}

void SWndDialog::LayoutBars() {
    SSize client = GetClientSize();
    int top = 0;
    if (toolBar != nullptr && toolBar->GetHandle() != 0) {
        int height = toolBar->GetIdealSize().height;
        toolBar->MoveWindow(SRect{0, 0, client.width, height}, true);
        top += height;
    }
    if (controlBar != nullptr && controlBar->GetHandle() != 0) {
        controlBar->MoveWindow(SRect{0, top, client.width, top + barHeight}, true);
    }
    if (statusBar != nullptr && statusBar->GetHandle() != 0) {
        int height = statusBar->GetIdealHeight();
        statusBar->MoveWindow(SRect{0, client.height - height, client.width, client.height}, true);
    }
}

bool SWndDialog::AddStatusBar(int parts) {
    if (statusBar != nullptr || GetHandle() == 0) {
        return false;
    }
    auto bar = std::make_unique<SStatusBarCtrl>();
    SSize client = GetClientSize();
    SRect rect{0, client.height, client.width, client.height + 20};
    if (!bar->Create("", WS_VISIBLE, 0, &rect, GetHandle())) {
        return false;
    }
    bar->SetParts(std::vector<int>(static_cast<size_t>(std::max(parts, 1)), -1));
    int height = bar->GetIdealHeight();
    statusBar = std::move(bar);
    GrowForBar(height, 0);
    return true;
}

bool SWndDialog::AddControlBar() {
    if (controlBar != nullptr || GetHandle() == 0) {
        return false;
    }
    auto bar = std::make_unique<SControlBarCtrl>();
    SSize client = GetClientSize();
    int top = toolBar != nullptr ? toolBar->GetRect().bottom : 0;
    SRect rect{0, top, client.width, top};
    if (!bar->Create("", WS_VISIBLE, 0, &rect, GetHandle())) {
        return false;
    }
    controlBar = std::move(bar);
    barHeight = 0;
    return true;
}

bool SWndDialog::AddToolBar(
    SFile* definition, const SToolbarNameToId& nameToId,
    const std::function<bool(const SString& name, SImage* image)>& loadImage) {
    if (toolBar != nullptr || GetHandle() == 0) {
        return false;
    }
    auto bar = std::make_unique<SToolBarCtrl>();
    SSize client = GetClientSize();
    SRect rect{0, 0, client.width, 0};
    if (!bar->Create("", WS_VISIBLE, 0, &rect, GetHandle())) {
        return false;
    }
    if (definition != nullptr) {
        bar->LoadDefinition(definition, nameToId, loadImage);
    }
    int height = bar->GetIdealSize().height;
    toolBar = std::move(bar);
    GrowForBar(height, height);
    return true;
}

void SWndDialog::SetStatusText(int part, const char* text) {
    if (statusBar != nullptr) {
        statusBar->SetText(part, text);
    }
}

void SWndDialog::SetStatusPartWidth(int part, int width) {
    if (statusBar != nullptr) {
        statusBar->SetPartWidth(part, width);
    }
}

void SWndDialog::AddBarControl(SWnd* control, int width, int height) {
    if (control == nullptr || control->GetHandle() == 0) {
        return;
    }
    if (controlBar == nullptr && !AddControlBar()) {
        return;
    }
    control->SetAnchor(0);
    std::erase_if(dialogAnchors, [control](const DialogAnchor& kept) {
        return kept.control == control->GetHandle();
    });
    controlBar->AddBand(control, width, std::max(height, BAR_BAND_MIN_HEIGHT));
}

SWnd* SWndDialog::GetControl(unsigned id) const {
    for (const Entry& entry : controls) {
        if (entry.id == id && entry.control != nullptr) {
            return entry.control.get();
        }
    }
    return nullptr;
}

SWnd* SWndDialog::GetControl(const char* name) const {
    if (name == nullptr) {
        return nullptr;
    }
    for (const Entry& entry : controls) {
        if (SameName(entry.name, name)) {
            return entry.control.get();
        }
    }
    return nullptr;
}

int SWndDialog::GetControlIndex(const SWnd* control) const {
    for (size_t i = 0; i < controls.size(); ++i) {
        if (control != nullptr && controls[i].control.get() == control) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

SString SWndDialog::GetControlName(const SWnd* control) const {
    int index = GetControlIndex(control);
    return index >= 0 ? controls[static_cast<size_t>(index)].name : SString();
}

SWnd* SWndDialog::GetControlAt(int index) const {
    return index >= 0 && index < GetControlCount()
               ? controls[static_cast<size_t>(index)].control.get()
               : nullptr;
}

int SWndDialog::GetControlType(const SWnd* control) const {
    int index = GetControlIndex(control);
    return index >= 0 ? controls[static_cast<size_t>(index)].type : -1;
}

bool SWndDialog::AddControl(SWnd* control, unsigned id, const char* name, const char* fontFace,
                            int points, unsigned flags) {
    if (control == nullptr || GetControlIndex(control) >= 0) {
        return false;
    }
    Entry entry;
    entry.control.reset(control);
    entry.id = id;
    entry.name = name != nullptr ? name : "";
    if (SFont* font = MakeControlFont(fontFace, points, flags);
        font != nullptr && control->GetHandle() != 0) {
        SendMessage(control->GetHandle(), WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    }
    controls.push_back(std::move(entry));
    return true;
}

const SImage* SWndDialog::KeepImage(SImage&& image) {
    images.push_back(std::make_unique<SImage>(std::move(image)));
    return images.back().get();
}

SFont* SWndDialog::MakeControlFont(const char* face, int points, unsigned flags) {
    if (face == nullptr || face[0] == '\0') {
        return nullptr;
    }
    SFont* font = MakeFont(face, PointsToHeight(points > 0 ? points : 9), flags);
    if (font != nullptr) {
        fonts.emplace_back(font);
    }
    return font;
}

void SWndDialog::KeepDialogAnchor(SWnd* control, uint32_t anchor) {
    if (control == nullptr || control->GetHandle() == 0) {
        return;
    }
    control->SetAnchor(0);
    SRect rect = control->GetRect();
    SWnd* parentWnd = control->GetParentWnd();
    DialogAnchor kept;
    kept.control = control->GetHandle();
    kept.anchor = anchor;
    kept.box = SAnchorBox{rect.left, rect.top, rect.Width(), rect.Height()};
    kept.parentSize = parentWnd != nullptr ? parentWnd->GetClientSize() : SSize();
    dialogAnchors.push_back(kept);
}

void SWndDialog::ApplyDialogAnchors() {
    for (const DialogAnchor& kept : dialogAnchors) {
        SWnd* control = FromHandle(kept.control);
        SWnd* parentWnd = control != nullptr ? control->GetParentWnd() : nullptr;
        if (parentWnd == nullptr) {
            continue;
        }
        SSize size = parentWnd->GetClientSize();
        SAnchorBox box = ApplyAnchorValue(kept.anchor, kept.box, size.width - kept.parentSize.width,
                                          size.height - kept.parentSize.height);
        control->MoveWindow(SRect{box.left, box.top, box.left + box.width, box.top + box.height},
                            false);
    }
}

void SWndDialog::DestroyContents() {
    statusBar.reset();
    toolBar.reset();
    controlBar.reset();
    menu.reset();
    // Controls after the bars (a band's window may be a control); each
    // destroys its window with itself.
    while (!controls.empty()) {
        controls.pop_back();
    }
    dialogAnchors.clear();
    images.clear();
    fonts.clear();
    barHeight = 0;
    anyRadio = false;
    lastRadioGroup = 0;
}

LRESULT SWndDialog::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SNotification note(message, wParam, lParam);
    switch (message) {
    case SN_CONTROL_BAR_HEIGHT:
        if (controlBar != nullptr && note.Control() == controlBar.get()) {
            int height = static_cast<int>(lParam);
            int delta = height - barHeight;
            barHeight = height;
            GrowForBar(delta, delta);
        }
        break;
    case SN_BUTTON_CLICKED:
        if (IsModal() && note.Control() != nullptr) {
            SString name = GetControlName(note.Control());
            if (SameName(name, "OK")) {
                SendMessage(GetHandle(), SM_OK, 0, 0);
            } else if (SameName(name, "CANCEL")) {
                SendMessage(GetHandle(), SM_CANCEL, 0, 0);
            }
        }
        break;
    case WM_COMMAND:
        if (commandTarget != 0 && commandTarget != GetHandle() && FromHandle(commandTarget)) {
            return SendMessage(commandTarget, message, wParam, lParam);
        }
        break;
    case WM_SIZE:
        ApplyDialogAnchors();
        LayoutBars();
        break;
    case WM_DESTROY: {
        if (IsVisible()) {
            Show(SW_HIDE);
        }
        LRESULT result = SWnd::OnMessage(message, wParam, lParam);
        DestroyContents();
        return result;
    }
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
