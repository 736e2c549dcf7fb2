// Entry point of every test executable. The process gets a home of its own
// in a temporary folder, removed at exit, so that no test ever reads or
// writes the user's settings or puts anything in the user's trash. The
// folder lies beside the test trees (TMPDIR), on the same file system, which
// is where GLib's trash takes files from.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::string folder =
        (std::filesystem::temp_directory_path() / "melkora-test-home-XXXXXX").string();
    bool hasFolder = mkdtemp(folder.data()) != nullptr;
    // Caches stay where they were: GStreamer's plugin registry is slow to
    // build anew in every test process, and it holds nothing of the user's.
    const char* home = getenv("HOME");
    if (hasFolder && getenv("XDG_CACHE_HOME") == nullptr && home != nullptr && home[0] == '/') {
        setenv("XDG_CACHE_HOME", (std::string(home) + "/.cache").c_str(), 1);
    }
    if (hasFolder) {
        for (const char* name :
             {"MELKORA_CONFIG_HOME", "XDG_CONFIG_HOME", "HOME", "XDG_DATA_HOME"}) {
            setenv(name, folder.c_str(), 1);
        }
    }
    int result = RUN_ALL_TESTS();
    if (hasFolder) {
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }
    return result;
}
