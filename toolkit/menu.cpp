// The toolkit-drawn menu: items, the open levels on popup surfaces, their
// keys, pointer and painting, and the menu bar.
#include "toolkit/menu.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <string>

#include "foundation/image.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/draw.h"
#include "toolkit/menu_definition.h"
#include "toolkit/messages.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr int FRAME = 2;         // border around the items
constexpr int SEPARATOR = 7;     // height of a separator row
constexpr int LEFT_COLUMN = 26;  // check mark or image
constexpr int RIGHT_COLUMN = 22; // submenu arrow
constexpr int SHORTCUT_GAP = 24; // between text and shortcut
constexpr int BAR_PADDING = 8;   // each side of a bar title
constexpr uintptr_t SUBMENU_TIMER = 1;
constexpr unsigned VK_MENU_KEY = 18; // Alt

SFont* MenuFont() {
    SFont* font = GetSystemFont(2);
    return font != nullptr ? font : GetDefaultFont();
}

// The shown text of "&"-marked text and the byte of the underlined letter
// (-1 for none).
std::string ShownText(const SString& text, int* underline) {
    std::string shown;
    *underline = -1;
    const char* s = text.c_str();
    for (int i = 0; s[i] != 0; ++i) {
        if (s[i] == '&' && s[i + 1] != 0) {
            ++i;
            if (s[i] != '&' && *underline < 0) {
                *underline = static_cast<int>(shown.size());
            }
        }
        shown += s[i];
    }
    return shown;
}

int ItemHeight() {
    return std::max(22, TextMetrics(MenuFont()).height + 8);
}

int RowHeight(const SMenuItem& item) {
    return item.separator ? SEPARATOR : ItemHeight();
}

SSize Measure(const std::string& text) {
    return TextSize(MenuFont(), text.c_str(), static_cast<int>(text.size()));
}

// Shows text (with its mnemonic underlined) with its left at x, centred in
// the rows top to bottom.
void ShowText(cairo_t* cr, const SString& text, int x, int top, int bottom, bool mnemonic) {
    int underline = -1;
    std::string shown = mnemonic ? ShownText(text, &underline) : std::string(text.c_str());
    PangoLayout* layout =
        MakeTextLayout(cr, MenuFont(), shown.c_str(), static_cast<int>(shown.size()));
    if (underline >= 0) {
        PangoAttrList* attributes = pango_attr_list_new();
        PangoAttribute* line = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
        line->start_index = static_cast<unsigned>(underline);
        line->end_index =
            static_cast<unsigned>(g_utf8_next_char(shown.c_str() + underline) - shown.c_str());
        pango_attr_list_insert(attributes, line);
        pango_layout_set_attributes(layout, attributes);
        pango_attr_list_unref(attributes);
    }
    int width = 0, height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    cairo_move_to(cr, x, top + (bottom - top - height) / 2);
    pango_cairo_show_layout(cr, layout);
    g_object_unref(layout);
}

} // namespace

char32_t SMenuItem::Mnemonic() const {
    int underline = -1;
    std::string shown = ShownText(text, &underline);
    if (underline < 0) {
        return 0;
    }
    gunichar c = g_utf8_get_char_validated(shown.c_str() + underline, -1);
    if (c == static_cast<gunichar>(-1) || c == static_cast<gunichar>(-2)) {
        return 0;
    }
    return g_unichar_tolower(c);
}

// The open levels of a menu opened by TrackPopup or from the bar.
class SMenu::Tracker {
public:
    explicit Tracker(SMenu* root) : root(root) {}
    ~Tracker();

    bool Open(SMenu* menu, HWND owner, int x, int y, bool fromBar);
    bool OpenSubmenu(int depth, int item, bool selectFirst);
    void CloseFrom(int depth);
    void CloseAll(bool restoreFocus);
    void Pick(int id);
    bool IsLevel(HWND hwnd) const;
    void BarStep(int step);

    SMenu* root;
    HWND owner = 0;
    HWND previousFocus = 0;
    bool fromBar = false;
    bool closing = false;
    std::vector<std::unique_ptr<Level>> levels;
    std::vector<std::unique_ptr<Level>> dead; // destroyed, freed when safe
    int inside = 0;                           // level messages being handled
};

// One open level: a popup surface showing one menu.
class SMenu::Level : public SWnd {
public:
    Level(Tracker* tracker, SMenu* menu, int depth) : depth(depth), menu(menu), tracker(tracker) {}

    int ItemTop(int index) const {
        int top = FRAME;
        for (int i = 0; i < index; ++i) {
            top += RowHeight(menu->items[i]);
        }
        return top;
    }
    int ItemAt(int y) const {
        int top = FRAME;
        for (int i = 0; i < menu->GetItemCount(); ++i) {
            int height = RowHeight(menu->items[i]);
            if (y >= top && y < top + height) {
                return i;
            }
            top += height;
        }
        return -1;
    }
    void SetHot(int item) {
        if (item != hot) {
            hot = item;
            Invalidate();
        }
    }
    // The next selectable item from hot in direction step, wrapping;
    // hot itself when there is no other.
    int Step(int from, int step) const {
        int count = menu->GetItemCount();
        int at = from;
        for (int i = 0; i < count; ++i) {
            at = at < 0 ? (step > 0 ? 0 : count - 1) : (at + step + count) % count;
            if (menu->items[at].IsSelectable()) {
                return at;
            }
        }
        return from;
    }
    void Activate(int item) {
        if (item < 0 || !menu->items[item].IsSelectable()) {
            return;
        }
        SetHot(item);
        if (menu->items[item].submenu != nullptr) {
            tracker->OpenSubmenu(depth, item, true);
        } else {
            tracker->Pick(menu->items[item].id);
        }
    }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        Tracker* own = tracker;
        ++own->inside;
        LRESULT result = 0;
        if (!Handle(message, wParam, lParam, &result)) {
            result = SWnd::OnMessage(message, wParam, lParam);
        }
        --own->inside;
        return result;
    }

    int hot = -1;
    int depth;
    SMenu* menu;

private:
    // True when the message was taken.
    bool Handle(unsigned message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
        *result = 0;
        switch (message) {
        case WM_PAINT:
            Paint(reinterpret_cast<cairo_t*>(wParam));
            return true;
        case WM_MOUSEMOVE: {
            int item = ItemAt(PointParamY(lParam));
            if (item >= 0 && menu->items[item].IsSelectable() && item != hot) {
                SetHot(item);
                SetTimer(GetHandle(), SUBMENU_TIMER, MENU_SUBMENU_DELAY);
            }
            return true;
        }
        case WM_TIMER:
            if (wParam == SUBMENU_TIMER) {
                KillTimer(GetHandle(), SUBMENU_TIMER);
                OnRest();
            }
            return true;
        case WM_LBUTTONUP:
            Activate(ItemAt(PointParamY(lParam)));
            return true;
        case WM_KEYDOWN:
            OnKey(static_cast<unsigned>(wParam));
            return true;
        case WM_NCLBUTTONDOWN: // a press outside, as the popup's hold reports it
        case WM_NCRBUTTONDOWN:
        case WM_NCMBUTTONDOWN:
            OnPressOutside(SPoint{PointParamX(lParam), PointParamY(lParam)});
            return true;
        case WM_KILLFOCUS:
            if (!tracker->closing && !tracker->IsLevel(static_cast<HWND>(wParam))) {
                PostMessage(GetHandle(), WM_CLOSE, 0, 0);
            }
            return false;
        case WM_CLOSE:
            if (tracker->IsLevel(GetHandle())) {
                tracker->CloseAll(false);
            }
            return true;
        default:
            return false;
        }
    }

    // The pointer rested: the submenu under it opens, a deeper level
    // showing another one closes.
    void OnRest() {
        if (hot < 0) {
            return;
        }
        const SMenuItem& item = menu->items[hot];
        int deeper = depth + 1;
        bool shown = deeper < static_cast<int>(tracker->levels.size()) &&
                     tracker->levels[deeper]->menu == item.submenu.get();
        if (item.submenu != nullptr && item.IsSelectable()) {
            if (!shown) {
                tracker->OpenSubmenu(depth, hot, false);
            }
        } else if (deeper < static_cast<int>(tracker->levels.size())) {
            tracker->CloseFrom(deeper);
        }
    }

    void OnKey(unsigned key) {
        switch (key) {
        case ctrlkey::UP:
            SetHot(Step(hot, -1));
            return;
        case ctrlkey::DOWN:
            SetHot(Step(hot, 1));
            return;
        case ctrlkey::HOME:
            SetHot(Step(-1, 1));
            return;
        case ctrlkey::END:
            SetHot(Step(-1, -1));
            return;
        case ctrlkey::RIGHT:
            if (hot >= 0 && menu->items[hot].submenu != nullptr &&
                menu->items[hot].IsSelectable()) {
                tracker->OpenSubmenu(depth, hot, true);
            } else if (tracker->fromBar) {
                tracker->BarStep(1);
            }
            return;
        case ctrlkey::LEFT:
            if (depth > 0) {
                tracker->CloseFrom(depth);
            } else if (tracker->fromBar) {
                tracker->BarStep(-1);
            }
            return;
        case VK_ESCAPE:
            if (depth > 0) {
                tracker->CloseFrom(depth);
            } else {
                tracker->CloseAll(true);
            }
            return;
        case VK_RETURN:
        case ctrlkey::SPACE:
            Activate(hot);
            return;
        case ctrlkey::F10:
        case VK_MENU_KEY:
            tracker->CloseAll(true);
            return;
        default:
            break;
        }
        bool letter = (key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9');
        if (!letter) {
            return;
        }
        char32_t wanted = static_cast<char32_t>(key >= 'A' && key <= 'Z' ? key - 'A' + 'a' : key);
        std::vector<int> matches;
        for (int i = 0; i < menu->GetItemCount(); ++i) {
            if (menu->items[i].IsSelectable() && menu->items[i].Mnemonic() == wanted) {
                matches.push_back(i);
            }
        }
        if (matches.size() == 1) {
            Activate(matches[0]);
        } else if (!matches.empty()) {
            auto next = std::upper_bound(matches.begin(), matches.end(), hot);
            SetHot(next != matches.end() ? *next : matches[0]);
        }
    }

    void OnPressOutside(SPoint screen) {
        for (const std::unique_ptr<Level>& level : tracker->levels) {
            if (level.get() != this && level->GetWindowRect().Contains(screen)) {
                SPoint point = screen;
                level->ScreenToClient(&point);
                level->Activate(level->ItemAt(point.y));
                return;
            }
        }
        if (tracker->fromBar && tracker->root->barWindow != nullptr) {
            SRect frame = tracker->root->barWindow->GetWindowRect();
            SPoint point{screen.x - frame.left, screen.y - frame.top};
            for (int i = 0; i < tracker->root->GetItemCount(); ++i) {
                if (tracker->root->GetBarItemRect(i).Contains(point)) {
                    if (i != tracker->root->openBarItem) {
                        tracker->root->OpenBarItem(i);
                    } else {
                        tracker->CloseAll(true);
                    }
                    return;
                }
            }
        }
        tracker->CloseAll(true);
    }

    void Paint(cairo_t* cr) {
        SRect client = GetClientRect();
        FillRect(cr, &client, GetSysColor(SYS_COLOR_MENU));
        DrawFrame(cr, &client, SPen{GetSysColor(SYS_COLOR_BTNSHADOW), 1});
        int top = FRAME;
        for (int i = 0; i < menu->GetItemCount(); ++i) {
            const SMenuItem& item = menu->items[i];
            int height = RowHeight(item);
            if (item.separator) {
                DrawLine(cr, SPoint{6, top + SEPARATOR / 2},
                         SPoint{client.right - 6, top + SEPARATOR / 2},
                         SPen{GetSysColor(SYS_COLOR_BTNSHADOW), 1});
                top += height;
                continue;
            }
            SRect row{FRAME, top, client.right - FRAME, top + height};
            bool hotRow = i == hot && item.IsSelectable();
            if (hotRow) {
                FillRect(cr, &row, GetSysColor(SYS_COLOR_MENUHILIGHT));
            }
            uint32_t color = item.disabled ? GetSysColor(SYS_COLOR_GRAYTEXT)
                             : hotRow      ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT)
                                           : GetSysColor(SYS_COLOR_MENUTEXT);
            int middle = top + height / 2;
            if (item.image != nullptr) {
                item.image->DrawAt(cr, 6, middle - MENU_IMAGE_SIZE / 2, MENU_IMAGE_SIZE,
                                   MENU_IMAGE_SIZE);
            }
            SetSourceColor(cr, color);
            if (item.checked) { // a tick in the left column
                cairo_set_line_width(cr, 2);
                cairo_move_to(cr, 8, middle);
                cairo_line_to(cr, 12, middle + 4);
                cairo_line_to(cr, 19, middle - 5);
                cairo_stroke(cr);
            }
            ShowText(cr, item.text, LEFT_COLUMN, top, top + height, true);
            if (!item.shortcut.IsEmpty()) {
                SSize size = Measure(item.shortcut.c_str());
                ShowText(cr, item.shortcut, client.right - RIGHT_COLUMN - size.width, top,
                         top + height, false);
            }
            if (item.submenu != nullptr) { // an arrow to the right
                int x = client.right - FRAME - 12;
                cairo_move_to(cr, x, middle - 4);
                cairo_line_to(cr, x + 4, middle);
                cairo_line_to(cr, x, middle + 4);
                cairo_close_path(cr);
                cairo_fill(cr);
            }
            top += height;
        }
    }

    Tracker* tracker;
};

SMenu::Tracker::~Tracker() {
    closing = true;
    for (std::unique_ptr<Level>& level : levels) {
        level->Destroy();
    }
}

bool SMenu::Tracker::IsLevel(HWND hwnd) const {
    return hwnd != 0 && std::any_of(levels.begin(), levels.end(),
                                    [&](const auto& level) { return level->GetHandle() == hwnd; });
}

bool SMenu::Tracker::Open(SMenu* menu, HWND newOwner, int x, int y, bool bar) {
    if (!levels.empty() || menu->items.empty()) {
        return false;
    }
    if (inside == 0) {
        dead.clear();
    }
    SSize size = menu->MeasurePopup();
    SRect work{0, 0, 0, 0};
    if (GetPlatform() == nullptr || !GetPlatform()->GetWorkArea(&work) || work.IsEmpty()) {
        work = SRect{x - 10000, y - 10000, x + 10000, y + 10000};
    }
    if (x + size.width > work.right) {
        x -= size.width; // opens to the left of the point
    }
    if (y + size.height > work.bottom) {
        y = bar ? work.bottom - size.height : y - size.height;
    }
    x = std::max(x, static_cast<int>(work.left));
    y = std::max(y, static_cast<int>(work.top));
    auto level = std::make_unique<Level>(this, menu, 0);
    SRect rect{x, y, x + size.width, y + size.height};
    if (!level->Create("", WS_POPUP | WS_VISIBLE, WS_EX_TOOLWINDOW, &rect, 0)) {
        return false;
    }
    owner = newOwner;
    fromBar = bar;
    if (previousFocus == 0) {
        previousFocus = GetFocus();
    }
    levels.push_back(std::move(level));
    SetFocus(levels.back()->GetHandle());
    return true;
}

bool SMenu::Tracker::OpenSubmenu(int depth, int item, bool selectFirst) {
    CloseFrom(depth + 1);
    Level* parent = levels[depth].get();
    SMenu* sub = parent->menu->items[item].submenu.get();
    if (sub == nullptr || sub->items.empty()) {
        return false;
    }
    SSize size = sub->MeasurePopup();
    SRect from = parent->GetWindowRect();
    SRect work{0, 0, 0, 0};
    if (GetPlatform() == nullptr || !GetPlatform()->GetWorkArea(&work) || work.IsEmpty()) {
        work = SRect{from.left - 10000, from.top - 10000, from.right + 10000, from.bottom + 10000};
    }
    int x = from.right - FRAME;
    if (x + size.width > work.right) {
        x = from.left - size.width + FRAME; // flips to the parent's left
    }
    x = std::max(x, static_cast<int>(work.left));
    int y = from.top + parent->ItemTop(item) - FRAME;
    if (y + size.height > work.bottom) {
        y = work.bottom - size.height;
    }
    y = std::max(y, static_cast<int>(work.top));
    auto level = std::make_unique<Level>(this, sub, depth + 1);
    SRect rect{x, y, x + size.width, y + size.height};
    if (!level->Create("", WS_POPUP | WS_VISIBLE, WS_EX_TOOLWINDOW, &rect, 0)) {
        return false;
    }
    if (selectFirst) {
        level->hot = level->Step(-1, 1);
    }
    parent->SetHot(item);
    levels.push_back(std::move(level));
    SetFocus(levels.back()->GetHandle());
    return true;
}

void SMenu::Tracker::CloseFrom(int depth) {
    if (depth >= static_cast<int>(levels.size())) {
        return;
    }
    closing = true;
    if (depth > 0) {
        SetFocus(levels[depth - 1]->GetHandle());
    }
    while (static_cast<int>(levels.size()) > depth) {
        std::unique_ptr<Level> level = std::move(levels.back());
        levels.pop_back();
        KillTimer(level->GetHandle(), SUBMENU_TIMER);
        level->Destroy();
        dead.push_back(std::move(level));
    }
    closing = false;
}

void SMenu::Tracker::CloseAll(bool restoreFocus) {
    if (levels.empty()) {
        return;
    }
    closing = true;
    if (restoreFocus && previousFocus != 0 && SWnd::FromHandle(previousFocus) != nullptr) {
        SetFocus(previousFocus);
    }
    previousFocus = 0;
    CloseFrom(0);
    if (fromBar && root->barWindow != nullptr) {
        root->openBarItem = -1;
        root->barWindow->Invalidate();
    }
    fromBar = false;
}

void SMenu::Tracker::Pick(int id) {
    HWND to = owner;
    CloseAll(true);
    if (to != 0) {
        PostMessage(to, WM_COMMAND, static_cast<WPARAM>(id), 0);
    }
}

void SMenu::Tracker::BarStep(int step) {
    int count = root->GetItemCount();
    int at = root->openBarItem;
    for (int i = 0; i < count; ++i) {
        at = (at + step + count) % count;
        const SMenuItem& item = root->items[at];
        if (item.submenu != nullptr && item.IsSelectable() && !item.submenu->items.empty()) {
            root->OpenBarItem(at);
            return;
        }
    }
}

SMenu::SMenu() = default;

SMenu::~SMenu() {
    if (barWindow != nullptr && barWindow->GetHandle() != 0 && barWindow->GetMenu() == this) {
        barWindow->SetMenu(nullptr, false);
    }
}

SMenuItem& SMenu::AppendItem(int id, const SString& text, unsigned flags) {
    SMenuItem item;
    item.id = id;
    int tab = text.Find('\t');
    if (tab >= 0) {
        item.text = text.Left(tab);
        item.shortcut = text.Mid(tab + 1);
    } else {
        item.text = text;
    }
    item.checked = (flags & MENU_ITEM_CHECKED) != 0;
    item.disabled = (flags & MENU_ITEM_DISABLED) != 0;
    items.push_back(std::move(item));
    return items.back();
}

void SMenu::AppendSeparator() {
    SMenuItem item;
    item.separator = true;
    items.push_back(std::move(item));
}

SMenu* SMenu::AppendSubmenu(const SString& text, unsigned flags) {
    SMenuItem& item = AppendItem(0, text, flags);
    item.submenu = std::make_unique<SMenu>();
    return item.submenu.get();
}

void SMenu::Clear() {
    if (tracker != nullptr) {
        tracker->CloseAll(false);
    }
    items.clear();
}

bool SMenu::Load(const SMenuDefinition& definition, int index) {
    std::vector<bool> visiting(definition.GetMenus().size(), false);
    Clear();
    return LoadFrom(definition, index, visiting);
}

bool SMenu::LoadFrom(const SMenuDefinition& definition, int index, std::vector<bool>& visiting) {
    const std::vector<SMenuRecord>& menus = definition.GetMenus();
    if (index < 0 || index >= static_cast<int>(menus.size())) {
        return false;
    }
    visiting[index] = true;
    for (const SMenuItemRecord& record : menus[index].items) {
        if (record.separator) {
            AppendSeparator();
            continue;
        }
        SMenuItem& item = AppendItem(record.id, record.text);
        item.shortcut = record.tip;
        item.checked = record.checked;
        item.disabled = record.disabled;
        item.imageName = record.image;
        if (record.IsSubmenu() && record.submenu < static_cast<int>(menus.size()) &&
            !visiting[record.submenu]) {
            item.submenu = std::make_unique<SMenu>();
            item.submenu->LoadFrom(definition, record.submenu, visiting);
        }
    }
    visiting[index] = false;
    return true;
}

SMenuItem* SMenu::FindItem(int id) {
    for (SMenuItem& item : items) {
        if (!item.separator && item.submenu == nullptr && item.id == id) {
            return &item;
        }
        if (item.submenu != nullptr) {
            SMenuItem* found = item.submenu->FindItem(id);
            if (found != nullptr) {
                return found;
            }
        }
    }
    return nullptr;
}

bool SMenu::CheckItem(int id, bool checked) {
    SMenuItem* item = FindItem(id);
    if (item != nullptr) {
        item->checked = checked;
    }
    return item != nullptr;
}

bool SMenu::EnableItem(int id, bool enabled) {
    SMenuItem* item = FindItem(id);
    if (item != nullptr) {
        item->disabled = !enabled;
    }
    return item != nullptr;
}

SSize SMenu::MeasurePopup() const {
    int textWidth = 0, shortcutWidth = 0, height = 2 * FRAME;
    for (const SMenuItem& item : items) {
        height += RowHeight(item);
        if (item.separator) {
            continue;
        }
        int underline = -1;
        textWidth =
            std::max(textWidth, static_cast<int>(Measure(ShownText(item.text, &underline)).width));
        if (!item.shortcut.IsEmpty()) {
            shortcutWidth =
                std::max(shortcutWidth, static_cast<int>(Measure(item.shortcut.c_str()).width));
        }
    }
    int width = 2 * FRAME + LEFT_COLUMN + textWidth + RIGHT_COLUMN +
                (shortcutWidth > 0 ? SHORTCUT_GAP + shortcutWidth : 0);
    return SSize{std::max(width, 120), height};
}

bool SMenu::TrackPopup(HWND owner, int screenX, int screenY) {
    if (tracker == nullptr) {
        tracker = std::make_unique<Tracker>(this);
    }
    return tracker->Open(this, owner, screenX, screenY, false);
}

void SMenu::Close() {
    if (tracker != nullptr) {
        tracker->CloseAll(true);
    }
}

bool SMenu::IsOpen() const {
    return GetLevelCount() > 0;
}

int SMenu::GetLevelCount() const {
    return tracker != nullptr ? static_cast<int>(tracker->levels.size()) : 0;
}

SWnd* SMenu::GetLevel(int level) const {
    return level >= 0 && level < GetLevelCount() ? tracker->levels[level].get() : nullptr;
}

int SMenu::GetHot(int level) const {
    return level >= 0 && level < GetLevelCount() ? tracker->levels[level]->hot : -1;
}

SMenu* SMenu::GetLevelMenu(int level) const {
    return level >= 0 && level < GetLevelCount() ? tracker->levels[level]->menu : nullptr;
}

bool SMenu::UseAsMenuBar(SWnd* window, bool keepClientHeight) {
    SetMenuBarPainter(&SMenu::BarPainter);
    SetMenuBarPressHandler(&SMenu::BarPress);
    SetMenuBarKeyHandler(&SMenu::BarKey);
    if (window == nullptr || !window->SetMenu(this, keepClientHeight)) {
        return false;
    }
    barWindow = window;
    return true;
}

SRect SMenu::GetBarItemRect(int index) const {
    int x = 4;
    int height = GetMenuBarHeight();
    for (int i = 0; i < GetItemCount(); ++i) {
        int underline = -1;
        int width =
            static_cast<int>(Measure(ShownText(items[i].text, &underline)).width) + 2 * BAR_PADDING;
        if (i == index) {
            return SRect{x, 0, x + width, height};
        }
        x += width;
    }
    return SRect{0, 0, 0, 0};
}

bool SMenu::OpenBarItem(int index) {
    if (barWindow == nullptr || barWindow->GetHandle() == 0 || index < 0 ||
        index >= GetItemCount()) {
        return false;
    }
    SMenuItem& item = items[index];
    if (item.submenu == nullptr || !item.IsSelectable() || item.submenu->items.empty()) {
        return false;
    }
    if (tracker == nullptr) {
        tracker = std::make_unique<Tracker>(this);
    }
    HWND focus = tracker->levels.empty() ? GetFocus() : tracker->previousFocus;
    tracker->CloseAll(false);
    SRect frame = barWindow->GetWindowRect();
    SRect title = GetBarItemRect(index);
    tracker->previousFocus = focus;
    if (!tracker->Open(item.submenu.get(), barWindow->GetHandle(), frame.left + title.left,
                       frame.top + title.bottom, true)) {
        return false;
    }
    openBarItem = index;
    barWindow->Invalidate();
    return true;
}

void SMenu::PaintBar(cairo_t* cr, const SRect& bar) {
    FillRect(cr, &bar, GetSysColor(SYS_COLOR_MENUBAR));
    for (int i = 0; i < GetItemCount(); ++i) {
        SRect title = GetBarItemRect(i);
        title.top = bar.top;
        title.bottom = bar.bottom;
        bool open = i == openBarItem;
        if (open) {
            FillRect(cr, &title, GetSysColor(SYS_COLOR_MENUHILIGHT));
        }
        SetSourceColor(cr, items[i].disabled ? GetSysColor(SYS_COLOR_GRAYTEXT)
                           : open            ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT)
                                             : GetSysColor(SYS_COLOR_MENUTEXT));
        ShowText(cr, items[i].text, title.left + BAR_PADDING, title.top, title.bottom, true);
    }
}

void SMenu::BarPainter(SWnd*, SMenu* menu, cairo_t* cr, const SRect& bar) {
    menu->PaintBar(cr, bar);
}

void SMenu::BarPress(SWnd* window, SMenu* menu, int x, int y) {
    if (menu->barWindow != window) {
        return;
    }
    for (int i = 0; i < menu->GetItemCount(); ++i) {
        if (menu->GetBarItemRect(i).Contains(SPoint{x, y})) {
            if (i == menu->openBarItem) {
                menu->Close();
            } else {
                menu->OpenBarItem(i);
            }
            return;
        }
    }
}

bool SMenu::BarKey(SWnd* window, SMenu* menu) {
    if (menu->barWindow != window || menu->IsOpen()) {
        return false;
    }
    if (menu->tracker == nullptr) {
        menu->tracker = std::make_unique<Tracker>(menu);
    }
    menu->openBarItem = -1;
    menu->tracker->BarStep(1);
    if (!menu->IsOpen()) {
        return false;
    }
    Level* first = menu->tracker->levels[0].get();
    first->SetHot(first->Step(-1, 1));
    return true;
}
