#include "app/data_files.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string ProgramFolder() {
    char buffer[4096];
    ssize_t length = readlink("/proc/self/exe", buffer, sizeof(buffer) - 1);
    if (length <= 0) {
        return std::string();
    }
    std::string path(buffer, static_cast<size_t>(length));
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

// Whether a relative name stays inside its folder: no "..", no empty part.
bool IsPlainName(const char* name) {
    if (name == nullptr || *name == 0 || *name == '/') {
        return false;
    }
    std::string text(name);
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('/', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        std::string part = text.substr(start, end - start);
        if (part.empty() || part == "..") {
            return false;
        }
        start = end + 1;
    }
    return true;
}

} // namespace

SString GetDataFolder() {
    const char* own = std::getenv("MELKORA_DATA_DIR");
    std::string folder;
    if (own != nullptr && *own != 0) {
        folder = own;
    } else {
        std::string bin = ProgramFolder();
        size_t slash = bin.rfind('/');
        if (slash == std::string::npos) {
            return SString();
        }
        folder = bin.substr(0, slash) + "/share/melkora";
    }
    if (folder.back() != '/') {
        folder += '/';
    }
    return SString(folder.c_str());
}

SString FindDataFile(const char* name) {
    SString folder = GetDataFolder();
    if (folder.GetLength() == 0 || !IsPlainName(name)) {
        return SString();
    }
    std::string path = std::string(folder.c_str()) + name;
    struct stat info;
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return SString();
    }
    return SString(path.c_str());
}
