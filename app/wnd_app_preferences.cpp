// The preferences window and applying what it changed.
#include "app/preferences.h"
#include "app/wnd_app_main.h"
#include "app/wnd_setting.h"

bool PWndApp::OpenPreferences() {
    if (preferences != nullptr) {
        return false; // one at a time
    }
    PWndSetting dialog;
    if (!dialog.Create(this)) {
        return false;
    }
    dialog.SetValues(ReadPreferences());
    preferences = &dialog;
    bool accepted = dialog.Run() == 0;
    preferences = nullptr;
    PPreferences values = dialog.GetValues();
    dialog.Destroy();
    // The window may have been closed meanwhile (Quit from the tray or the
    // session bus): nothing is stored then.
    if (!accepted || GetHandle() == 0) {
        return false;
    }
    WritePreferences(values);
    smallIcons = values.smallIcons;
    BuildToolbarImages(smallIcons, false);
    HideMainWindow();
    ReloadLibrary(false);
    ShowMainWindow();
    return true;
}
