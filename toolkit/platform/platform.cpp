#include "toolkit/platform/platform.h"

#include <algorithm>
#include <memory>

#include "foundation/image.h"

#include "toolkit/platform/headless/headless_platform.h"

namespace {

std::unique_ptr<SPlatform>& Current() {
    static std::unique_ptr<SPlatform> platform;
    return platform;
}

} // namespace

SPlatform::~SPlatform() = default;

bool SPlatform::GetInterfaceFont(SString* /*face*/, double* /*points*/) {
    return false;
}

void SPlatform::LoadThemeColors() {}

void SPlatform::GetDoubleClick(unsigned* milliseconds, int* distance) {
    *milliseconds = 500;
    *distance = 2;
}

bool SPlatform::CreatePopupSurface(HWND hwnd, const SRect& rect) {
    return CreateSurface(hwnd, rect, "");
}

void SPlatform::ImFocus(HWND /*top*/, bool /*in*/) {}

void SPlatform::ImSetCursor(HWND /*top*/, const SRect& /*caret*/) {}

void SPlatform::ImReset(HWND /*top*/) {}

void SPlatform::SetSurfaceOwner(HWND /*hwnd*/, HWND /*owner*/) {}

void SPlatform::ActivateSurface(HWND /*hwnd*/) {}

SDockState SPlatform::DockSurface(HWND /*hwnd*/, int /*height*/, SRect* /*placed*/) {
    return SDockState::NONE;
}

bool SPlatform::UndockSurface(HWND /*hwnd*/) {
    return false;
}

bool SPlatform::RunChooser(HWND /*owner*/, const SChooserRequest& /*request*/,
                           SChooserAnswer* answer) {
    if (answer != nullptr) {
        *answer = SChooserAnswer();
    }
    return false;
}

bool SPlatform::HostChild(HWND /*owner*/, HWND /*top*/, void* /*widget*/) {
    return false;
}

void SPlatform::MoveHostedChild(HWND /*owner*/, const SRect& /*rect*/) {}

void SPlatform::ShowHostedChild(HWND /*owner*/, bool /*show*/) {}

void SPlatform::FocusHostedChild(HWND /*owner*/, bool /*focus*/) {}

void SPlatform::DestroyHostedChild(HWND /*owner*/) {}

bool STrayMenuItem::operator==(const STrayMenuItem& other) const {
    return id == other.id && text == other.text && separator == other.separator &&
           checked == other.checked && disabled == other.disabled && secondary == other.secondary &&
           submenu == other.submenu;
}

bool SPlatform::AddTrayIcon(int /*tray*/, const SImage& /*icon*/, const char* /*iconName*/,
                            const char* /*tip*/) {
    return false;
}

void SPlatform::SetTrayIcon(int /*tray*/, const SImage& /*icon*/, const char* /*iconName*/) {}

void SPlatform::SetTrayTip(int /*tray*/, const char* /*tip*/) {}

void SPlatform::SetTrayMenu(int /*tray*/, const std::vector<STrayMenuItem>& /*items*/) {}

bool SPlatform::PopupTrayMenu(int /*tray*/) {
    return false;
}

void SPlatform::RemoveTrayIcon(int /*tray*/) {}

SPlatform* GetPlatform() {
    std::unique_ptr<SPlatform>& platform = Current();
    if (platform == nullptr) {
        platform = std::make_unique<SHeadlessPlatform>();
    }
    return platform.get();
}

void SetPlatform(SPlatform* platform) {
    Current().reset(platform);
}

bool SPlatform::GetFileIcon(const char* /*path*/, bool folder, int size, SImage* picture) {
    if (picture == nullptr || size <= 0 || !picture->Create(size, size, PIXEL_FORMAT_32ARGB)) {
        return false;
    }
    picture->Fill(0x00000000u);
    int edge = std::max(1, size / 8);
    SRect body{edge, edge * 2, size - edge, size - edge};
    if (folder) {
        SRect tab{edge, edge, size / 2, edge * 2};
        picture->Fill(0xFFE0B040u, &tab);
        picture->Fill(0xFFF0C850u, &body);
    } else {
        SRect sheet{edge * 2, edge, size - edge * 2, size - edge};
        picture->Fill(0xFF808080u, &sheet);
        SRect inner{sheet.left + 1, sheet.top + 1, sheet.right - 1, sheet.bottom - 1};
        picture->Fill(0xFFF4F4F4u, &inner);
    }
    return true;
}
