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

bool SPlatform::HostChild(HWND /*owner*/, HWND /*top*/, void* /*widget*/) {
    return false;
}

void SPlatform::MoveHostedChild(HWND /*owner*/, const SRect& /*rect*/) {}

void SPlatform::ShowHostedChild(HWND /*owner*/, bool /*show*/) {}

void SPlatform::FocusHostedChild(HWND /*owner*/, bool /*focus*/) {}

void SPlatform::DestroyHostedChild(HWND /*owner*/) {}

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
