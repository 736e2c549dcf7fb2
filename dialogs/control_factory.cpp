#include "dialogs/control_factory.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "controls/browser_ctrl.h"
#include "controls/media_ctrl.h"
#include "controls/media_player_ctrl.h"
#include "editors/code_edit_ctrl.h"
#include "foundation/file.h"
#include "foundation/image.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/combo_ctrl.h"
#include "toolkit/edit_ctrl.h"
#include "toolkit/ex_list_ctrl.h"
#include "toolkit/list_ctrl.h"
#include "toolkit/menu.h"
#include "toolkit/pane_ctrls.h"
#include "toolkit/range_ctrls.h"
#include "toolkit/toolbar_ctrl.h"
#include "toolkit/tree_ctrl.h"

using _SCtrl = SDialogDefinition::_SCtrl;

namespace {

// Style bits of the definition's words that the factory reads.
constexpr uint32_t STYLE_VISIBLE = 0x10000000u;
constexpr uint32_t LAYER_STYLE_FRAME = 0x00CF0000u;
constexpr uint32_t LAYER_EXSTYLE_EDGES = 0x00020200u;
constexpr uint32_t BS_HORIZONTAL_MASK = 0x300u;
constexpr uint32_t BS_LEFT_BIT = 0x100u;
constexpr uint32_t BS_RIGHT_BIT = 0x200u;
constexpr uint32_t CBS_TYPE_MASK = 3u;
constexpr uint32_t CBS_SIMPLE_BIT = 1u;
constexpr uint32_t CBS_DROPDOWN_BIT = 2u;
constexpr uint32_t CBS_SORT_BIT = 0x100u;
constexpr uint32_t ES_LOWERCASE_BIT = 0x10u;
constexpr uint32_t ES_UPPERCASE_BIT = 8u;
constexpr uint32_t LVS_TYPE_MASK = 3u;
constexpr uint32_t LVS_REPORT_BIT = 1u;
constexpr uint32_t LVS_LIST_BITS = 3u;
constexpr uint32_t LVS_SINGLESEL_BIT = 4u;
constexpr uint32_t LBS_MULTIPLESEL_BIT = 8u;
constexpr uint32_t LBS_EXTENDEDSEL_BIT = 0x800u;
constexpr uint32_t LBS_NOSEL_BIT = 0x4000u;
constexpr uint32_t LBS_SORT_BIT = 2u;
constexpr uint32_t TVS_DISABLEDRAGDROP_BIT = 0x10u;
// The window core's own bits that a record's style must not set on a
// control: the kind of window is the core's to decide.
constexpr uint32_t CORE_KIND_BITS = WS_POPUP | WS_CHILD;

std::string Str(const SString& text) {
    return std::string(text.c_str(), text.GetLength());
}

// Splits at sep; trim cuts blanks round each part. Empty text gives no part.
std::vector<std::string> Split(const std::string& text, char sep, bool trim) {
    std::vector<std::string> parts;
    if (text.empty()) {
        return parts;
    }
    size_t start = 0;
    while (true) {
        size_t end = text.find(sep, start);
        std::string part =
            text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (trim) {
            size_t first = part.find_first_not_of(" \t");
            size_t last = part.find_last_not_of(" \t");
            part =
                first == std::string::npos ? std::string() : part.substr(first, last - first + 1);
        }
        parts.push_back(part);
        if (end == std::string::npos) {
            break;
        }
        start = end + 1;
    }
    return parts;
}

// The lines of a file's bytes, without their ends; empty lines dropped.
std::vector<std::string> NonEmptyLines(const std::string& bytes) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < bytes.size()) {
        size_t end = bytes.find_first_of("\r\n", start);
        if (end == std::string::npos) {
            end = bytes.size();
        }
        if (end > start) {
            lines.push_back(bytes.substr(start, end - start));
        }
        start = end + 1;
    }
    return lines;
}

bool FindFile(const SDialogResourceProvider& provider, const SString& name, std::string* bytes) {
    if (!provider || name.IsEmpty()) {
        return false;
    }
    SFileMem file;
    if (!provider(name.c_str(), &file)) {
        return false;
    }
    int size = file.GetSize();
    bytes->assign(size > 0 && file.GetData() != nullptr ? file.GetData() : "",
                  static_cast<size_t>(std::max(size, 0)));
    return true;
}

bool FindImage(const SDialogResourceProvider& provider, const SString& name, SImage* image) {
    if (!provider || name.IsEmpty()) {
        return false;
    }
    SFileMem file;
    if (!provider(name.c_str(), &file)) {
        return false;
    }
    file.Seek(0);
    return image->Load(&file);
}

// A picture from the provider in a draw mode, kept by the dialog (without
// a dialog the picture is not loaded, since nobody would keep it).
const SImage* KeptImage(SWndDialog* dialog, const SDialogResourceProvider& provider,
                        const SString& name, int drawMode) {
    SImage image;
    if (dialog == nullptr || !FindImage(provider, name, &image)) {
        return nullptr;
    }
    image.drawMode = drawMode;
    return dialog->KeepImage(std::move(image));
}

SAlign AlignOfWord(const SString& word, SAlign fallback) {
    if (word == "_LEFT") {
        return SAlign::LEFT;
    }
    if (word == "_CENTER") {
        return SAlign::CENTER;
    }
    if (word == "_RIGHT") {
        return SAlign::RIGHT;
    }
    if (word == "_JUSTIFY") {
        return SAlign::JUSTIFY;
    }
    return fallback;
}

SAlign AlignOfButtonStyle(uint32_t style) {
    switch (style & BS_HORIZONTAL_MASK) {
    case BS_LEFT_BIT:
        return SAlign::LEFT;
    case BS_RIGHT_BIT:
        return SAlign::RIGHT;
    case BS_HORIZONTAL_MASK:
        return SAlign::CENTER;
    default:
        return SAlign::LEFT;
    }
}

// The colour of a record's BACKCOLOR or TEXTCOLOR for a control; false
// when it is not set.
bool RecordColor(uint32_t raw, uint32_t* color) {
    if (IsColorNotSet(raw)) {
        return false;
    }
    *color = ResolveColor(raw);
    return true;
}

// A colour of the property text; false when absent or "not set".
bool PropertyColor(const _SCtrl& record, const char* key, uint32_t* color) {
    uint32_t raw = record.GetPropertyColorRaw(key);
    if (IsColorNotSet(raw)) {
        return false;
    }
    *color = ResolveColor(raw);
    return true;
}

std::unique_ptr<SWnd> MakeOfType(int type) {
    switch (type) {
    case CTRL_BROWSER:
        return std::make_unique<SBrowserCtrl>();
    case CTRL_BUTTON:
        return std::make_unique<SButtonCtrl>();
    case CTRL_CHECK:
        return std::make_unique<SCheckCtrl>();
    case CTRL_CODEEDIT:
        return std::make_unique<SCodeEditCtrl>();
    case CTRL_COMBO:
        return std::make_unique<SComboCtrl>();
    case CTRL_EDIT:
        return std::make_unique<SEditCtrl>();
    case CTRL_EXTENDEDLIST:
        return std::make_unique<SExListCtrl>();
    case CTRL_GROUP:
        return std::make_unique<SGroupCtrl>();
    case CTRL_GUI:
        return std::make_unique<SGuiCtrl>();
    case CTRL_LABEL:
        return std::make_unique<SLabelCtrl>();
    case CTRL_LIST:
        return std::make_unique<SListCtrl>();
    case CTRL_MEDIA:
        return std::make_unique<SMediaCtrl>();
    case CTRL_MEDIAPLAYER:
        return std::make_unique<SMediaPlayerCtrl>();
    case CTRL_PANEL:
        return std::make_unique<SPanelCtrl>();
    case CTRL_PROGRESS:
        return std::make_unique<SProgressCtrl>();
    case CTRL_RADIO:
        return std::make_unique<SRadioCtrl>();
    case CTRL_SCROLL:
        return std::make_unique<SScrollCtrl>();
    case CTRL_SLIDER:
        return std::make_unique<SSliderCtrl>();
    case CTRL_SPLITTER:
        return std::make_unique<SSplitterCtrl>();
    case CTRL_STATIC:
        return std::make_unique<SStaticCtrl>();
    case CTRL_TAB:
        return std::make_unique<STabCtrl>();
    case CTRL_TOOLBAR:
        return std::make_unique<SToolBarCtrl>();
    case CTRL_TREE:
        return std::make_unique<STreeCtrl>();
    case CTRL_WINDOW:
        return std::make_unique<_SWnd>();
    default:
        return nullptr;
    }
}

// Creates control as type's class would be created: the classes with a
// Create of their own get theirs, the rest the window core's.
bool CreateOfType(int type, SWnd* control, const _SCtrl& record, SWnd* parent, uint32_t style,
                  uint32_t exStyle) {
    SRect rect{record.x, record.y, record.x + record.width, record.y + record.height};
    uintptr_t id = static_cast<uintptr_t>(static_cast<uint16_t>(record.id));
    bool visible = (style & STYLE_VISIBLE) != 0;
    bool made = false;
    if (type == CTRL_EDIT) {
        if (auto* edit = dynamic_cast<SEditCtrl*>(control)) {
            unsigned editStyle = style & ~CORE_KIND_BITS;
            if (record.GetPropertyBool("EDIT_NOPOPUPMENU")) {
                editStyle |= EDIT_NOPOPUPMENU;
            }
            made = edit->Create(parent, rect, id, editStyle, record.caption.c_str());
        }
    } else if (type == CTRL_COMBO) {
        if (auto* combo = dynamic_cast<SComboCtrl*>(control)) {
            // Simple and drop-down combos take typing; a drop-down list
            // does not.
            uint32_t kind = style & CBS_TYPE_MASK;
            COMBO_FORM form = kind == CBS_SIMPLE_BIT || kind == CBS_DROPDOWN_BIT ? COMBO_EDITABLE
                                                                                 : COMBO_DROP_LIST;
            made = combo->Create(parent, rect, id, form, style & ~CORE_KIND_BITS);
        }
    } else if (type == CTRL_LIST || type == CTRL_EXTENDEDLIST) {
        if (auto* list = dynamic_cast<SListCtrl*>(control)) {
            LIST_SELECTION mode = LIST_SELECTION_SINGLE;
            if (type == CTRL_LIST) {
                if ((style & LBS_NOSEL_BIT) != 0) {
                    mode = LIST_SELECTION_NONE;
                } else if ((style & LBS_EXTENDEDSEL_BIT) != 0) {
                    mode = LIST_SELECTION_EXTENDED;
                } else if ((style & LBS_MULTIPLESEL_BIT) != 0) {
                    mode = LIST_SELECTION_MULTIPLE;
                }
            } else if ((style & LVS_SINGLESEL_BIT) == 0) {
                mode = LIST_SELECTION_EXTENDED;
            }
            made = list->Create(parent, rect, id, mode, style & ~CORE_KIND_BITS);
        }
    } else {
        made = control->Create(record.caption.c_str(), style & ~CORE_KIND_BITS, exStyle, &rect,
                               parent->GetHandle(), id);
    }
    if (!made) {
        return false;
    }
    if (type == CTRL_LIST || type == CTRL_EXTENDEDLIST || type == CTRL_COMBO) {
        control->SetText(record.caption.c_str());
    }
    // Some classes show themselves whatever the style says.
    if (!visible && control->IsVisible()) {
        control->Show(SW_HIDE);
    }
    return true;
}

void ApplyLines(int type, SWnd* control, const std::vector<std::string>& lines, bool sorted) {
    std::vector<std::string> items = lines;
    if (sorted) {
        std::stable_sort(items.begin(), items.end());
    }
    if (type == CTRL_COMBO) {
        auto* combo = dynamic_cast<SComboCtrl*>(control);
        for (const std::string& item : items) {
            combo->AddText(item.c_str());
        }
    } else if (auto* list = dynamic_cast<SListCtrl*>(control)) {
        list->AddRows(std::move(items));
    }
}

// The per-type keys of a record, applied to its control.
void ApplyProperties(SWndDialog* dialog, int type, SWnd* control, const _SCtrl& record,
                     const SDialogResourceProvider& provider, bool live) {
    uint32_t color = 0;
    bool hasBack = RecordColor(record.backColor, &color);
    uint32_t back = color;
    bool hasText = RecordColor(record.textColor, &color);
    uint32_t text = color;
    std::string bytes;
    switch (type) {
    case CTRL_BROWSER: {
        auto* browser = dynamic_cast<SBrowserCtrl*>(control);
        if (browser == nullptr) {
            break;
        }
        // The page's own message boxes are shown only when asked for.
        browser->SetSilent(!record.GetPropertyBool("BROWSER_DIALOGS"));
        if (!live) {
            break;
        }
        if (FindFile(provider, record.GetProperty("BROWSER_FILE"), &bytes)) {
            browser->NavigateHtml(bytes.c_str(), "", ".html");
        } else if (SString url = record.GetProperty("BROWSER_URL"); !url.IsEmpty()) {
            browser->NavigateUrl(url.c_str(), "");
        }
        break;
    }
    case CTRL_BUTTON:
    case CTRL_CHECK:
    case CTRL_RADIO: {
        if (hasBack) {
            control->SetBackColor(back);
        }
        if (type == CTRL_CHECK) {
            if (auto* check = dynamic_cast<SCheckCtrl*>(control)) {
                check->SetCheck(record.GetPropertyBool("CHECK_CHECKED"));
            }
        }
        if (type == CTRL_RADIO) {
            if (auto* radio = dynamic_cast<SRadioCtrl*>(control)) {
                radio->SetCheck(record.GetPropertyBool("RADIO_CHECKED"));
            }
        }
        break;
    }
    case CTRL_CODEEDIT: {
        auto* code = dynamic_cast<SCodeEditCtrl*>(control);
        if (code == nullptr) {
            break;
        }
        // Every CODEEDIT_ key but the file, which comes through the
        // provider rather than from the disk.
        for (const std::string& line : NonEmptyLines(Str(record.properties))) {
            size_t equals = line.find('=');
            if (equals == std::string::npos || line.compare(0, equals, "CODEEDIT_FILE") == 0) {
                continue;
            }
            code->ApplyKey(line.substr(0, equals).c_str(), line.substr(equals + 1).c_str());
        }
        if (FindFile(provider, record.GetProperty("CODEEDIT_FILE"), &bytes)) {
            code->SetText(bytes.c_str());
        }
        break;
    }
    case CTRL_COMBO:
    case CTRL_LIST: {
        const char* fileKey = type == CTRL_COMBO ? "COMBO_FILE" : "LIST_FILE";
        const char* contentKey = type == CTRL_COMBO ? "COMBO_CONTENT" : "LIST_CONTENT";
        bool sorted = (record.style & (type == CTRL_COMBO ? CBS_SORT_BIT : LBS_SORT_BIT)) != 0;
        if (FindFile(provider, record.GetProperty(fileKey), &bytes)) {
            ApplyLines(type, control, NonEmptyLines(bytes), sorted);
        } else {
            ApplyLines(type, control, Split(Str(record.GetProperty(contentKey)), '|', false),
                       sorted);
        }
        if (type == CTRL_LIST && hasBack) {
            control->SetBackColor(back);
        }
        break;
    }
    case CTRL_EDIT: {
        auto* edit = dynamic_cast<SEditCtrl*>(control);
        if (edit == nullptr) {
            break;
        }
        if (FindFile(provider, record.GetProperty("EDIT_TEXT"), &bytes)) {
            edit->SetText(bytes.c_str());
        }
        if (int length = record.GetPropertyInt("EDIT_MAXLENGTH"); length != 0) {
            edit->SetMaxLength(length);
        }
        if (record.GetPropertyBool("EDIT_SELECTALL")) {
            edit->SetSelectAllOnFocus(true);
            edit->SetSel(0, edit->Model().Text().size());
        }
        // The case styles change the text the edit starts with; what the
        // user types afterwards is the user's.
        if ((record.style & (ES_LOWERCASE_BIT | ES_UPPERCASE_BIT)) != 0) {
            std::string value = edit->Model().Text();
            bool lower = (record.style & ES_LOWERCASE_BIT) != 0;
            for (char& c : value) {
                if (c >= 'A' && c <= 'Z' && lower) {
                    c = static_cast<char>(c - 'A' + 'a');
                } else if (c >= 'a' && c <= 'z' && !lower) {
                    c = static_cast<char>(c - 'a' + 'A');
                }
            }
            edit->SetText(value.c_str());
        }
        if (hasBack) {
            control->SetBackColor(back);
        }
        break;
    }
    case CTRL_EXTENDEDLIST: {
        auto* list = dynamic_cast<SExListCtrl*>(control);
        if (list == nullptr) {
            break;
        }
        // Report and list views show rows; the icon views a grid.
        uint32_t kind = record.style & LVS_TYPE_MASK;
        list->SetView(kind == LVS_REPORT_BIT || kind == LVS_LIST_BITS ? EXLIST_REPORT
                                                                      : EXLIST_ICON);
        break;
    }
    case CTRL_GROUP: {
        if (auto* group = dynamic_cast<SGroupCtrl*>(control)) {
            group->SetAlign(AlignOfButtonStyle(record.style));
        }
        if (hasBack) {
            control->SetBackColor(back);
        }
        break;
    }
    case CTRL_LABEL: {
        auto* label = dynamic_cast<SLabelCtrl*>(control);
        if (label == nullptr) {
            break;
        }
        label->SetAlign(AlignOfWord(record.GetProperty("LABEL_HALIGN"), SAlign::LEFT));
        if (hasText) {
            label->SetTextColor(text);
        }
        if (hasBack && !record.transparent) {
            control->SetBackColor(back);
        }
        if (FindFile(provider, record.GetProperty("LABEL_TEXT"), &bytes)) {
            control->SetText(bytes.c_str());
        }
        SImage image;
        if (FindImage(provider, record.GetProperty("LABEL_IMAGE"), &image)) {
            image.drawMode = record.GetPropertyDrawMode("LABEL_IMAGEDRAWMODE");
            label->SetImage(&image);
        }
        break;
    }
    case CTRL_MEDIA: {
        auto* media = dynamic_cast<SMediaCtrl*>(control);
        if (media == nullptr) {
            break;
        }
        SString halign = record.GetProperty("MEDIA_HALIGN");
        SString valign = record.GetProperty("MEDIA_VALIGN");
        unsigned align = 0;
        align |= halign == "_CENTER"    ? MEDIA_ALIGN_CENTER
                 : halign == "_RIGHT"   ? MEDIA_ALIGN_RIGHT
                 : halign == "_JUSTIFY" ? MEDIA_ALIGN_JUSTIFY
                                        : MEDIA_ALIGN_LEFT;
        align |= valign == "_MIDDLE"   ? MEDIA_ALIGN_MIDDLE
                 : valign == "_BOTTOM" ? MEDIA_ALIGN_BOTTOM
                                       : MEDIA_ALIGN_TOP;
        media->SetAlign(align);
        media->SetWrapping(record.GetPropertyBool("MEDIA_WRAPPING"));
        media->SetTrimming(record.GetPropertyBool("MEDIA_TRIMMING"));
        media->SetMarkup(record.GetPropertyBool("MEDIA_TAGS"));
        media->SetButton(record.GetPropertyBool("MEDIA_BUTTON"));
        media->SetChecked(record.GetPropertyBool("MEDIA_CHECKED"));
        media->SetMargins(record.GetPropertyInt("MEDIA_LEFTMARGIN"),
                          record.GetPropertyInt("MEDIA_TOPMARGIN"),
                          record.GetPropertyInt("MEDIA_RIGHTMARGIN"),
                          record.GetPropertyInt("MEDIA_BOTTOMMARGIN"));
        if (hasText) {
            media->SetTextColor(text);
        }
        // One link colour serves every link.
        if (PropertyColor(record, "MEDIA_LINKCOLOR", &color)) {
            media->SetLinkColor(color);
        }
        if (hasBack && !record.transparent) {
            control->SetBackColor(back);
        }
        if (FindFile(provider, record.GetProperty("MEDIA_TEXT"), &bytes)) {
            control->SetText(bytes.c_str());
        }
        const SImage* normal = KeptImage(dialog, provider, record.GetProperty("MEDIA_IMAGE"),
                                         record.GetPropertyDrawMode("MEDIA_IMAGEDRAWMODE"));
        if (normal != nullptr) {
            media->SetImage(normal);
        }
        SImage over, push, check, disabled;
        bool hasOver = FindImage(provider, record.GetProperty("MEDIA_BUTTONOVER"), &over);
        bool hasPush = FindImage(provider, record.GetProperty("MEDIA_BUTTONPUSH"), &push);
        bool hasCheck = FindImage(provider, record.GetProperty("MEDIA_BUTTONCHECK"), &check);
        bool hasDisabled =
            FindImage(provider, record.GetProperty("MEDIA_BUTTONDISABLED"), &disabled);
        if (hasOver || hasPush || hasCheck || hasDisabled) {
            // A checked button shows its checked picture as it is pressed.
            const SImage* down = hasPush ? &push : hasCheck ? &check : nullptr;
            control->SetSkin(normal, hasOver ? &over : nullptr, down,
                             hasDisabled ? &disabled : nullptr);
        }
        int scrollX = record.GetPropertyInt("MEDIA_AUTOSCROLLX");
        int scrollY = record.GetPropertyInt("MEDIA_AUTOSCROLLY");
        media->SetAutoScrollLoop(record.GetPropertyBool("MEDIA_AUTOSCROLLLOOP"));
        if (live && (scrollX != 0 || scrollY != 0)) {
            media->SetAutoScroll(scrollX, scrollY);
        }
        break;
    }
    case CTRL_MEDIAPLAYER:
        if (auto* player = dynamic_cast<SMediaPlayerCtrl*>(control)) {
            player->SetLoop(record.GetPropertyBool("MEDIAPLAYER_LOOP"));
        }
        break;
    case CTRL_PROGRESS:
    case CTRL_SCROLL:
    case CTRL_SLIDER: {
        auto* range = dynamic_cast<SRangeCtrl*>(control);
        if (range == nullptr) {
            break;
        }
        const char* prefix = type == CTRL_PROGRESS ? "PROGRESS"
                             : type == CTRL_SCROLL ? "SCROLL"
                                                   : "SLIDER";
        std::string key(prefix);
        range->SetRange(record.GetPropertyInt((key + "_MINVALUE").c_str()),
                        record.GetPropertyInt((key + "_MAXVALUE").c_str()));
        range->SetValue(record.GetPropertyInt((key + "_VALUE").c_str()));
        if (type == CTRL_SLIDER && hasBack) {
            control->SetBackColor(back);
        }
        break;
    }
    case CTRL_SPLITTER: {
        auto* splitter = dynamic_cast<SSplitterCtrl*>(control);
        if (splitter == nullptr) {
            break;
        }
        splitter->SetGrid(std::clamp(record.GetPropertyInt("SPLITTER_COLCOUNT"), 1, 16),
                          std::clamp(record.GetPropertyInt("SPLITTER_ROWCOUNT"), 1, 16));
        if (PropertyColor(record, "SPLITTER_WINDOWBACKCOLOR", &color)) {
            for (int column = 0; column < splitter->GetColumnCount(); ++column) {
                for (int row = 0; row < splitter->GetRowCount(); ++row) {
                    if (_SWnd* pane = splitter->GetPane(column, row)) {
                        pane->SetBackColor(color);
                    }
                }
            }
        }
        break;
    }
    case CTRL_STATIC: {
        auto* drawn = dynamic_cast<SStaticCtrl*>(control);
        if (drawn == nullptr) {
            break;
        }
        // The edge word says an edge is drawn; the four flags say where.
        unsigned sides = 0;
        if (!record.GetProperty("STATIC_EDGE").IsEmpty()) {
            sides |= record.GetPropertyBool("STATIC_LEFTBORDER") ? STATIC_EDGE_LEFT : 0;
            sides |= record.GetPropertyBool("STATIC_TOPBORDER") ? STATIC_EDGE_TOP : 0;
            sides |= record.GetPropertyBool("STATIC_RIGHTBORDER") ? STATIC_EDGE_RIGHT : 0;
            sides |= record.GetPropertyBool("STATIC_BOTTOMBORDER") ? STATIC_EDGE_BOTTOM : 0;
        }
        drawn->SetEdges(sides);
        if (hasBack) {
            control->SetBackColor(back);
        }
        SImage image;
        if (FindImage(provider, record.GetProperty("STATIC_IMAGE"), &image)) {
            image.drawMode = record.GetPropertyDrawMode("STATIC_IMAGEDRAWMODE");
            drawn->SetImage(&image);
        }
        break;
    }
    case CTRL_TAB: {
        auto* tabs = dynamic_cast<STabCtrl*>(control);
        if (tabs == nullptr) {
            break;
        }
        for (const std::string& title : Split(Str(record.GetProperty("TAB_CONTENT")), '|', false)) {
            tabs->AddPage(title.c_str());
        }
        int selection = record.GetPropertyInt("TAB_SELECTION");
        if (selection >= 0 && selection < tabs->GetPageCount()) {
            tabs->SelectPage(selection);
        } else if (tabs->GetPageCount() > 0) {
            tabs->SelectPage(0);
        }
        // The page tips are one text for the control: the tip of the
        // selected page.
        std::vector<std::string> tips =
            Split(Str(record.GetProperty("TAB_TIPCONTENT")), '|', false);
        int page = tabs->GetSelectedPage();
        if (live && page >= 0 && page < static_cast<int>(tips.size()) && !tips[page].empty() &&
            record.GetProperty("TOOLTIP").IsEmpty()) {
            control->SetToolTipText(tips[page].c_str());
            control->SetToolTip(true);
        }
        break;
    }
    case CTRL_TOOLBAR: {
        auto* bar = dynamic_cast<SToolBarCtrl*>(control);
        if (bar == nullptr) {
            break;
        }
        int width = record.GetPropertyInt("TOOLBAR_IMAGEWIDTH");
        int height = record.GetPropertyInt("TOOLBAR_IMAGEHEIGHT");
        if (width > 0 && height > 0) {
            bar->SetImageSize(width, height);
        }
        int index = 0;
        for (const std::string& title :
             Split(Str(record.GetProperty("TOOLBAR_CONTENT")), '|', false)) {
            // The buttons' IDs count from 1 in their order.
            bar->AddButton(++index, -1, title.c_str());
        }
        break;
    }
    case CTRL_TREE: {
        auto* tree = dynamic_cast<STreeCtrl*>(control);
        if (tree == nullptr) {
            break;
        }
        // Check boxes come with the style; items are dragged unless the
        // style turns it off.
        tree->SetDragDrop((record.style & TVS_DISABLEDRAGDROP_BIT) == 0);
        if (FindFile(provider, record.GetProperty("TREE_FILE"), &bytes)) {
            SFileMem file;
            file.Write(bytes.data(), static_cast<int>(bytes.size()));
            file.Seek(0);
            tree->Load(&file, true);
        }
        break;
    }
    case CTRL_WINDOW:
        if (hasBack && !record.transparent) {
            control->SetBackColor(back);
        }
        break;
    default:
        break;
    }
}

// Which types the factory makes.
bool TypeIsBuilt(int type) {
    switch (type) {
    case CTRL_IMAGEEDITOR:
    case CTRL_LCD:
    case CTRL_LEVEL:
    case CTRL_PROPERTY:
    case CTRL_RICHEDIT:
    case CTRL_SPREAD:
    case CTRL_TABDOC:
    case CTRL_WAVEEDITOR:
    case CTRL_EXTERN:
    case CTRL_DIALOG:
        return false;
    default:
        return type > CTRL_DIALOG && type < CTRL_TYPE_COUNT;
    }
}

// One axis of an anchor: base holds the centre, far and grow bits (1, 2,
// 4), half the halving bit; core gets the core's centre, near-edge and
// far-edge bits (1, 2, 4) and its halving bit. A control that moves and
// also grows would need its far edge moved twice: no edge bits say that.
bool ConvertAxis(uint32_t base, uint32_t half, unsigned* core) {
    *core = 0;
    if ((base & 6u) == 6u) {
        return false;
    }
    if ((base & 1u) != 0) {
        *core |= 1u;
    }
    if ((base & 2u) != 0) {
        *core |= 2u | 4u;
    }
    if ((base & 4u) != 0) {
        *core |= 4u;
    }
    if (*core != 0 && half != 0) {
        *core |= 8u;
    }
    return true;
}

// Reads a definition whole, or, when the reader refuses it, as much of it
// as can be read: a block that cannot be read is passed over up to its
// closing empty line, and the rest is kept. False without the magic line
// or without a readable dialog block.
bool LoadForBuilding(SFile* source, SDialogDefinition* definition) {
    int start = source->GetPosition();
    if (definition->Load(source)) {
        return definition->HasDialog();
    }
    source->Seek(start);
    if (source->ReadLine(true) != SString(DIALOG_MAGIC)) {
        return false;
    }
    source->ReadLine(true);
    bool first = true;
    while (!source->IsEnd()) {
        _SCtrl record;
        int result = SDialogDefinition::ReadBlock(source, record);
        if (result <= 0) {
            while (!source->IsEnd() && !source->ReadLine(true).IsEmpty()) {
            }
            if (first) {
                return false; // the dialog's own block is the damaged one
            }
            continue;
        }
        if (first) {
            definition->SetDialog(record);
            first = false;
        } else {
            definition->AddControl(record, true, true);
        }
    }
    return definition->HasDialog();
}

} // namespace

// The factory's access to the dialog's lists.
struct SDialogBuilder {
    static void Enter(SWndDialog* dialog, std::unique_ptr<SWnd> control, const _SCtrl& record) {
        SWndDialog::Entry entry;
        entry.control = std::move(control);
        entry.id = static_cast<uint16_t>(record.id);
        entry.name = record.name;
        entry.type = record.type;
        dialog->controls.push_back(std::move(entry));
    }
    // Whether a radio of group number group starts a group: the first radio
    // does, and so does one whose number differs from the radio before it.
    static bool StartsRadioGroup(SWndDialog* dialog, int group) {
        bool starts = !dialog->anyRadio || dialog->lastRadioGroup != group;
        dialog->anyRadio = true;
        dialog->lastRadioGroup = group;
        return starts;
    }
    static void SetMenu(SWndDialog* dialog, std::unique_ptr<SMenu> menu) {
        dialog->menu = std::move(menu);
    }
    static void SetCommandTarget(SWndDialog* dialog, SWnd* target) {
        dialog->commandTarget = target != nullptr ? target->GetHandle() : 0;
    }
};

bool IsControlTypeBuilt(int type) {
    return TypeIsBuilt(type);
}

bool DialogAnchorToWindowAnchor(uint32_t dialogAnchor, unsigned* windowAnchor) {
    unsigned across = 0;
    unsigned down = 0;
    bool exact = ConvertAxis(dialogAnchor & 7u, dialogAnchor & AUTO_HALF_X, &across);
    exact = ConvertAxis((dialogAnchor >> 4) & 7u, dialogAnchor & AUTO_HALF_Y, &down) && exact;
    if (windowAnchor != nullptr) {
        *windowAnchor = across | (down << 4);
    }
    return exact;
}

SWnd* BuildControl(SWndDialog* dialog, SWnd* parent, const _SCtrl& record,
                   const SDialogResourceProvider& provider, bool live) {
    int type = record.type;
    if (parent == nullptr || parent->GetHandle() == 0 || !TypeIsBuilt(type)) {
        return nullptr;
    }
    uint32_t style = record.style;
    if (!live) {
        style &= ~STYLE_VISIBLE;
    }
    std::unique_ptr<SWnd> control;
    if (dialog != nullptr) {
        control = dialog->MakeDialogControl(type, record);
    }
    if (control == nullptr) {
        control = MakeOfType(type);
    }
    if (control == nullptr ||
        !CreateOfType(type, control.get(), record, parent, style, record.exStyle)) {
        return nullptr;
    }
    SWnd* made = control.get();
    // A font of its own, else the dialog's.
    if (dialog != nullptr) {
        SFont* font =
            dialog->MakeControlFont(record.fontFace.c_str(), record.fontSize, record.fontFlags);
        if (font == nullptr) {
            font = reinterpret_cast<SFont*>(SendMessage(dialog->GetHandle(), WM_GETFONT, 0, 0));
        }
        if (font != nullptr) {
            SendMessage(made->GetHandle(), WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
        }
    }
    ApplyProperties(dialog, type, made, record, provider, live);
    if (type == CTRL_RADIO && dialog != nullptr) {
        // A radio whose group number differs from the radio before it
        // starts a group of its own.
        int group = record.GetPropertyInt("RADIO_GROUP");
        if (auto* radio = dynamic_cast<SRadioCtrl*>(made);
            radio != nullptr && SDialogBuilder::StartsRadioGroup(dialog, group)) {
            radio->SetGroupStart(true);
        }
    }
    SString tip = record.GetProperty("TOOLTIP");
    if (!tip.IsEmpty()) {
        made->SetToolTipText(tip.c_str());
        made->SetToolTip(true);
    }
    if (dialog != nullptr) {
        SDialogBuilder::Enter(dialog, std::move(control), record);
    } else {
        control.release(); // the caller's now
    }
    return made;
}

bool BuildDialog(SFile* source, SWndDialog* dialog, const SDialogBuildOptions& options) {
    if (source == nullptr || dialog == nullptr || dialog->GetHandle() != 0) {
        return false;
    }
    SDialogDefinition definition;
    if (!LoadForBuilding(source, &definition)) {
        return false;
    }
    const _SCtrl& record = definition.GetDialog();
    bool layer = record.GetPropertyBool("DIALOG_LAYER");
    bool noClose = record.GetPropertyBool("DIALOG_NOCLOSE");
    uint32_t style = record.style & ~STYLE_VISIBLE;
    uint32_t exStyle = record.exStyle;
    SWnd* parent =
        options.parent != nullptr && options.parent->GetHandle() != 0 ? options.parent : nullptr;
    bool child = parent != nullptr && !options.forcePopup;
    style = (style & ~CORE_KIND_BITS) | (child ? WS_CHILD : WS_POPUP);
    if (layer) {
        style &= ~LAYER_STYLE_FRAME;
        exStyle &= ~LAYER_EXSTYLE_EDGES;
    }
    if (record.GetPropertyBool("DIALOG_DRAGFILES")) {
        exStyle |= WS_EX_ACCEPTFILES;
    }
    // A top-level dialog over a parent opens centred on that window.
    SRect rect{record.x, record.y, record.x + record.width, record.y + record.height};
    if (!child && parent != nullptr) {
        SRect over = SWnd::FromHandle(parent->GetTopWindow())->GetWindowRect();
        int left = over.left + (over.Width() - record.width) / 2;
        int top = over.top + (over.Height() - record.height) / 2;
        rect = SRect{left, top, left + record.width, top + record.height};
        dialog->SetOwner(parent->GetTopWindow());
    }
    if (!dialog->Create(record.caption.c_str(), style, exStyle, &rect,
                        child ? parent->GetHandle() : 0, 0, 0, nullptr, noClose)) {
        return false;
    }
    dialog->SetClientSize(record.width, record.height);
    if (SFont* font =
            dialog->MakeControlFont(record.fontFace.c_str(), record.fontSize, record.fontFlags)) {
        SendMessage(dialog->GetHandle(), WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    }
    SImage background;
    if (FindImage(options.provider, record.GetProperty("DIALOG_IMAGE"), &background)) {
        uint32_t key = record.GetPropertyBool("DIALOG_SHAPE") ? 0x00FF00FFu : COLOR_NOT_SET;
        background.drawMode = record.GetPropertyDrawMode("DIALOG_IMAGEDRAWMODE");
        dialog->SetBackgroundImage(&background, key, 255, nullptr, false);
    }

    // The controls, in file order; a TAB record builds the last TAB record
    // not yet built, so that tab controls come out in reverse order.
    int count = definition.GetControlCount();
    int tabCursor = count - 1;
    std::vector<std::pair<SWnd*, const _SCtrl*>> built;
    for (int i = 0; i < count; ++i) {
        const _SCtrl* at = definition.GetControl(i);
        if (at->type == CTRL_TAB) {
            while (tabCursor >= 0 && definition.GetControl(tabCursor)->type != CTRL_TAB) {
                --tabCursor;
            }
            if (tabCursor >= 0) {
                at = definition.GetControl(tabCursor--);
            }
        }
        // A control that cannot be made is left out; the rest is built.
        if (SWnd* made = BuildControl(dialog, dialog, *at, options.provider, true)) {
            built.emplace_back(made, at);
        }
    }
    // Only the controls whose records ask for it take Tab.
    for (auto& [control, from] : built) {
        control->SetTabStopOff(!from->GetPropertyBool("TABENABLED"));
        if (from->GetPropertyBool("TABENABLED")) {
            int index =
                from->GetProperty("TABINDEX").IsEmpty() ? -1 : from->GetPropertyInt("TABINDEX");
            control->SetTabOrder(from->GetPropertyInt("TABGROUP"),
                                 index == -1 ? control->GetTabOrder() : index);
        }
    }
    if (!layer) {
        std::vector<std::string> parts =
            Split(Str(record.GetProperty("DIALOG_STATUSBARTEXT")), '|', true);
        if (!parts.empty() && dialog->AddStatusBar(static_cast<int>(parts.size()))) {
            int width = record.width / static_cast<int>(parts.size());
            for (size_t i = 0; i < parts.size(); ++i) {
                dialog->SetStatusPartWidth(static_cast<int>(i), width);
                dialog->SetStatusText(static_cast<int>(i), parts[i].c_str());
            }
        }
    }
    // Tab pages: pairs of page index and control ID.
    for (auto& [control, from] : built) {
        auto* tabs = dynamic_cast<STabCtrl*>(control);
        if (from->type != CTRL_TAB || tabs == nullptr) {
            continue;
        }
        std::vector<std::string> words;
        for (const std::string& word :
             Split(Str(from->GetProperty("TAB_CHILDREN_PRIVATE")), ' ', false)) {
            if (!word.empty()) {
                words.push_back(word);
            }
        }
        for (size_t i = 0; i + 1 < words.size(); i += 2) {
            int page = static_cast<int>(ParseDefinitionNumber(words[i].c_str()));
            unsigned id = static_cast<unsigned>(ParseDefinitionNumber(words[i + 1].c_str()));
            SWnd* target = dialog->GetControl(id);
            if (page >= 0 && page < tabs->GetPageCount() && target != nullptr && target != tabs) {
                tabs->AddToPage(page, target);
            }
        }
        tabs->SelectPage(tabs->GetSelectedPage() >= 0 ? tabs->GetSelectedPage() : 0);
    }
    SDialogBuilder::SetCommandTarget(dialog, options.commandTarget);
    if (!layer && options.provider) {
        std::string bytes;
        if (FindFile(options.provider, record.GetProperty("DIALOG_TOOLBAR"), &bytes)) {
            SFileMem file;
            file.Write(bytes.data(), static_cast<int>(bytes.size()));
            file.Seek(0);
            const SDialogResourceProvider& provider = options.provider;
            dialog->AddToolBar(&file, options.toolbarNames,
                               [&provider](const SString& name, SImage* image) {
                                   return FindImage(provider, name, image);
                               });
        }
        if (FindFile(options.provider, record.GetProperty("DIALOG_MENU"), &bytes)) {
            SFileMem file;
            file.Write(bytes.data(), static_cast<int>(bytes.size()));
            file.Seek(0);
            SMenuDefinition menuDefinition;
            auto menu = std::make_unique<SMenu>();
            if (menuDefinition.Load(&file, options.menuNames) && menu->Load(menuDefinition) &&
                menu->UseAsMenuBar(dialog, true)) {
                SDialogBuilder::SetMenu(dialog, std::move(menu));
            }
        }
    }
    if (uint32_t back = 0; RecordColor(record.backColor, &back)) {
        dialog->SetBackColor(back);
    }
    SSize client = dialog->GetClientSize();
    if (record.GetPropertyBool("DIALOG_MINSIZE")) {
        dialog->SetMinMaxClient(client.width, client.height, -1, -1);
    }
    if (record.GetPropertyBool("DIALOG_MAXSIZE")) {
        dialog->SetMinMaxClient(record.GetPropertyBool("DIALOG_MINSIZE") ? client.width : -1,
                                record.GetPropertyBool("DIALOG_MINSIZE") ? client.height : -1,
                                client.width, client.height);
    }
    // Anchors last: they record the sizes as they now are.
    for (auto& [control, from] : built) {
        uint32_t anchor = static_cast<uint32_t>(from->GetPropertyInt("HALIGN")) |
                          static_cast<uint32_t>(from->GetPropertyInt("VALIGN"));
        anchor &= 0xFFu;
        unsigned windowAnchor = 0;
        if (DialogAnchorToWindowAnchor(anchor, &windowAnchor)) {
            control->SetAnchor(windowAnchor);
        } else {
            dialog->KeepDialogAnchor(control, anchor);
        }
    }
    if (record.GetPropertyBool("DIALOG_MAXIMIZED")) {
        dialog->Maximize();
    } else if (record.GetPropertyBool("DIALOG_MINIMIZED")) {
        dialog->Minimize();
    }
    dialog->SetMoveByDrag(record.GetPropertyBool("DIALOG_MOVEWITHMOUSE"));
    dialog->escapeKey = !record.GetPropertyBool("DIALOG_NOMODALESCAPE");
    dialog->enterKey = !record.GetPropertyBool("DIALOG_NOMODALRETURN");
    if (layer) {
        dialog->SetLayered(true);
        dialog->SetAlpha(255);
    }
    if (SString focus = record.GetProperty("DIALOG_FOCUS"); !focus.IsEmpty()) {
        if (SWnd* target =
                dialog->GetControl(static_cast<unsigned>(ParseDefinitionNumber(focus.c_str())))) {
            SetFocus(target->GetHandle());
        }
    }
    if (!options.stayHidden && (record.style & STYLE_VISIBLE) != 0) {
        dialog->Show(SW_SHOW);
    }
    SendMessage(dialog->GetHandle(), SM_READY, 0, 0);
    return true;
}
