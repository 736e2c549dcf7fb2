#include "foundation/path.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <vector>

#include "foundation/array.h"

namespace {

// Characters that no path may hold, besides the control characters.
bool IsRefusedCharacter(unsigned char c) {
    return c < 32 || c == '"' || c == '*' || c == '<' || c == '>' || c == '?';
}

bool IsUncText(const char* text) {
    return text[0] == '/' && text[1] == '/' && text[2] != '/' && text[2] != 0;
}

// The absolute form of a local text: completed with the current folder when
// relative, runs of "/" made one, "." dropped and ".." taking away the folder
// before it (never above the root). A text whose last element is "." or
// "..", or that ends in "/", names a folder and keeps a final "/". Empty
// when the current folder cannot be read.
SString MakeAbsolute(const char* text) {
    SString full;
    if (text[0] != '/') {
        char* current = getcwd(nullptr, 0);
        if (current == nullptr) {
            return SString();
        }
        full = current;
        free(current);
        full += "/";
    }
    full += text;

    SString result("/");
    bool endsAsFolder = false;
    const char* cursor = full.c_str();
    while (*cursor != 0) {
        if (*cursor == '/') {
            ++cursor;
            endsAsFolder = true;
            continue;
        }
        const char* start = cursor;
        while (*cursor != 0 && *cursor != '/') {
            ++cursor;
        }
        int length = static_cast<int>(cursor - start);
        if (length == 1 && start[0] == '.') {
            endsAsFolder = true;
            continue;
        }
        if (length == 2 && start[0] == '.' && start[1] == '.') {
            // result always ends in "/" here; cut back to the "/" before it.
            int cut = result.ReverseFind('/', result.GetLength() - 2);
            if (cut >= 0) {
                result.SetLength(cut + 1);
            }
            endsAsFolder = true;
            continue;
        }
        result.Append(start, length);
        result += "/";
        endsAsFolder = false;
    }
    if (!endsAsFolder && result.GetLength() > 1) {
        result.SetLength(result.GetLength() - 1);
    }
    return result;
}

} // namespace

SPath::SPath(const char* text) {
    Set(text);
}

SPath::~SPath() = default;

bool SPath::Set(const char* newText) {
    type = PATH_INVALID;
    text = "";
    path = "";
    if (newText == nullptr || newText[0] == 0) {
        return false;
    }
    for (const char* c = newText; *c != 0; ++c) {
        if (IsRefusedCharacter(static_cast<unsigned char>(*c))) {
            return false;
        }
    }
    text = newText;

    int scheme = text.Find("://");
    if (scheme >= 1) {
        // The first ":" must be the one that opens "://".
        if (text.Find(':') != scheme) {
            return false;
        }
        path = text;
        path.Replace('\\', '/');
        type = PATH_URL;
        return true;
    }
    if (IsUncText(newText)) {
        path = text;
        type = PATH_UNC;
        return true;
    }
    path = MakeAbsolute(newText);
    if (path.IsEmpty()) {
        return false;
    }
    type = PATH_LOCAL;
    return true;
}

bool SPath::SetFolder(const char* newText) {
    if (newText == nullptr || newText[0] == 0) {
        return Set(newText);
    }
    size_t length = strlen(newText);
    if (newText[length - 1] == '/') {
        return Set(newText);
    }
    SString folder(newText);
    folder += "/";
    return Set(folder.c_str());
}

void SPath::Assign(const SPath& other) {
    SString full = other.GetFullPath();
    text = "";
    path = full;
    type = other.type;
}

bool SPath::SetTrailingSeparator(bool on) {
    bool old = trailingSeparator;
    trailingSeparator = on;
    return old;
}

SPath::Layout SPath::GetLayout() const {
    Layout layout;
    int length = path.GetLength();
    switch (type) {
    case PATH_LOCAL:
        layout.rootEnd = 1;
        break;
    case PATH_UNC:
    case PATH_URL: {
        int hostStart = type == PATH_UNC ? 2 : path.Find("://") + 3;
        int separator = hostStart < length ? path.Find('/', hostStart) : -1;
        if (separator < 0) {
            layout.rootEnd = length;
            layout.rootSeparatorMissing = true;
        } else {
            layout.rootEnd = separator + 1;
        }
        break;
    }
    default:
        return layout;
    }
    int last = path.ReverseFind('/');
    bool hasName = !layout.rootSeparatorMissing && last + 1 >= layout.rootEnd;
    layout.nameStart = hasName ? last + 1 : length;
    return layout;
}

SString SPath::GetRawFolder(const Layout& layout) const {
    if (layout.rootSeparatorMissing || layout.nameStart <= layout.rootEnd) {
        return SString("");
    }
    return path.Mid(layout.rootEnd, layout.nameStart - layout.rootEnd);
}

SString SPath::GetRoot() const {
    if (!IsValid()) {
        return SString("");
    }
    Layout layout = GetLayout();
    if (layout.rootSeparatorMissing) {
        return path + "/";
    }
    return path.Left(layout.rootEnd);
}

SString SPath::GetName() const {
    if (!IsValid()) {
        return SString("");
    }
    Layout layout = GetLayout();
    if (layout.nameStart >= path.GetLength()) {
        return SString("");
    }
    return path.Mid(layout.nameStart);
}

SString SPath::GetTitle() const {
    SString name = GetName();
    int dot = name.ReverseFind('.');
    return dot < 0 ? name : name.Left(dot);
}

SString SPath::GetExtension(bool withDot, bool lowerCase) const {
    SString name = GetName();
    int dot = name.ReverseFind('.');
    if (dot < 0 || dot + 1 >= name.GetLength()) {
        return SString("");
    }
    SString extension = name.Mid(dot + 1);
    if (lowerCase) {
        extension.MakeLower();
    }
    return withDot ? SString(".") + extension : extension;
}

SString SPath::GetFolder() const {
    if (!IsValid()) {
        return SString("");
    }
    SString folder = GetRawFolder(GetLayout());
    if (!trailingSeparator && !folder.IsEmpty()) {
        folder.SetLength(folder.GetLength() - 1);
    }
    return folder;
}

SString SPath::GetFolderPath() const {
    if (!IsValid()) {
        return SString("");
    }
    return GetRoot() + GetFolder();
}

SString SPath::GetFullPath() const {
    if (!IsValid()) {
        return SString("");
    }
    if (!trailingSeparator && !HasName()) {
        return GetFolderPath();
    }
    return path;
}

SString SPath::GetParent() const {
    if (!IsValid()) {
        return SString("");
    }
    if (HasName()) {
        return GetFolderPath();
    }
    SString folder = GetRawFolder(GetLayout());
    if (folder.IsEmpty()) {
        return SString("");
    }
    int separator = folder.ReverseFind('/', folder.GetLength() - 2);
    if (separator < 0) {
        return GetRoot();
    }
    return GetRoot() + folder.Left(trailingSeparator ? separator + 1 : separator);
}

SString SPath::GetLastFolder(bool noSeparator) const {
    if (!IsValid()) {
        return SString("");
    }
    SString folder = GetRawFolder(GetLayout());
    if (folder.IsEmpty()) {
        return SString("");
    }
    int separator = folder.ReverseFind('/', folder.GetLength() - 2);
    SString last = folder.Mid(separator + 1);
    if (!trailingSeparator || noSeparator) {
        last.SetLength(last.GetLength() - 1);
    }
    return last;
}

bool SPath::HasName() const {
    return !GetName().IsEmpty();
}

bool SPath::IsFolder() const {
    return IsValid() && !GetRawFolder(GetLayout()).IsEmpty() && !HasName();
}

namespace {

// The parts of a path as GetParts lists them.
std::vector<SString> SplitParts(const SString& root, const SString& folder, const SString& name) {
    std::vector<SString> parts;
    parts.push_back(root);
    int start = 0;
    while (start < folder.GetLength()) {
        int separator = folder.Find('/', start);
        int end = separator < 0 ? folder.GetLength() : separator + 1;
        parts.push_back(folder.Mid(start, end - start));
        start = end;
    }
    parts.push_back(name);
    return parts;
}

} // namespace

int SPath::GetParts(SStringArray* parts) const {
    if (!IsValid()) {
        return 0;
    }
    Layout layout = GetLayout();
    std::vector<SString> pieces = SplitParts(GetRoot(), GetRawFolder(layout), GetName());
    if (parts != nullptr) {
        for (const SString& piece : pieces) {
            parts->Add(piece.c_str());
        }
    }
    return static_cast<int>(pieces.size());
}

SString SPath::GetSlice(int start, int count, bool dropName, char separator) const {
    if (!IsValid() || start < 0 || count == 0) {
        return SString("");
    }
    std::vector<SString> parts = SplitParts(GetRoot(), GetRawFolder(GetLayout()), GetName());
    int total = static_cast<int>(parts.size());
    if (start >= total) {
        return SString("");
    }
    int end = count < 0 || count > total - start ? total : start + count;
    if (dropName && end == total) {
        --end;
    }
    SString slice("");
    for (int i = start; i < end; ++i) {
        slice += parts[i];
    }
    if (separator != '/') {
        slice.Replace('/', separator);
    }
    return slice;
}

bool SPath::IsSame(const SPath* other) const {
    if (other == nullptr || other->type != type) {
        return false;
    }
    if (!IsValid()) {
        return true;
    }
    std::vector<SString> mine = SplitParts(GetRoot(), GetRawFolder(GetLayout()), GetName());
    std::vector<SString> theirs =
        SplitParts(other->GetRoot(), other->GetRawFolder(other->GetLayout()), other->GetName());
    if (mine.size() != theirs.size()) {
        return false;
    }
    for (size_t i = 0; i < mine.size(); ++i) {
        if (mine[i].CompareNoCase(theirs[i].c_str()) != 0) {
            return false;
        }
    }
    return true;
}
