#include "pages/book_links.h"

#include <cctype>
#include <cstring>
#include <vector>

#include "library/media.h"

namespace {

int HexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// The non-empty parts of a path, "/" between them.
std::vector<SString> SplitParts(const char* path) {
    std::vector<SString> parts;
    SString part;
    for (const char* p = path;; ++p) {
        if (*p == '/' || *p == 0) {
            if (!part.IsEmpty()) {
                parts.push_back(part);
                part = "";
            }
            if (*p == 0) {
                break;
            }
        } else {
            part += *p;
        }
    }
    return parts;
}

} // namespace

SString LocalPathOfUrl(const char* url) {
    if (url == nullptr) {
        return SString("");
    }
    const char* p = url;
    if (strncasecmp(url, "file:", 5) == 0) {
        p = url + 5;
        if (strncmp(p, "//", 2) == 0) {
            p += 2;
            if (*p != '/') {
                // "file://host/path": the host is dropped, the path kept.
                const char* slash = strchr(p, '/');
                if (slash == nullptr) {
                    return SString("");
                }
                p = slash;
            }
        }
    }
    if (*p != '/') {
        return SString("");
    }
    SString path;
    for (; *p != 0 && *p != '?' && *p != '#'; ++p) {
        int high = *p == '%' ? HexValue(p[1]) : -1;
        int low = high >= 0 ? HexValue(p[2]) : -1;
        if (low >= 0) {
            char c = static_cast<char>(high * 16 + low);
            if (c == 0) {
                return SString("");
            }
            path += c;
            p += 2;
        } else {
            path += *p;
        }
    }
    return path;
}

PBookLink DecideBookLink(const char* url, const char* root, bool ctrl) {
    PBookLink link;
    if (root == nullptr || root[0] != '/') {
        return link;
    }
    SString path = LocalPathOfUrl(url);
    if (path.IsEmpty()) {
        return link;
    }
    std::vector<SString> rootParts = SplitParts(root);
    std::vector<SString> parts = SplitParts(path.c_str());
    if (parts.size() <= rootParts.size()) {
        return link;
    }
    SString folder("/");
    for (const SString& part : rootParts) {
        folder += part;
        folder += "/";
    }
    // The folders below the root, then the last part.
    for (size_t i = rootParts.size(); i < parts.size(); ++i) {
        if (parts[i] == "." || parts[i] == "..") {
            return link;
        }
        if (i + 1 < parts.size()) {
            folder += parts[i];
            folder += "/";
        }
    }
    const SString& name = parts.back();
    int dot = name.ReverseFind('.');
    if (dot <= 0) {
        return link;
    }
    SString extension(name.c_str() + dot + 1);
    SString stem = name.Left(dot);
    if (extension.CompareNoCase("link") == 0) {
        link.action = PBookLinkAction::OpenFolder;
        link.path = folder;
        link.select = stem;
    } else if (extension.CompareNoCase("album") == 0) {
        link.action = PBookLinkAction::PlayAlbum;
        link.path = folder + stem + "/";
    } else {
        int media = GetMediaClassOfExtension(extension.c_str());
        if (media != MEDIA_SONG && media != MEDIA_VIDEO && media != MEDIA_RADIO) {
            return link;
        }
        link.action = ctrl ? PBookLinkAction::QueueSong : PBookLinkAction::PlaySong;
        link.path = folder + name;
    }
    return link;
}
