// melkora: the desktop program. Reads the command line, then starts the
// toolkit on GTK and runs the main window until it closes.
#include <cstdio>
#include <cstring>

namespace {

constexpr const char* USAGE =
    "usage: melkora [--root DIR] [--hide | /HIDE] [--remote N]\n"
    "\n"
    "Options:\n"
    "  --root DIR     uses DIR as the collection's root folder\n"
    "  --hide, /HIDE  starts with the window hidden\n"
    "  --help         prints this text\n"
    "  --version      prints the program's version\n";

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--help") == 0 || strcmp(argv[i], "-h") == 0) {
            fputs(USAGE, stdout);
            return 0;
        }
        if (strcmp(argv[i], "--version") == 0) {
            printf("melkora %s\n", MELKORA_VERSION);
            return 0;
        }
    }
    fputs("melkora: the main window is not built yet\n", stderr);
    return 1;
}
