// SDisk queries and changes: existence, sizes, temporary names, starting
// documents and programs through GIO, renaming, unique names, folders, new
// files and the trash. Listing is in disk_list.cpp, the ZIP writer in
// disk_zip.cpp.
#include "foundation/disk.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <fcntl.h>
#include <gio/gio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/file.h"
#include "foundation/path.h"
#include "foundation/random.h"

namespace {

// MakeUniqueName tries this many numbered names, each below this bound.
constexpr int UNIQUE_TRIES = 1000;
constexpr unsigned UNIQUE_RANGE = 999;

// A file the kernel runs itself: executable by us and starting with "#!"
// or an ELF header. Documents with an execute bit (common on mounted
// Windows disks) are not programs.
bool IsProgram(const char* path) {
    struct stat status;
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode) || access(path, X_OK) != 0) {
        return false;
    }
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    unsigned char head[4] = {0, 0, 0, 0};
    ssize_t got = read(fd, head, sizeof(head));
    close(fd);
    if (got >= 2 && head[0] == '#' && head[1] == '!') {
        return true;
    }
    return got == 4 && head[0] == 0x7F && head[1] == 'E' && head[2] == 'L' && head[3] == 'F';
}

// Hands a URI to the desktop's default application for it.
bool LaunchUri(const char* uri) {
    GError* error = nullptr;
    gboolean launched = g_app_info_launch_default_for_uri(uri, nullptr, &error);
    if (error != nullptr) {
        g_error_free(error);
    }
    return launched != FALSE;
}

// Hands a local file or folder to the desktop, by its file URI.
bool LaunchPath(const char* path) {
    SPath full(path);
    if (!full.IsLocal()) {
        return false;
    }
    gchar* uri = g_filename_to_uri(full.GetFullPath().c_str(), nullptr, nullptr);
    if (uri == nullptr) {
        return false;
    }
    bool launched = LaunchUri(uri);
    g_free(uri);
    return launched;
}

// Starts a program with its parameters split as a shell would, in folder
// when not empty, and waits for it to end when wait is true.
bool SpawnProgram(const SString& program, const char* parameters, const SString& folder,
                  bool wait) {
    gchar** arguments = nullptr;
    int argumentCount = 0;
    if (parameters != nullptr && parameters[0] != 0 &&
        !g_shell_parse_argv(parameters, &argumentCount, &arguments, nullptr)) {
        return false;
    }
    gchar** argv = g_new0(gchar*, argumentCount + 2);
    argv[0] = g_strdup(program.c_str());
    for (int i = 0; i < argumentCount; ++i) {
        argv[i + 1] = arguments[i];
    }
    g_free(arguments); // the strings now belong to argv
    const gchar* workingFolder = folder.IsEmpty() ? nullptr : folder.c_str();
    gboolean started;
    if (wait) {
        started = g_spawn_sync(workingFolder, argv, nullptr, G_SPAWN_DEFAULT, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr);
    } else {
        // Without G_SPAWN_DO_NOT_REAP_CHILD the child is reaped for us.
        started = g_spawn_async(workingFolder, argv, nullptr, G_SPAWN_DEFAULT, nullptr, nullptr,
                                nullptr, nullptr);
    }
    g_strfreev(argv);
    return started != FALSE;
}

} // namespace

SDisk::~SDisk() = default;

bool SDisk::SetTrailingSeparator(bool on) {
    bool old = trailingSeparator;
    trailingSeparator = on;
    return old;
}

bool SDisk::Exists(const char* path) const {
    struct stat status;
    return path != nullptr && path[0] != 0 && lstat(path, &status) == 0;
}

bool SDisk::IsFile(const char* path) const {
    if (path == nullptr || path[0] == 0) {
        return false;
    }
    size_t length = strlen(path);
    if (path[length - 1] == '/') {
        return false;
    }
    struct stat status;
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

bool SDisk::IsFolder(const char* path) const {
    struct stat status;
    return path != nullptr && path[0] != 0 && stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

int SDisk::GetFileSize(const char* path) const {
    if (path == nullptr || path[0] == 0) {
        return -1;
    }
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return -1;
    }
    struct stat status;
    bool ok = fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= INT_MAX;
    close(fd);
    return ok ? static_cast<int>(status.st_size) : -1;
}

SString SDisk::GetTempFolder() const {
    const char* variable = getenv("TMPDIR");
    SString folder(variable != nullptr && variable[0] == '/' ? variable : "/tmp");
    while (folder.GetLength() > 1 && folder.GetAt(folder.GetLength() - 1) == '/') {
        folder.SetLength(folder.GetLength() - 1);
    }
    if (trailingSeparator && folder != "/") {
        folder += "/";
    }
    return folder;
}

SString SDisk::GetTempFileName() const {
    SDisk withSeparator;
    SString name = withSeparator.GetTempFolder() + "tmpXXXXXX.tmp";
    int fd = mkstemps(name.GetBuffer(), 4);
    if (fd < 0) {
        return SString("");
    }
    close(fd);
    return name;
}

bool SDisk::Explore(const char* folder, int /*showCommand*/) {
    if (!IsFolder(folder)) {
        return false;
    }
    return LaunchPath(folder);
}

bool SDisk::Run(const char* file, const char* parameters, bool wait, bool fileFolderAsCurrent,
                int /*showCommand*/) {
    if (file == nullptr || file[0] == 0) {
        return false;
    }
    if (!Exists(file)) {
        // Not on the disk: an address ("https://...", "mailto:...") or nothing.
        if (g_uri_peek_scheme(file) == nullptr) {
            return false;
        }
        return LaunchUri(file);
    }
    if (!IsProgram(file)) {
        return LaunchPath(file);
    }
    SPath program(file);
    SString folder;
    if (fileFolderAsCurrent) {
        folder = program.GetFolderPath();
    }
    return SpawnProgram(program.GetFullPath(), parameters, folder, wait);
}

bool SDisk::Rename(const char* oldName, const char* newName) {
    if (!IsFile(oldName) || newName == nullptr || newName[0] == 0) {
        return false;
    }
    if (renameat2(AT_FDCWD, oldName, AT_FDCWD, newName, RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    // The file system cannot refuse by itself: look first.
    return !Exists(newName) && rename(oldName, newName) == 0;
}

SString SDisk::MakeUniqueName(const char* folder, const char* base, const char* extension) {
    if (!IsFolder(folder)) {
        return SString("");
    }
    SString start(folder);
    if (start.GetAt(start.GetLength() - 1) != '/') {
        start += "/";
    }
    start += base != nullptr ? base : "";
    SString ending("");
    if (extension != nullptr && extension[0] != 0) {
        ending = SString(".") + extension;
    }
    SString candidate = start + ending;
    if (!Exists(candidate.c_str())) {
        return candidate;
    }
    for (int i = 0; i < UNIQUE_TRIES; ++i) {
        candidate = start + SString::FromInt(GetRandom(UNIQUE_RANGE)) + ending;
        if (!Exists(candidate.c_str())) {
            return candidate;
        }
    }
    return SString("");
}

bool SDisk::CreateFolder(const char* path, bool parents) {
    if (path == nullptr || path[0] == 0) {
        return false;
    }
    SPath folder;
    if (!folder.SetFolder(path) || !folder.IsLocal()) {
        return false;
    }
    SString full = folder.GetFullPath();
    if (IsFolder(full.c_str())) {
        return true;
    }
    if (!folder.IsFolder()) {
        return false;
    }
    if (mkdir(full.c_str(), 0777) == 0) {
        return true;
    }
    if (errno == EEXIST) {
        return IsFolder(full.c_str());
    }
    if (errno != ENOENT || !parents) {
        return false;
    }
    SString parent = folder.GetParent();
    if (parent.IsEmpty() || !CreateFolder(parent.c_str(), true)) {
        return false;
    }
    return mkdir(full.c_str(), 0777) == 0 || (errno == EEXIST && IsFolder(full.c_str()));
}

bool SDisk::CreateFile(const char* path, bool overwrite, bool parents, unsigned resourceId) {
    SPath file(path);
    if (!file.IsLocal() || !file.HasName()) {
        return false;
    }
    SString full = file.GetFullPath();
    if (parents && !CreateFolder(file.GetFolderPath().c_str(), true)) {
        return false;
    }
    if (!overwrite && Exists(full.c_str())) {
        return false;
    }
    if (resourceId != 0) {
        const void* data = nullptr;
        int size = 0;
        if (!FindResourceData("BINARY", resourceId, &data, &size)) {
            return false;
        }
        if (!overwrite) {
            // Claim the name first, so that a file made meanwhile is not replaced.
            int fd = open(full.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (fd < 0) {
                return false;
            }
            close(fd);
        }
        if (WriteFileAtomic(full.c_str(), data, size)) {
            return true;
        }
        if (!overwrite) {
            unlink(full.c_str());
        }
        return false;
    }
    int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (overwrite ? O_TRUNC : O_EXCL);
    int fd = open(full.c_str(), flags, 0666);
    if (fd < 0) {
        return false;
    }
    return close(fd) == 0;
}

bool SDisk::Delete(const char* path, void* /*window*/, bool /*showProgress*/, bool /*confirm*/) {
    SPath target(path);
    if (!target.IsLocal()) {
        return false;
    }
    target.SetTrailingSeparator(false);
    SString full = target.GetFullPath();
    if (full == "/" || !Exists(full.c_str())) {
        return false;
    }
    GFile* file = g_file_new_for_path(full.c_str());
    GError* error = nullptr;
    gboolean trashed = g_file_trash(file, nullptr, &error);
    if (error != nullptr) {
        g_error_free(error);
    }
    g_object_unref(file);
    return trashed != FALSE;
}

// Confinement of writes.

namespace {

// The real path of an existing file or folder, links followed; empty when
// it cannot be had. The kernel names what it opened in one step, where
// realpath() would ask for every part of the path in turn (a cost growing
// with the square of the depth).
std::string ResolvePath(const char* path) {
    int fd = open(path, O_PATH | O_CLOEXEC);
    if (fd < 0) {
        return std::string();
    }
    {
        char link[64];
        snprintf(link, sizeof(link), "/proc/self/fd/%d", fd);
        std::string result(PATH_MAX, '\0');
        ssize_t length = readlink(link, result.data(), result.size());
        close(fd);
        if (length > 0 && static_cast<size_t>(length) < result.size() && result[0] == '/') {
            result.resize(static_cast<size_t>(length));
            return result;
        }
    }
    char* real = realpath(path, nullptr);
    if (real == nullptr) {
        return std::string();
    }
    std::string result(real);
    free(real);
    return result;
}

// The real path of path: of the file itself when it exists (links
// followed), else of its folder with the last name added; empty when
// neither resolves.
std::string RealPathOf(const char* path) {
    std::string resolved = ResolvePath(path);
    if (!resolved.empty()) {
        return resolved;
    }
    struct stat status;
    if (lstat(path, &status) == 0) {
        return std::string(); // a dangling link: where it leads is unknown
    }
    std::string whole(path);
    while (whole.size() > 1 && whole.back() == '/') {
        whole.pop_back();
    }
    size_t slash = whole.rfind('/');
    std::string folder = slash == std::string::npos ? "." : whole.substr(0, slash == 0 ? 1 : slash);
    std::string name = slash == std::string::npos ? whole : whole.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") {
        return std::string();
    }
    std::string result = ResolvePath(folder.c_str());
    if (result.empty()) {
        return std::string();
    }
    if (result.back() != '/') {
        result.push_back('/');
    }
    return result + name;
}

} // namespace

bool IsInsideFolder(const char* folder, const char* path) {
    if (folder == nullptr || path == nullptr || folder[0] == 0 || path[0] == 0) {
        return false;
    }
    std::string base = ResolvePath(folder);
    if (base.empty()) {
        return false;
    }
    std::string target = RealPathOf(path);
    if (target.empty()) {
        return false;
    }
    if (base == "/") {
        return true;
    }
    return target == base ||
           (target.size() > base.size() && target.compare(0, base.size(), base) == 0 &&
            target[base.size()] == '/');
}

bool HasDotDotPart(const char* relative) {
    if (relative == nullptr) {
        return false;
    }
    const char* part = relative;
    for (;;) {
        const char* end = strchr(part, '/');
        size_t length = end != nullptr ? static_cast<size_t>(end - part) : strlen(part);
        if (length == 2 && part[0] == '.' && part[1] == '.') {
            return true;
        }
        if (end == nullptr) {
            return false;
        }
        part = end + 1;
    }
}
