// The cover search window opened for the selected folder.
#include "app/wnd_app_main.h"

bool PWndApp::DownloadCover(bool /*both*/) {
    return false;
}
