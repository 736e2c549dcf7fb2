// The web engine of SBrowserCtrl on WebKitGTK (webkit2gtk-4.1). Only the
// files of controls/web/ include WebKit headers; they make a library of
// their own (melkora_controls_web).
//
// Every view shares one web context, hardened for local pages: the web
// process runs in its sandbox, pages reach no file URL by script (neither
// other files nor other origins), plugins and Java are off, downloads are
// refused, new windows are not opened, and text without a declared
// charset is read as UTF-8. MHTML archives (".mht") load like pages.
#pragma once

#include <memory>

#include "controls/browser_ctrl.h"

// Null when there is no display (GTK not started).
std::unique_ptr<SWebEngine> CreateWebKitEngine(SWebEngine::Events* events);
