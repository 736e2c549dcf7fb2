#include "pages/description.h"

#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/path.h"
#include "foundation/walk_guard.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// Known folders.

PKnownFolders::PKnownFolders() {
    FolderNames.SetFlags(SORT_NOCASE);
}

void PKnownFolders::Clear() {
    FolderNames.DeleteAll();
    FolderPaths.DeleteAll();
    TreeOrder.DeleteAll();
    FolderNames.SetFlags(SORT_NOCASE);
}

bool PKnownFolders::Load(const char* root, void (*onFolder)(int, void*), void* context) {
    Clear();
    SDisk disk;
    if (root == nullptr || !disk.IsFolder(root)) {
        return false;
    }
    SString base(root);
    if (!base.IsEmpty() && base.GetAt(base.GetLength() - 1) != '/') {
        base += '/';
    }
    SWalkGuard guard;
    guard.Start(base.c_str());
    // The walk keeps the folders still to go into on a stack of its own,
    // each level's children in listing order, so depth never costs the
    // call stack.
    struct Level {
        SStringArray children; // paths relative to the root
        int next = 0;
    };
    std::vector<Level> stack;
    stack.emplace_back();
    LoadChildren(base, SString(""), guard, stack.back().children);
    while (!stack.empty()) {
        Level& level = stack.back();
        if (level.next >= level.children.GetCount()) {
            stack.pop_back();
            continue;
        }
        SString child = level.children.GetText(level.next++);
        TreeOrder.Add(child);
        if (onFolder != nullptr) {
            onFolder(TreeOrder.GetCount(), context);
        }
        Level below;
        LoadChildren(base, child + "/", guard, below.children);
        if (below.children.GetCount() > 0) {
            stack.push_back(std::move(below));
        }
    }
    return true;
}

void PKnownFolders::LoadChildren(const SString& root, const SString& relative, SWalkGuard& guard,
                                 SStringArray& children) {
    // Subfolders that are not hidden and hold a subfolder themselves; the
    // listing comes sorted without regard to case. A folder reached through
    // a link is known only when the guard lets the walk into it.
    SStringArray found;
    SDisk disk;
    disk.Enumerate(&found, (root + relative + "*.*").c_str(),
                   ENUM_FOLDERS | ENUM_NO_HIDDEN | ENUM_NO_FOLDERS_WITHOUT_FOLDERS);
    for (int i = 0; i < found.GetCount(); ++i) {
        // A full path ending in "/"; the name is its last part, whatever
        // bytes it holds (a tab or a line feed included).
        std::string path(found.GetText(i).c_str());
        if (path.size() < 2 || path.back() != '/') {
            continue;
        }
        path.pop_back();
        size_t slash = path.rfind('/');
        std::string nameText = slash == std::string::npos ? path : path.substr(slash + 1);
        struct stat status;
        bool linked = lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
        int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        bool entered = fd >= 0 && guard.Enter(fd, linked);
        if (fd >= 0) {
            close(fd);
        }
        if (!entered || nameText.empty()) {
            continue;
        }
        SString name(nameText.c_str());
        SString childPath = relative + name;
        FolderNames.Add(name);
        FolderPaths.Add(childPath);
        children.Add(childPath);
    }
}

int PKnownFolders::FindName(const SString& name) const {
    for (int i = 0; i < FolderNames.GetCount(); ++i) {
        const SString* entry = FolderNames.GetAt(i);
        if (entry != nullptr && entry->CompareNoCase(name.c_str()) == 0) {
            return i;
        }
    }
    return -1;
}

// Line conversion.

namespace {

// The class of a mark's tag, compared without regard to case; null for an
// unknown tag. isImage is set for the image tag.
const char* ClassOfTag(const SString& tag, bool& isImage) {
    isImage = false;
    if (tag.CompareNoCase("image") == 0) {
        isImage = true;
        return "";
    }
    if (tag.CompareNoCase("genre") == 0) {
        return "txtGenre";
    }
    if (tag.CompareNoCase("name") == 0) {
        return "txtName";
    }
    if (tag.CompareNoCase("title") == 0) {
        return "txtTitle";
    }
    if (tag.CompareNoCase("quote") == 0) {
        return "txtQuote";
    }
    return nullptr;
}

// The first c in s from start up to (not including) end, or -1.
int FindBefore(const SString& s, char c, int start, int end) {
    if (start >= end) {
        return -1;
    }
    return s.Find(c, start, end - start);
}

// The HTML of one mark from a to b (both "#"), or false when the text there
// is no mark and stays as it stands.
bool ConvertMark(const SString& s, int a, int b, const PKnownFolders* known, SString& result) {
    // The tag ends at the first blank; a mark needs one before its end.
    int c = FindBefore(s, ' ', a + 1, b);
    if (c < 0) {
        return false;
    }
    SString tag = s.Between(a + 1, c);
    int d = FindBefore(s, '@', c + 1, b);
    bool hasLink = d >= 0;
    SString text = s.Between(c + 1, hasLink ? d : b);
    SString link = hasLink ? s.Between(d + 1, b) : SString("");
    text.Trim();
    bool isImage = false;
    const char* className = ClassOfTag(tag, isImage);
    if (isImage) {
        // The link of an image is dropped.
        result = SString("<img src=\"Images\\") + text + "\">";
        return true;
    }
    if (className == nullptr) {
        return false;
    }
    if (!hasLink && known != nullptr && tag.CompareNoCase("name") == 0) {
        int index = known->FindName(text);
        if (index >= 0) {
            hasLink = true;
            link = known->FolderPaths.GetText(index);
        }
    }
    if (hasLink) {
        result = SString("<a href=\"") + link + ".link\" class=" + className + ">" + text + "</a>";
    } else {
        result = SString("<font class=") + className + ">" + text + "</font>";
    }
    return true;
}

} // namespace

SString ConvertDescriptionLine(const SString& line, const PKnownFolders* known) {
    // The marks, scanned once from left to right; what a mark becomes is
    // never scanned again. Built in a std::string, whose growth is
    // geometric, so that a line of megabytes stays linear.
    std::string s;
    s.reserve(static_cast<size_t>(line.GetLength()) + 16);
    const char* text = line.c_str();
    int length = line.GetLength();
    int p = 0;
    while (p < length) {
        int a = line.Find('#', p);
        if (a < 0) {
            break;
        }
        int b = line.Find('#', a + 1);
        if (b < 0) {
            break;
        }
        SString result;
        s.append(text + p, static_cast<size_t>(a - p));
        if (ConvertMark(line, a, b, known, result)) {
            s.append(result.c_str(), static_cast<size_t>(result.GetLength()));
        } else {
            s.append(text + a, static_cast<size_t>(b + 1 - a));
        }
        p = b + 1;
    }
    if (p < length) {
        s.append(text + p, static_cast<size_t>(length - p));
    }

    // Bullets: a "." after a tab, and a "." that starts the line. Leading
    // tabs become nested indented blocks, which end the line themselves.
    size_t n = s.find_first_not_of('\t');
    n = n == std::string::npos ? s.size() : n;
    std::string out;
    out.reserve(s.size() + n * 24 + 8);
    for (size_t i = 0; i < n; ++i) {
        out += "<div class=txtTab>";
    }
    for (size_t i = n; i < s.size(); ++i) {
        char c = s[i];
        if (c == '.' && (i == 0 || s[i - 1] == '\t')) {
            out += DESCRIPTION_BULLET;
        } else {
            out += c;
        }
    }
    if (n == 0) {
        out += "<br>";
    }
    for (size_t i = 0; i < n; ++i) {
        out += "</div>";
    }
    SString result;
    result.Assign(out.data(), static_cast<int>(out.size()));
    return result;
}

int GetDescriptionLineKind(const SString& line, SString* title) {
    if (line.IsEmpty()) {
        return DESCRIPTION_EMPTY;
    }
    int open = line.Find('{');
    int close = line.Find('}');
    if (open < 0 || close < 0 || close < open) {
        return DESCRIPTION_TEXT;
    }
    if (title != nullptr) {
        *title = line.Between(open + 1, close);
    }
    return DESCRIPTION_HEADING;
}

bool ReadDescriptionFile(const char* path, SString& text) {
    text = "";
    SFileMem file;
    if (path == nullptr || !file.LoadFile(path)) {
        return false;
    }
    const char* data = file.GetData();
    int size = file.GetSize();
    if (size == 0 || data == nullptr) {
        return true;
    }
    if (IsValidUtf8(data, size)) {
        text.Assign(data, size);
    } else {
        text = Windows1252ToUtf8(data, size);
    }
    return true;
}
