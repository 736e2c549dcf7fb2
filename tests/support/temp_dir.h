// A temporary folder for one test, removed with everything in it when the
// object goes. Tests make their trees here and never touch the user's files.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <iterator>
#include <stdlib.h>

class TempDir {
public:
    TempDir() : TempDir(std::filesystem::temp_directory_path().string()) {}
    // A folder made in parent instead of the system's temporary folder.
    explicit TempDir(const std::string& parent) {
        std::string pattern = (std::filesystem::path(parent) / "melkora-XXXXXX").string();
        if (mkdtemp(pattern.data()) != nullptr) {
            path = pattern;
        }
    }
    ~TempDir() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    // The folder, without a trailing "/".
    const std::string& Path() const { return path; }
    // The folder joined with a relative name.
    std::string operator/(std::string_view relative) const {
        return path + "/" + std::string(relative);
    }
    // Writes a file (making its folders), returning its full path.
    std::string Write(std::string_view relative, std::string_view bytes) const {
        std::filesystem::path full = std::filesystem::path(path) / relative;
        std::filesystem::create_directories(full.parent_path());
        std::ofstream out(full, std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return full.string();
    }
    // Makes a folder (and its parents), returning its full path.
    std::string MakeFolder(std::string_view relative) const {
        std::filesystem::path full = std::filesystem::path(path) / relative;
        std::filesystem::create_directories(full);
        return full.string();
    }
    // The whole content of a file, or "" when it cannot be read.
    static std::string Read(const std::string& fullPath) {
        std::ifstream in(fullPath, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

private:
    std::string path;
};
