// The choosers: requests handed to the platform, answers checked.
#include "toolkit/selector.h"

#include "foundation/network.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"

namespace {

bool Run(HWND owner, const SChooserRequest& request, SChooserAnswer* answer) {
    return GetPlatform()->RunChooser(owner, request, answer) && answer->accepted;
}

SString OrEmpty(const char* text) {
    return SString(text != nullptr ? text : "");
}

int ClosedAnswer(unsigned flags) {
    switch (flags & 0xF) {
    case MB_OK:
        return IDOK;
    case MB_YESNO:
        return IDNO;
    default:
        return IDCANCEL;
    }
}

int NetworkMessageBox(void* window, const char* text, const char* caption, unsigned flags) {
    auto* owner = static_cast<SWnd*>(window);
    return MessageBox(owner != nullptr ? owner->GetHandle() : 0, text, caption, flags);
}

} // namespace

int MessageBox(HWND owner, const char* text, const char* caption, unsigned flags) {
    SChooserRequest request;
    request.kind = SChooserRequest::MESSAGE;
    request.title = OrEmpty(caption);
    request.text = OrEmpty(text);
    request.boxFlags = flags;
    SChooserAnswer answer;
    GetPlatform()->RunChooser(owner, request, &answer);
    int button = answer.button;
    bool known = button == IDOK || button == IDCANCEL || button == IDYES || button == IDNO;
    return answer.accepted && known ? button : ClosedAnswer(flags);
}

void InstallMessageBox() {
    SetMessageBoxHook(NetworkMessageBox);
}

SSelector::SSelector(SWnd* ownerWnd) : owner(ownerWnd != nullptr ? ownerWnd->GetHandle() : 0) {}

bool SSelector::OpenFile(const char* title, const std::vector<SString>& filters, const char* folder,
                         SStringArray* files, bool multiple) {
    SChooserRequest request;
    request.kind = SChooserRequest::OPEN_FILE;
    request.title = OrEmpty(title);
    request.filters = filters;
    request.folder = OrEmpty(folder);
    request.multiple = multiple;
    SChooserAnswer answer;
    if (!Run(owner, request, &answer) || answer.paths.empty() || files == nullptr) {
        return false;
    }
    files->DeleteAll();
    for (size_t i = 0; i < answer.paths.size() && (multiple || i == 0); ++i) {
        files->Add(answer.paths[i]);
    }
    return true;
}

bool SSelector::SaveFile(const char* title, const std::vector<SString>& filters, const char* folder,
                         const char* name, SString* path) {
    SChooserRequest request;
    request.kind = SChooserRequest::SAVE_FILE;
    request.title = OrEmpty(title);
    request.filters = filters;
    request.folder = OrEmpty(folder);
    request.name = OrEmpty(name);
    SChooserAnswer answer;
    if (!Run(owner, request, &answer) || answer.paths.empty() || answer.paths[0].IsEmpty() ||
        path == nullptr) {
        return false;
    }
    *path = answer.paths[0];
    return true;
}

bool SSelector::Folder(const char* title, const char* folder, SString* path) {
    SChooserRequest request;
    request.kind = SChooserRequest::FOLDER;
    request.title = OrEmpty(title);
    request.folder = OrEmpty(folder);
    SChooserAnswer answer;
    if (!Run(owner, request, &answer) || answer.paths.empty() || answer.paths[0].IsEmpty() ||
        path == nullptr) {
        return false;
    }
    *path = answer.paths[0];
    return true;
}

bool SSelector::Color(const char* title, uint32_t* color) {
    SChooserRequest request;
    request.kind = SChooserRequest::COLOR;
    request.title = OrEmpty(title);
    request.color = color != nullptr ? *color & 0xFFFFFF : 0;
    SChooserAnswer answer;
    if (!Run(owner, request, &answer) || color == nullptr) {
        return false;
    }
    *color = answer.color & 0xFFFFFF;
    return true;
}

bool SSelector::Font(const char* title, SString* face, double* points, unsigned* flags) {
    SChooserRequest request;
    request.kind = SChooserRequest::FONT;
    request.title = OrEmpty(title);
    request.fontFace = face != nullptr ? *face : SString();
    request.fontPoints = points != nullptr ? *points : 0;
    request.fontFlags = flags != nullptr ? *flags : 0;
    SChooserAnswer answer;
    if (!Run(owner, request, &answer) || answer.fontFace.IsEmpty() || answer.fontPoints <= 0) {
        return false;
    }
    if (face != nullptr) {
        *face = answer.fontFace;
    }
    if (points != nullptr) {
        *points = answer.fontPoints;
    }
    if (flags != nullptr) {
        *flags = answer.fontFlags;
    }
    return true;
}
