// The description window opened from the main window.
#include "app/wnd_app_main.h"

bool PWndApp::EditDescriptions() {
    return false;
}
