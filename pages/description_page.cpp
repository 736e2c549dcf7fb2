#include "pages/description_page.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "pages/description.h"
#include "pages/resources.h"

namespace {

// The first bytes of every page this program writes; a page that starts
// otherwise is the user's own.
constexpr const char* PAGE_START = "<html><head>\r\n<base href=\"";

const char* const HEADING_START =
    "<font class=txtChapter><img src=\"Images/icon.gif\" align=absmiddle> ";
const char* const HEADING_END =
    "</font><br><table border=0 cellpadding=0 cellspacing=0 width=100%>"
    "<tr height=4><td></tr><tr height=4><td bgcolor=#1381ff></tr></table><br>"
    "<div class=txt>";

SString WithSeparator(const char* folder) {
    SString text(folder != nullptr ? folder : "");
    if (!text.IsEmpty() && text.GetAt(text.GetLength() - 1) != '/') {
        text += '/';
    }
    return text;
}

// Writes text followed by CR LF; false when not all of it was taken.
bool PutLine(SFile* page, const SString& text) {
    int length = text.GetLength();
    return page->Write(text.c_str(), length) == (length > 0 ? length : 0) &&
           page->Write("\r\n", 2) == 2;
}

// Deletes the page when this program generated it.
void DeleteGeneratedPage(const SString& path) {
    SFilePath page;
    if (!page.Open(path.c_str(), false, false, true, false)) {
        return;
    }
    int length = static_cast<int>(strlen(PAGE_START));
    SString start = page.ReadText(length);
    page.Close();
    if (start == PAGE_START) {
        std::remove(path.c_str());
    }
}

} // namespace

bool WriteDescriptionPage(SFile* page, const char* root, const SString& text,
                          const PKnownFolders* known) {
    EnsurePagesResources();
    SFileMem style;
    if (page == nullptr || !style.LoadResource("BINARY", RESOURCE_DESCRIPTION_STYLE)) {
        return false;
    }
    bool isWritten = PutLine(page, "<html><head>") &&
                     PutLine(page, SString("<base href=\"") + (root != nullptr ? root : "") + "\">");
    isWritten = isWritten && page->Write(style.GetData(), style.GetSize()) == style.GetSize();
    isWritten = isWritten && PutLine(page, "</head>") &&
                PutLine(page, "<body leftmargin=6 topmargin=6 rightmargin=6 bottommargin=6 "
                              "marginwidth=6 marginheight=6>") &&
                PutLine(page, "<div class=txt>");

    bool isStarted = false;
    bool isInGroup = false;
    bool groupHasText = false;
    int pendingBlanks = 0;
    int length = text.GetLength();
    const char* data = text.c_str();
    int start = 0;
    // A CR LF, a lone CR and a lone LF each end a line; nothing follows the
    // last line, and an empty text is one empty line.
    while (isWritten && start <= length) {
        int end = start;
        while (end < length && data[end] != '\r' && data[end] != '\n') {
            ++end;
        }
        SString line;
        line.Assign(data + start, end - start);
        if (end < length && data[end] == '\r' && end + 1 < length && data[end + 1] == '\n') {
            start = end + 2;
        } else {
            start = end + 1;
        }
        SString title;
        switch (GetDescriptionLineKind(line, &title)) {
        case DESCRIPTION_EMPTY:
            // Blank lines straight after a heading vanish.
            if (!isInGroup || groupHasText) {
                ++pendingBlanks;
            }
            break;
        case DESCRIPTION_HEADING:
            pendingBlanks = 0;
            if (isInGroup) {
                isWritten = PutLine(page, "</div><br><br>");
            } else if (isStarted) {
                isWritten = PutLine(page, "<br><br><br>");
            }
            isStarted = true;
            isInGroup = true;
            groupHasText = false;
            isWritten = isWritten && PutLine(page, SString(HEADING_START) + title + HEADING_END);
            break;
        default:
            isStarted = true;
            groupHasText = groupHasText || isInGroup;
            for (; pendingBlanks > 0 && isWritten; --pendingBlanks) {
                isWritten = PutLine(page, "<br>");
            }
            pendingBlanks = 0;
            isWritten = isWritten && PutLine(page, ConvertDescriptionLine(line, known));
            break;
        }
    }
    if (isWritten && isInGroup) {
        isWritten = PutLine(page, "</div><br><br>");
    }
    return isWritten && PutLine(page, "</div></body></html>");
}

namespace {

// The reason of a failed write: the system's words for errno when it has
// any.
SString WriteFailure(const SString& path) {
    int error = errno;
    SString text = SString("cannot write ") + path;
    if (error != 0) {
        text += SString(": ") + strerror(error);
    }
    return text;
}

// Builds one page; base is the root with its trailing "/".
bool BuildPage(const SString& base, const char* relative, const PKnownFolders* known,
               SString* reason) {
    SString ignored;
    SString& why = reason != nullptr ? *reason : ignored;
    why.Empty();
    if (relative == nullptr || relative[0] == 0 || relative[0] == '/' ||
        HasDotDotPart(relative)) {
        why = SString("the folder lies outside the root: ") + (relative != nullptr ? relative : "");
        return false;
    }
    SString source = base + relative + ".txt";
    SString target = base + relative + ".htm";
    SDisk disk;
    SString text;
    if (!IsInsideFolder(base.c_str(), target.c_str())) {
        why = SString("the page would be written outside the root: ") + target;
        return false;
    }
    if (!disk.IsFile(source.c_str()) || !ReadDescriptionFile(source.c_str(), text)) {
        if (disk.IsFile(target.c_str())) {
            DeleteGeneratedPage(target);
        }
        why = SString("no description file ") + source;
        return false;
    }
    SFilePath page;
    errno = 0;
    if (!page.OpenReplace(target.c_str())) {
        why = WriteFailure(target);
        return false;
    }
    // The temporary file stands in for the page until Commit, so the old
    // page stays whole when anything fails.
    errno = 0;
    if (!WriteDescriptionPage(&page, base.c_str(), text, known) || !page.Commit()) {
        why = WriteFailure(target);
        return false;
    }
    return true;
}

// The folder that holds the page of relative, where its temporary file is
// made.
SString PageFolder(const SString& base, const char* relative) {
    SString folder = base + relative;
    int slash = folder.ReverseFind('/');
    return slash >= 0 ? folder.Left(slash + 1) : base;
}

} // namespace

bool BuildDescriptionPage(const char* root, const char* relative, const PKnownFolders* known,
                          SString* reason) {
    if (reason != nullptr) {
        reason->Empty();
    }
    if (root == nullptr || relative == nullptr || relative[0] == 0) {
        if (reason != nullptr) {
            *reason = "no folder given";
        }
        return false;
    }
    SString base = WithSeparator(root);
    if (!HasDotDotPart(relative)) {
        RemoveLeftoverTempFiles(PageFolder(base, relative).c_str());
    }
    return BuildPage(base, relative, known, reason);
}

bool BuildAllDescriptionPages(const char* root, const PKnownFolders& known,
                              const PStatusCallback& status, PPagesResult* result) {
    EnsurePagesResources();
    PPagesResult ignored;
    PPagesResult& report = result != nullptr ? *result : ignored;
    report = PPagesResult();
    SString base = WithSeparator(root);
    SFileMem icon;
    if (icon.LoadResource("BINARY", RESOURCE_HEADING_ICON)) {
        SString images = base + "Images/";
        SDisk disk;
        if (!IsInsideFolder(base.c_str(), images.c_str())) {
            report.firstFailure = SString("the Images folder leads outside the root: ") + images;
            return false;
        }
        if (!disk.CreateFolder(images.c_str(), true) && !disk.IsFolder(images.c_str())) {
            report.firstFailure = SString("cannot make the Images folder in ") + base;
            return false;
        }
        int attributes = disk.GetAttributes(images.c_str());
        if (attributes >= 0 && (attributes & DISK_HIDDEN) == 0) {
            disk.SetAttributes(images.c_str(), attributes | DISK_HIDDEN);
        }
        RemoveLeftoverTempFiles(images.c_str());
        SString iconPath = images + "icon.gif";
        errno = 0;
        if (!IsInsideFolder(base.c_str(), iconPath.c_str()) ||
            !WriteFileAtomic(iconPath.c_str(), icon.GetData(), icon.GetSize())) {
            ++report.failed;
            report.firstFailure = WriteFailure(iconPath);
        }
    }
    // Each folder that receives pages is cleared of leftovers once.
    std::set<std::string> cleaned;
    int total = known.TreeOrder.GetCount();
    for (int i = 0; i < total; ++i) {
        if (status) {
            int percent = static_cast<int>(i * 100.0 / total);
            SString text;
            text.Format("Building... %d%%", percent);
            status(text, percent);
        }
        SString relativeText = known.TreeOrder.GetText(i);
        const char* relative = relativeText.c_str();
        SString folder = PageFolder(base, relative);
        if (cleaned.insert(folder.c_str()).second) {
            RemoveLeftoverTempFiles(folder.c_str());
        }
        SString reason;
        SString source = base + relative + ".txt";
        bool hasSource = SDisk().IsFile(source.c_str());
        if (BuildPage(base, relative, &known, &reason)) {
            ++report.written;
        } else if (hasSource) {
            // A folder without a description has no page; anything else
            // that kept a page from being written is a failure.
            if (report.failed++ == 0) {
                report.firstFailure = reason;
            }
        }
    }
    if (status) {
        status("Ready.", 100);
    }
    return true;
}
