// melkora: the desktop program. Reads the command line, ends at once when
// another instance runs, starts the toolkit on GTK and runs the main window
// until it closes.
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "app/desktop/mpris_bridge.h"
#include "app/mpris/mpris.h"
#include "app/settings.h"
#include "app/trace.h"
#include "app/wnd_app_main.h"
#include "foundation/disk.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/selector.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr const char* USAGE =
    "usage: melkora [--root DIR | DIR] [--hide | /HIDE]\n"
    "       melkora --remote N\n"
    "\n"
    "Options:\n"
    "  --root DIR     uses DIR as the collection's root folder (stored as the\n"
    "                 \"Folder\" preference, as choosing it there would);\n"
    "                 a folder given alone does the same\n"
    "  --hide, /HIDE  starts with the window hidden\n"
    "  --remote N     sends command N to the running instance and ends:\n"
    "                 1 shows or hides the window, 2 plays or pauses,\n"
    "                 3 the previous track, 4 the next; without a running\n"
    "                 instance it ends with status 1\n"
    "  --help         prints this text\n"
    "  --version      prints the program's version\n"
    "\n"
    "Environment:\n"
    "  MELKORA_CONFIG_HOME   the settings folder (default $XDG_CONFIG_HOME/melkora)\n"
    "  MELKORA_NO_SPLASH=1   no splash at start\n"
    "  MELKORA_AUDIO_SINK=fake  silent sinks that keep time\n"
    "  MELKORA_TRACE=1       milestones on stderr\n";

struct Options {
    bool hide = false;
    std::string root;
    // 1 to 4 with --remote, else 0.
    int remote = 0;
};

// 0 to go on, else the exit status + 1.
int ReadOptions(int argc, char** argv, Options* options) {
    for (int i = 1; i < argc; ++i) {
        const char* argument = argv[i];
        if (strcmp(argument, "--help") == 0 || strcmp(argument, "-h") == 0) {
            fputs(USAGE, stdout);
            return 1;
        }
        if (strcmp(argument, "--version") == 0) {
            printf("melkora %s\n", MELKORA_VERSION);
            return 1;
        }
        if (strcmp(argument, "--hide") == 0 || strcasecmp(argument, "/HIDE") == 0) {
            options->hide = true;
        } else if (strcmp(argument, "--remote") == 0 && i + 1 < argc) {
            const char* number = argv[++i];
            if (strlen(number) != 1 || number[0] < '1' || number[0] > '4') {
                fprintf(stderr, "melkora: --remote takes 1, 2, 3 or 4, not \"%s\"\n", number);
                return 3;
            }
            options->remote = number[0] - '0';
        } else if (strcmp(argument, "--root") == 0 && i + 1 < argc) {
            options->root = argv[++i];
        } else if (argument[0] != '-' && options->root.empty()) {
            // A folder given alone (a file manager's "Open with") is the root.
            options->root = argument;
        } else {
            fprintf(stderr, "melkora: unknown argument \"%s\"\n", argument);
            fputs(USAGE, stderr);
            return 3;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (int status = ReadOptions(argc, argv, &options); status != 0) {
        return status - 1;
    }
    // A remote command goes to the running instance over the session bus;
    // this process opens no window.
    if (options.remote != 0) {
        std::string error;
        if (SendRemoteCommand(options.remote, &error) != 0) {
            fprintf(stderr, "melkora: %s\n", error.c_str());
            return 1;
        }
        return 0;
    }
    if (!options.root.empty()) {
        SDisk disk;
        if (!disk.IsFolder(options.root.c_str())) {
            fprintf(stderr, "melkora: \"%s\" is not a folder\n", options.root.c_str());
            return 1;
        }
        char resolved[4096];
        const char* root = realpath(options.root.c_str(), resolved) != nullptr ? resolved
                                                                               : options.root.c_str();
        WriteSettingString(SETTING_FOLDER, root);
    }
    if (!UseGtkPlatform()) {
        fputs("melkora: no display to open the window on\n", stderr);
        return 1;
    }
    if (!ToolkitStart(nullptr, options.hide ? SW_HIDE : SW_SHOW, true, true, false)) {
        fputs("melkora: the window toolkit did not start\n", stderr);
        return 1;
    }
    // A second start ends silently; the first goes on.
    if (CountProgramInstances(nullptr) > 1) {
        ToolkitEnd();
        return 0;
    }
    InstallMessageBox();
    {
        auto window = std::make_unique<PWndApp>();
        if (window->CreateMain()) {
            if (!options.hide) {
                window->Show(SW_SHOW);
            }
            // MPRIS2 and the remote commands on the session bus; without a
            // bus the program runs on without them.
            PMprisBridge bridge(*window);
            MprisService bus(&bridge);
            if (bus.Start()) {
                bus.Watch([&bridge] { return bridge.ReadState(); }, 500);
            }
            Trace("ready", true);
            // The end of the session: the settings are kept, then the
            // window closes by its usual path.
            GtkWatchSessionEnd(
                [](void* argument) {
                    auto* main = static_cast<PWndApp*>(argument);
                    if (main->GetHandle() != 0 &&
                        SendMessage(main->GetHandle(), WM_QUERYENDSESSION, 0, 0) != 0) {
                        PostMessage(main->GetHandle(), WM_CLOSE, 0, 0);
                    }
                },
                window.get());
            RunLoop(nullptr, nullptr, nullptr);
            bus.Stop();
            GtkWatchSessionEnd(nullptr, nullptr);
        }
        window.reset();
    }
    ToolkitEnd();
    return 0;
}
