// The description window opened from the main window: it is made at the
// first Edit Descriptions, raised at the next ones, and made again once it
// has been closed. It reaches this window through the host below.
#include <functional>
#include <utility>

#include "app/settings.h"
#include "app/trace.h"
#include "app/wnd_app_main.h"
#include "foundation/network.h"
#include "toolkit/selector.h"

namespace {

class PAppDescriptionHost : public PDescriptionHost {
public:
    PAppDescriptionHost(PWndApp& app, std::function<void(const char*)> showPage)
        : app(app), showPage(std::move(showPage)) {}

    SString GetRootFolder() const override { return app.GetRootFolder(); }

    void ShowDescriptionPage(const char* path) override {
        showPage(path);
        Trace("page", false, path);
    }

    bool LoadPlacement(const char* name, SRect* rect, bool* maximized) override {
        SWindowPlacement placement;
        SRect area;
        GetWorkArea(&area);
        if (!ReadPlacement(name, area, &placement)) {
            return false;
        }
        *rect = placement.rect;
        *maximized = placement.isMaximized;
        return true;
    }

    void SavePlacement(const char* name, const SRect& rect, bool maximized) override {
        SWindowPlacement placement;
        placement.rect = rect;
        placement.isVisible = true;
        placement.isMaximized = maximized;
        WritePlacement(name, placement);
    }

    bool AskYesNo(SWnd* owner, const char* text, const char* caption) override {
        HWND handle = owner != nullptr ? owner->GetHandle() : app.GetHandle();
        return MessageBox(handle, text, caption, MB_YESNO | MB_ICONQUESTION) == IDYES;
    }

private:
    PWndApp& app;
    std::function<void(const char*)> showPage;
};

} // namespace

bool PWndApp::EditDescriptions() {
    if (descriptionWnd == nullptr) {
        // The page shown under its own path as the tag, so that selecting
        // that folder later does not load it again.
        descriptionHost = std::make_unique<PAppDescriptionHost>(
            *this, [this](const char* path) { ShowPage(path, path); });
        descriptionWnd = std::make_unique<PWndDescription>(descriptionHost.get());
    }
    bool opened = descriptionWnd->Open();
    if (opened) {
        Trace("descriptions", true);
    }
    return opened;
}
