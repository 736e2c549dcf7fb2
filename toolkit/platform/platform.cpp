#include "toolkit/platform/platform.h"

#include <memory>

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

void SPlatform::ImFocus(HWND /*top*/, bool /*in*/) {}

void SPlatform::ImSetCursor(HWND /*top*/, const SRect& /*caret*/) {}

void SPlatform::ImReset(HWND /*top*/) {}

bool SPlatform::RunChooser(HWND /*owner*/, const SChooserRequest& /*request*/,
                           SChooserAnswer* answer) {
    if (answer != nullptr) {
        *answer = SChooserAnswer();
    }
    return false;
}

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
