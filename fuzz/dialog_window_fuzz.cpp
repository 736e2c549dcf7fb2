// Builds a dialog window on the headless platform from arbitrary bytes after
// the dialog definition's magic and its discarded line: whatever the damage,
// the factory builds a window with what it could read, or refuses, and the
// window is destroyed cleanly with all it made.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "controls/browser_ctrl.h"
#include "dialogs/wnd_dialog.h"
#include "foundation/file.h"
#include "toolkit/platform/headless/headless_platform.h"
#include "toolkit/wnd_app.h"

namespace {

// No web view here: a BROWSER record is left out as it is without an engine.
std::unique_ptr<SWebEngine> NoEngine(SWebEngine::Events*) {
    return nullptr;
}

} // namespace

// The caches that fontconfig and Pango keep for the life of the process
// once the toolkit has measured text (as tests/support/lsan.supp says for
// the tests): not leaks of the window code.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\nleak:libpango-1.0.so\nleak:libpangoft2-1.0.so\n"
           "leak:libpangocairo-1.0.so\nleak:libharfbuzz.so\nleak:ld-linux-\n";
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SetPlatform(new SHeadlessPlatform);
    if (!ToolkitStart(nullptr, SW_SHOW, false, false, false)) {
        abort();
    }
    SetWebEngineFactory(NoEngine);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text = "TAVORA DIALOG 1.0.0.0\r\n\r\n";
    text.append(reinterpret_cast<const char*>(data), size);
    SFileMem file;
    file.Write(text.data(), static_cast<int>(text.size()));
    file.Rewind();
    SWndDialog dialog;
    // A file provider that finds every name, with the name as its bytes.
    SDialogBuildOptions options;
    options.provider = [](const char* name, SFileMem* contents) {
        std::string bytes = name;
        contents->Write(bytes.data(), static_cast<int>(bytes.size()));
        contents->Rewind();
        return true;
    };
    options.stayHidden = true;
    if (dialog.CreateFromDefinition(&file, options)) {
        dialog.SetClientSize(dialog.GetClientWidth() + 17, dialog.GetClientHeight() - 9);
        dialog.Destroy();
        if (dialog.GetControlCount() != 0) {
            abort(); // the window's end takes its controls
        }
    } else if (dialog.GetControlCount() != 0) {
        abort();
    }
    return 0;
}
