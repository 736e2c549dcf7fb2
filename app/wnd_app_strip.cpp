// The strip docked at the bottom of the screen.
#include "app/wnd_app_main.h"

void PWndApp::ApplyStrip() {}

void PWndApp::RemoveStrip() {}
