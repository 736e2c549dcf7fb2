#include "panels/wnd_description.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include "foundation/image.h"
#include "pages/description_page.h"
#include "pages/resources.h"
#include "toolkit/notification.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"

namespace {

struct ToolButton {
    int command;
    const char* text;
    unsigned image;
};

// In button order; a zero command is a separator.
constexpr ToolButton TOOL_BUTTONS[] = {
    {DESCRIPTION_CMD_PAGE, "Generate HTML page", RESOURCE_DESC_PAGE},
    {DESCRIPTION_CMD_ALL_PAGES, "Generate all HTML pages", RESOURCE_DESC_ALL_PAGES},
    {0, nullptr, 0},
    {DESCRIPTION_CMD_GROUP, "Set [group] tag", RESOURCE_DESC_GROUP},
    {0, nullptr, 0},
    {DESCRIPTION_CMD_GENRE, "Set [genre] tag", RESOURCE_DESC_GENRE},
    {DESCRIPTION_CMD_NAME, "Set [name] tag", RESOURCE_DESC_NAME},
    {DESCRIPTION_CMD_TITLE, "Set [title] tag", RESOURCE_DESC_TITLE},
    {DESCRIPTION_CMD_QUOTE, "Set [quote] tag", RESOURCE_DESC_QUOTE},
    {DESCRIPTION_CMD_IMAGE, "Set [image] tag", RESOURCE_DESC_IMAGE},
    {0, nullptr, 0},
    {DESCRIPTION_CMD_BOLD, "Set [bold] tag", RESOURCE_DESC_BOLD},
};

const char* TagOfCommand(int command) {
    switch (command) {
    case DESCRIPTION_CMD_GENRE:
        return "genre";
    case DESCRIPTION_CMD_NAME:
        return "name";
    case DESCRIPTION_CMD_TITLE:
        return "title";
    case DESCRIPTION_CMD_QUOTE:
        return "quote";
    case DESCRIPTION_CMD_IMAGE:
        return "image";
    default:
        return nullptr;
    }
}

constexpr uintptr_t ID_TREE = 1;
constexpr uintptr_t ID_EDITOR = 2;

} // namespace

LRESULT PFolderTree::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    HTREEITEM before = GetSelection();
    LRESULT result = STreeCtrl::OnMessage(message, wParam, lParam);
    if (GetHandle() != 0 && GetSelection() != before && onSelect) {
        onSelect(before, GetSelection());
    }
    return result;
}

PWndDescription::PWndDescription(PDescriptionHost* host) : host(host) {
    EnsurePagesResources();
    tree.onSelect = [this](HTREEITEM before, HTREEITEM now) { OnTreeSelect(before, now); };
}

PWndDescription::~PWndDescription() {
    tree.onSelect = nullptr;
    Destroy();
}

bool PWndDescription::Open() {
    if (GetHandle() != 0) {
        if (IsMinimized()) {
            Restore(true);
        }
        if (host != nullptr && !(host->GetRootFolder() == root)) {
            ReloadFolders();
        }
        Show(SW_SHOW);
        GetPlatform()->ActivateSurface(GetHandle());
        return true;
    }
    SRect rect{0, 0, DESCRIPTION_WIDTH, DESCRIPTION_HEIGHT};
    if (!Create(DESCRIPTION_TITLE, WS_OVERLAPPEDWINDOW, 0, &rect, 0)) {
        return false;
    }
    SetMinMax(DESCRIPTION_MIN_WIDTH, DESCRIPTION_MIN_HEIGHT, -1, -1);
    SRect kept;
    bool maximized = false;
    if (host != nullptr && host->LoadPlacement(DESCRIPTION_PLACEMENT, &kept, &maximized) &&
        kept.Width() > 0 && kept.Height() > 0) {
        MoveWindow(kept);
    } else {
        SetSize(DESCRIPTION_WIDTH, DESCRIPTION_HEIGHT);
        CenterOnParent(false);
    }
    Layout();
    Show(SW_SHOW);
    if (maximized) {
        Maximize();
    }
    ReloadFolders();
    SetFocus(tree.GetHandle());
    GetPlatform()->ActivateSurface(GetHandle());
    return true;
}

bool PWndDescription::CloseWindow() {
    if (GetHandle() == 0) {
        return true;
    }
    if (!SaveDescription()) {
        SString question = SString("The description could not be saved:\n") + lastFailure +
                           "\n\nClose the window and lose the changes?";
        if (host == nullptr || !host->AskYesNo(this, question.c_str(), "Description")) {
            return false;
        }
    }
    if (host != nullptr) {
        host->SavePlacement(DESCRIPTION_PLACEMENT, GetWindowRect(), IsMaximized());
    }
    // The window made again later starts with no description open.
    selecting = true;
    tree.SelectItem(nullptr);
    selecting = false;
    LoadDescription(nullptr);
    return true;
}

void PWndDescription::BuildControls() {
    SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    SRect none{0, 0, 10, 10};
    HWND self = GetHandle();
    toolBar.Create("", WS_VISIBLE, 0, &none, self);
    toolBar.SetImageSize(48, 48);
    for (const ToolButton& button : TOOL_BUTTONS) {
        if (button.command == 0) {
            toolBar.AddSeparator();
            continue;
        }
        SImage picture;
        picture.LoadResource("BINARY", button.image);
        int index = toolBar.AddImage(picture);
        toolBar.AddButton(button.command, index, button.text);
    }
    statusBar.Create("", WS_VISIBLE | STATUS_SIZE_GRIP, 0, &none, self);
    statusBar.SetParts({-1});
    tree.Create("", WS_VISIBLE | WS_TABSTOP, 0, &none, self, ID_TREE);
    editor.Create("", WS_VISIBLE | WS_TABSTOP, WS_EX_CLIENTEDGE, &none, self, ID_EDITOR);
    editor.SetReadOnly(true);
    EnableCommands();
}

void PWndDescription::Layout() {
    if (tree.GetHandle() == 0) {
        return;
    }
    SSize client = GetClientSize();
    int barHeight = toolBar.GetIdealSize().height;
    toolBar.MoveWindow(SRect{0, 0, client.width, barHeight});
    int statusHeight = statusBar.GetIdealHeight();
    statusBar.MoveWindow(SRect{0, client.height - statusHeight, client.width, client.height});
    int top = barHeight;
    int bottom = std::max(top, client.height - statusHeight);
    int treeRight = std::min(DESCRIPTION_TREE_WIDTH, client.width);
    tree.MoveWindow(SRect{0, top, treeRight, bottom});
    editor.MoveWindow(SRect{treeRight, top, client.width, bottom});
}

void PWndDescription::SetStatus(const char* text) {
    statusBar.SetText(0, text != nullptr ? text : "");
}

void PWndDescription::EnableCommands() {
    bool writable = hasDocument && documentState != DESCRIPTION_UNREADABLE;
    for (const ToolButton& button : TOOL_BUTTONS) {
        if (button.command >= DESCRIPTION_CMD_GROUP) {
            toolBar.EnableButton(button.command, writable);
        }
    }
}

SString PWndDescription::GetItemPath(HTREEITEM item) const {
    if (item == nullptr || !tree.GetItems().Contains(item)) {
        return SString("");
    }
    auto index = static_cast<int>(tree.GetItemData(item));
    if (index < 0 || index >= known.TreeOrder.GetCount()) {
        return SString("");
    }
    return known.TreeOrder.GetText(index);
}

bool PWndDescription::IsModified() const {
    return hasDocument && documentState != DESCRIPTION_UNREADABLE &&
           editor.GetEditor().GetVersion() != savedVersion;
}

void PWndDescription::ReloadFolders() {
    SString newRoot = host != nullptr ? host->GetRootFolder() : SString("");
    if (hasDocument && !(newRoot == root)) {
        // Another collection: the open text goes back to its own first.
        if (!SaveDescription()) {
            return;
        }
        selecting = true;
        tree.SelectItem(nullptr);
        selecting = false;
        LoadDescription(nullptr);
    }
    SString keep = hasDocument ? GetItemPath(tree.GetSelection()) : SString("");
    selecting = true;
    tree.Clear();
    selecting = false;
    root = newRoot;
    SetStatus("Loading... 0");
    known.Load(
        root.c_str(),
        [](int count, void* context) {
            SString text;
            text.Format("Loading... %d", count);
            static_cast<PWndDescription*>(context)->SetStatus(text.c_str());
        },
        this);
    std::unordered_map<std::string, HTREEITEM> items;
    HTREEITEM found = nullptr;
    for (int i = 0; i < known.TreeOrder.GetCount(); ++i) {
        SString path = known.TreeOrder.GetText(i);
        int slash = path.ReverseFind('/');
        HTREEITEM parent = nullptr;
        const char* name = path.c_str();
        if (slash >= 0) {
            auto above = items.find(std::string(path.c_str(), static_cast<size_t>(slash)));
            if (above != items.end()) {
                parent = above->second;
            }
            name = path.c_str() + slash + 1;
        }
        HTREEITEM item = tree.AddItem(name, -1, -1, parent, STreeItems::TVI_LAST, i);
        items[path.c_str()] = item;
        if (!keep.IsEmpty() && path == keep) {
            found = item;
        }
    }
    if (found != nullptr) {
        selecting = true;
        tree.SelectItem(found);
        selecting = false;
    } else if (hasDocument && SaveDescription()) {
        LoadDescription(nullptr);
    }
    SetStatus("Ready.");
    EnableCommands();
}

void PWndDescription::LoadDescription(HTREEITEM item) {
    SString relative = GetItemPath(item);
    SString text;
    SString reason;
    if (relative.IsEmpty()) {
        hasDocument = false;
        documentPath = "";
        documentState = DESCRIPTION_NEW;
    } else {
        hasDocument = true;
        documentPath = root + relative + ".txt";
        documentState = LoadDescriptionForEditing(documentPath.c_str(), &text, &reason);
    }
    editor.SetReadOnly(false);
    editor.SetText(text.c_str());
    editor.SetReadOnly(!hasDocument || documentState == DESCRIPTION_UNREADABLE);
    savedVersion = editor.GetEditor().GetVersion();
    SetStatus(!reason.IsEmpty() ? reason.c_str() : "Ready.");
    EnableCommands();
}

bool PWndDescription::SaveDescription() {
    if (!IsModified()) {
        return true;
    }
    if (documentPath.GetLength() < 4 || strcmp(documentPath.c_str() + documentPath.GetLength() - 4, ".txt") != 0) {
        return true;
    }
    const SCodeEditor& model = editor.GetEditor();
    std::vector<std::string> lines;
    lines.reserve(static_cast<size_t>(model.GetLineCount()));
    for (int i = 0; i < model.GetLineCount(); ++i) {
        lines.push_back(model.GetLine(i));
    }
    SString reason;
    if (!SaveDescriptionLines(documentPath.c_str(), lines, &reason)) {
        lastFailure = reason;
        SetStatus(reason.c_str());
        return false;
    }
    lastFailure = "";
    savedVersion = model.GetVersion();
    return true;
}

bool PWndDescription::SelectFolder(const char* relative) {
    if (relative == nullptr) {
        return false;
    }
    for (int i = 0; i < known.TreeOrder.GetCount(); ++i) {
        if (known.TreeOrder.GetText(i) != relative) {
            continue;
        }
        // The item whose data is this index.
        std::vector<HTREEITEM> stack(tree.GetItems().GetRoots().rbegin(), tree.GetItems().GetRoots().rend());
        while (!stack.empty()) {
            HTREEITEM item = stack.back();
            stack.pop_back();
            if (tree.GetItemData(item) == i) {
                if (tree.GetSelection() == item) {
                    return true;
                }
                if (!SaveDescription()) {
                    return false;
                }
                selecting = true;
                tree.SelectItem(item);
                selecting = false;
                LoadDescription(item);
                return true;
            }
            const std::vector<HTREEITEM>& children = tree.GetItems().GetChildren(item);
            stack.insert(stack.end(), children.rbegin(), children.rend());
        }
        return false;
    }
    return false;
}

void PWndDescription::OnTreeSelect(HTREEITEM before, HTREEITEM now) {
    if (selecting) {
        return;
    }
    if (!SaveDescription()) {
        // The text stays where it can still be saved.
        selecting = true;
        tree.SelectItem(before);
        selecting = false;
        return;
    }
    LoadDescription(now);
}

std::vector<std::string> PWndDescription::SelectedLines(PTextPoint* start, PTextPoint* end) const {
    const SCodeEditor& model = editor.GetEditor();
    SCodePos from = model.GetSelectionStart();
    SCodePos to = model.GetSelectionEnd();
    *start = PTextPoint{from.line, from.column};
    *end = PTextPoint{to.line, to.column};
    std::vector<std::string> lines;
    for (int i = from.line; i <= to.line; ++i) {
        lines.push_back(model.GetLine(i));
    }
    return lines;
}

void PWndDescription::ApplyEdit(const PDescriptionEdit& edit) {
    if (edit.refused > 0) {
        SString text;
        if (edit.refused == 1) {
            text = "One line was left as it was: a \"#\" there would take the mark apart.";
        } else {
            text.Format("%d lines were left as they were: a \"#\" there would take the marks apart.",
                        edit.refused);
        }
        SetStatus(text.c_str());
    } else {
        SetStatus("Ready.");
    }
    if (!edit.changed) {
        return;
    }
    SCodeEditor& model = editor.GetEditor();
    int lastLength = static_cast<int>(model.GetLine(edit.last).size());
    model.Select(SCodePos{edit.first, 0}, SCodePos{edit.last, lastLength});
    std::string joined;
    for (size_t i = 0; i < edit.lines.size(); ++i) {
        if (i > 0) {
            joined += '\n';
        }
        joined += edit.lines[i];
    }
    // One step of its own in the undo history.
    model.BreakTypedRun();
    editor.CommitText(joined.c_str());
    model.BreakTypedRun();
    model.Select(SCodePos{edit.anchor.line, edit.anchor.column},
                 SCodePos{edit.caret.line, edit.caret.column});
    editor.Invalidate(nullptr);
    editor.EnsureCaretVisible();
    SetFocus(editor.GetHandle());
}

void PWndDescription::MarkCommand(int command) {
    if (!hasDocument || documentState == DESCRIPTION_UNREADABLE) {
        return;
    }
    PTextPoint start;
    PTextPoint end;
    std::vector<std::string> lines = SelectedLines(&start, &end);
    if (command == DESCRIPTION_CMD_GROUP) {
        ApplyEdit(GroupSelection(lines, start, end));
    } else if (command == DESCRIPTION_CMD_BOLD) {
        ApplyEdit(BoldSelection(lines, start, end));
    } else if (const char* tag = TagOfCommand(command)) {
        ApplyEdit(MarkSelection(lines, start, end, tag));
    }
}

void PWndDescription::GeneratePage() {
    if (!SaveDescription()) {
        return;
    }
    SString relative = GetItemPath(tree.GetSelection());
    if (relative.IsEmpty()) {
        return;
    }
    SString reason;
    if (!BuildDescriptionPage(root.c_str(), relative.c_str(), &known, &reason)) {
        SetStatus(reason.c_str());
        return;
    }
    SetStatus("Ready.");
    if (host != nullptr) {
        host->ShowDescriptionPage((root + relative + ".htm").c_str());
    }
}

void PWndDescription::GenerateAllPages() {
    if (!SaveDescription()) {
        return;
    }
    HWND focus = GetFocus();
    tree.Enable(false);
    editor.Enable(false);
    toolBar.Enable(false);
    PPagesResult result;
    bool done = BuildAllDescriptionPages(
        root.c_str(), known, [this](const SString& text, int /*percent*/) { SetStatus(text.c_str()); },
        &result);
    tree.Enable(true);
    editor.Enable(true);
    toolBar.Enable(true);
    if (!done || result.failed > 0) {
        SString text;
        text.Format("%d pages written, %d failed: %s", result.written, result.failed,
                    result.firstFailure.c_str());
        SetStatus(text.c_str());
    } else {
        SetStatus("Ready.");
    }
    if (focus != 0 && SWnd::FromHandle(focus) != nullptr) {
        SetFocus(focus);
    }
}

void PWndDescription::RunCommand(int command) {
    switch (command) {
    case DESCRIPTION_CMD_PAGE:
        GeneratePage();
        break;
    case DESCRIPTION_CMD_ALL_PAGES:
        GenerateAllPages();
        break;
    default:
        MarkCommand(command);
        break;
    }
}

LRESULT PWndDescription::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SM_CREATE:
        BuildControls();
        return 0;
    case WM_SIZE:
        Layout();
        break;
    case WM_CLOSE:
        if (CloseWindow()) {
            Destroy();
        }
        return 0;
    case WM_COMMAND:
        RunCommand(static_cast<int>(wParam & 0xFFFF));
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
