// The Book window, making and sending the Book, and the help window.
#include "app/wnd_app_main.h"

bool PWndApp::OpenBook() {
    return false;
}

bool PWndApp::MakeBook() {
    return false;
}

bool PWndApp::SendBook() {
    return false;
}

bool PWndApp::OpenHelp() {
    return false;
}
