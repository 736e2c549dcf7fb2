#include "toolkit/tray_icon.h"

#include <atomic>
#include <map>
#include <mutex>

#include "foundation/message_numbers.h"
#include "toolkit/menu.h"
#include "toolkit/mouse_event.h"
#include "toolkit/platform/events.h"

namespace {

constexpr int MAX_MENU_DEPTH = 16;

// The icons by number, so that the platform's reports find theirs; a
// report for an icon removed meanwhile finds nothing.
std::mutex registryMutex;
std::map<int, STrayIcon*>& Registry() {
    static std::map<int, STrayIcon*> icons;
    return icons;
}

STrayIcon* FindIcon(int tray) {
    std::lock_guard<std::mutex> lock(registryMutex);
    auto found = Registry().find(tray);
    return found != Registry().end() ? found->second : nullptr;
}

void Mirror(const SMenu& menu, int depth, int* secondaryId, std::vector<STrayMenuItem>* out) {
    for (int i = 0; i < menu.GetItemCount(); ++i) {
        const SMenuItem& item = menu.GetItem(i);
        STrayMenuItem copy;
        copy.id = item.id;
        copy.separator = item.separator;
        copy.checked = item.checked;
        copy.disabled = item.disabled;
        if (!item.separator) {
            copy.text = STrayIcon::MnemonicText(item.text);
        }
        if (*secondaryId != 0 && item.id == *secondaryId && !item.separator &&
            item.submenu == nullptr) {
            copy.secondary = true;
            *secondaryId = 0; // the first one only
        }
        if (item.submenu != nullptr && depth + 1 < MAX_MENU_DEPTH) {
            Mirror(*item.submenu, depth + 1, secondaryId, &copy.submenu);
        }
        out->push_back(std::move(copy));
    }
}

} // namespace

STrayIcon::STrayIcon() {
    static std::atomic<int> next{1};
    id = next++;
    std::lock_guard<std::mutex> lock(registryMutex);
    Registry()[id] = this;
}

STrayIcon::~STrayIcon() {
    Remove();
    std::lock_guard<std::mutex> lock(registryMutex);
    Registry().erase(id);
}

bool STrayIcon::Add(HWND newOwner, const SImage& icon, const SString& newTip,
                    const char* iconName) {
    if (newOwner == 0 || owner != 0) {
        return false;
    }
    owner = newOwner;
    tip = newTip;
    shown = GetPlatform()->AddTrayIcon(id, icon, iconName, tip.c_str());
    if (shown && menu != nullptr) {
        GetPlatform()->SetTrayMenu(id, mirrored);
    }
    return true;
}

bool STrayIcon::ChangeIcon(const SImage& icon, const char* iconName) {
    if (owner == 0) {
        return false;
    }
    if (shown) {
        GetPlatform()->SetTrayIcon(id, icon, iconName);
    }
    return true;
}

bool STrayIcon::ChangeTip(const SString& newTip) {
    if (owner == 0) {
        return false;
    }
    tip = newTip;
    if (shown) {
        GetPlatform()->SetTrayTip(id, tip.c_str());
    }
    return true;
}

void STrayIcon::Remove() {
    if (owner == 0) {
        return;
    }
    if (shown) {
        GetPlatform()->RemoveTrayIcon(id);
    }
    owner = 0;
    shown = false;
}

void STrayIcon::SetMenu(SMenu* newMenu) {
    menu = newMenu;
    mirrored.clear();
    if (menu != nullptr) {
        mirrored = MirrorMenu(*menu, secondaryId);
    }
    if (shown) {
        GetPlatform()->SetTrayMenu(id, mirrored);
    }
}

void STrayIcon::UpdateMenu() {
    std::vector<STrayMenuItem> now;
    if (menu != nullptr) {
        now = MirrorMenu(*menu, secondaryId);
    }
    if (now == mirrored) {
        return; // the platform rebuilds its menu only on a change
    }
    mirrored = std::move(now);
    if (shown) {
        GetPlatform()->SetTrayMenu(id, mirrored);
    }
}

void STrayIcon::SetSecondaryItem(int commandId) {
    secondaryId = commandId;
    UpdateMenu();
}

bool STrayIcon::ShowMenu() {
    if (menu == nullptr || owner == 0) {
        return false;
    }
    UpdateMenu();
    if (shown && GetPlatform()->PopupTrayMenu(id)) {
        return true;
    }
    SPoint pointer = GetPlatform()->GetPointer();
    return menu->TrackPopup(owner, pointer.x, pointer.y);
}

unsigned STrayIcon::NotifyCode(STrayEvent event) {
    switch (event) {
    case STrayEvent::ACTIVATE:
    case STrayEvent::SECONDARY_ACTIVATE:
        return MOUSE_DOUBLE_CLICK | MOUSE_LEFT;
    case STrayEvent::CONTEXT_MENU:
        return MOUSE_UP | MOUSE_RIGHT;
    }
    return 0;
}

std::vector<STrayMenuItem> STrayIcon::MirrorMenu(const SMenu& menu, int secondaryId) {
    std::vector<STrayMenuItem> items;
    Mirror(menu, 0, &secondaryId, &items);
    return items;
}

SString STrayIcon::MnemonicText(const SString& text) {
    std::string out;
    bool marked = false;
    for (const char* s = text.c_str(); *s != 0 && *s != '\t'; ++s) {
        if (*s == '_') {
            out += "__";
        } else if (*s == '&' && s[1] != 0 && s[1] != '\t') {
            ++s;
            if (*s == '&') {
                out += '&';
            } else if (*s == '_') {
                out += "__"; // an underscore cannot be a desktop mnemonic
            } else {
                if (!marked) {
                    out += '_';
                    marked = true;
                }
                out += *s;
            }
        } else {
            out += *s;
        }
    }
    return SString(out.c_str());
}

void STrayIcon::OnEvent(STrayEvent event) {
    if (event == STrayEvent::SECONDARY_ACTIVATE && secondaryId != 0) {
        OnCommand(secondaryId);
        return;
    }
    if (owner != 0) {
        SendMessage(owner, SN_TRAY, 0, static_cast<LPARAM>(NotifyCode(event)));
    }
}

void STrayIcon::OnCommand(int commandId) {
    if (owner != 0) {
        PostMessage(owner, WM_COMMAND, static_cast<WPARAM>(commandId), 0);
    }
}

void PlatformTrayEvent(int tray, STrayEvent event) {
    if (STrayIcon* icon = FindIcon(tray)) {
        icon->OnEvent(event);
    }
}

void PlatformTrayCommand(int tray, int id) {
    if (STrayIcon* icon = FindIcon(tray)) {
        icon->OnCommand(id);
    }
}
