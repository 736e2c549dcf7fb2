#include "controls/browser_ctrl.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "controls/web/webkit_engine.h"
#include "foundation/disk.h"

namespace {

SWebEngineFactory& Factory() {
    static SWebEngineFactory factory = nullptr;
    return factory;
}

// A local path as a file URL: bytes other than letters, digits, "/" and
// "-._~" are escaped, so "#", "?", "%" and blanks in names stay names.
std::string FileUrl(const char* path) {
    static const char digits[] = "0123456789ABCDEF";
    std::string url = "file://";
    for (const char* p = path; *p != '\0'; ++p) {
        auto c = static_cast<unsigned char>(*p);
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
            c == '/' || c == '-' || c == '.' || c == '_' || c == '~') {
            url += static_cast<char>(c);
        } else {
            url += '%';
            url += digits[c >> 4];
            url += digits[c & 15];
        }
    }
    return url;
}

} // namespace

void SetWebEngineFactory(SWebEngineFactory factory) {
    Factory() = factory;
}

SBrowserCtrl::SBrowserCtrl() = default;

SBrowserCtrl::~SBrowserCtrl() {
    Shut();
    RemoveTempFile();
}

void SBrowserCtrl::Shut() {
    engine.reset(); // its reports stop here; the widget lives on in the platform
    hosted.Detach();
}

bool SBrowserCtrl::NavigateUrl(const char* url, const char* newTag) {
    if (engine == nullptr || url == nullptr) {
        return false;
    }
    tag = newTag != nullptr ? newTag : "";
    // A local path is loaded as its file URL.
    return engine->Load(url[0] == '/' ? FileUrl(url).c_str() : url, history);
}

bool SBrowserCtrl::NavigateHtml(const char* html, const char* newTag, const char* extension) {
    RemoveTempFile();
    if (engine == nullptr || html == nullptr) {
        return false;
    }
    ++tempCounter;
    SDisk disk;
    SString path = disk.GetTempFolder();
    if (!path.IsEmpty() && path.c_str()[path.GetLength() - 1] != '/') {
        path += "/";
    }
    SString name;
    name.Format("melkora_browser_%d_%d", static_cast<int>(getpid()), tempCounter);
    path += name;
    if (extension != nullptr && extension[0] != '\0') {
        if (extension[0] != '.') {
            path += ".";
        }
        path += extension;
    }
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    size_t length = std::strlen(html);
    bool written = std::fwrite(html, 1, length, file) == length;
    written = std::fclose(file) == 0 && written;
    tempFile = path;
    if (!written) {
        RemoveTempFile();
        return false;
    }
    return NavigateUrl(FileUrl(path.c_str()).c_str(), newTag);
}

void SBrowserCtrl::RemoveTempFile() {
    if (!tempFile.IsEmpty()) {
        std::remove(tempFile.c_str());
        tempFile = "";
    }
}

void SBrowserCtrl::SetSilent(bool silent) {
    if (engine != nullptr) {
        engine->SetSilent(silent);
    }
}

SString SBrowserCtrl::GetAddress() const {
    return engine != nullptr ? engine->GetAddress() : SString();
}

SString SBrowserCtrl::GetTitle() const {
    return engine != nullptr ? engine->GetTitle() : SString();
}

SString SBrowserCtrl::GetStatusText() const {
    return engine != nullptr ? engine->GetStatusText() : SString();
}

LRESULT SBrowserCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SM_CREATE: {
        SWebEngineFactory factory = Factory() != nullptr ? Factory() : CreateWebKitEngine;
        engine = factory(this);
        if (engine == nullptr || !hosted.Attach(this, engine->GetWidget())) {
            engine.reset();
            return -1;
        }
        break;
    }
    case WM_DESTROY:
        Shut();
        break;
    case WM_MOVE:
    case WM_SIZE:
    case WM_SHOWWINDOW:
    case SM_PARENT_SIZE:
        hosted.Sync();
        break;
    case WM_SETFOCUS:
        hosted.Focus(true);
        break;
    case WM_KILLFOCUS:
        hosted.Focus(false);
        break;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}

LRESULT SBrowserCtrl::Tell(unsigned message, LPARAM lParam) {
    HWND parent = GetHandle() != 0 ? GetParent() : 0;
    if (parent == 0) {
        return 0; // no window: the report is dropped
    }
    return SendMessage(parent, message, reinterpret_cast<WPARAM>(static_cast<SWnd*>(this)), lParam);
}

bool SBrowserCtrl::OnBeforeNavigate(const char* url) {
    return Tell(SN_WEB_BEFORE_NAVIGATE, reinterpret_cast<LPARAM>(url != nullptr ? url : "")) != 0;
}

void SBrowserCtrl::OnProgress(int done, int total) {
    if (done < 0) {
        return;
    }
    uint64_t pair =
        (static_cast<uint64_t>(static_cast<uint32_t>(total)) << 32) | static_cast<uint32_t>(done);
    Tell(SN_WEB_PROGRESS, static_cast<LPARAM>(pair));
}

void SBrowserCtrl::OnTitleChanged() {
    Tell(SN_WEB_TITLE, 0);
}

void SBrowserCtrl::OnStatusTextChanged() {
    Tell(SN_WEB_STATUS_TEXT, 0);
}

void SBrowserCtrl::OnDocumentDone(bool failed) {
    Tell(SN_WEB_DOCUMENT_DONE, failed ? 1 : 0);
}

void SBrowserCtrl::OnQuit() {
    Tell(SN_WEB_QUIT, 0);
}
