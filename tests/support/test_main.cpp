// Entry point of every test executable. The process gets a settings folder
// of its own, so that no test ever reads or writes the user's settings.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    char folder[] = "/tmp/melkora-test-config-XXXXXX";
    bool hasFolder = mkdtemp(folder) != nullptr;
    if (hasFolder) {
        setenv("MELKORA_CONFIG_HOME", folder, 1);
        setenv("XDG_CONFIG_HOME", folder, 1);
    }
    int result = RUN_ALL_TESTS();
    if (hasFolder) {
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }
    return result;
}
