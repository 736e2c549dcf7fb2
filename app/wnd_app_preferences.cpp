// The preferences window and applying what it changed.
#include "app/wnd_app_main.h"

bool PWndApp::OpenPreferences() {
    return false;
}
