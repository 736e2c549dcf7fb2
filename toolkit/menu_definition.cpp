#include "toolkit/menu_definition.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "foundation/file.h"
#include "toolkit/ini_sections.h"

namespace {

SString SectionName(int menu, int item = -1) {
    SString name;
    if (item < 0) {
        name.Format("%d", menu);
    } else {
        name.Format("%d:%d", menu, item);
    }
    return name;
}

} // namespace

SString SMenuItemRecord::GetShownText() const {
    if (tip.IsEmpty()) {
        return text;
    }
    return text + "\t" + tip;
}

void SMenuDefinition::Clear() {
    menus.clear();
    images.clear();
}

void SMenuDefinition::UpdateImages() {
    images.clear();
    for (SMenuRecord& menu : menus) {
        for (SMenuItemRecord& item : menu.items) {
            item.imageIndex = -1;
            if (item.image.IsEmpty()) {
                continue;
            }
            for (size_t i = 0; i < images.size(); ++i) {
                if (images[i] == item.image) {
                    item.imageIndex = static_cast<int>(i);
                    break;
                }
            }
            if (item.imageIndex < 0) {
                item.imageIndex = static_cast<int>(images.size());
                images.push_back(item.image);
            }
        }
    }
}

bool SMenuDefinition::Load(SFile* file, const SMenuNameToId& nameToId, SString* error) {
    Clear();
    auto fail = [&](const char* reason) {
        Clear();
        if (error != nullptr) {
            *error = reason;
        }
        return false;
    };
    SIniSections ini;
    SString reason;
    if (!ini.SetDefinitionSource(file, MENU_MAGIC, &reason)) {
        return fail(reason.c_str());
    }
    int count = ini.ReadInt("", "count");
    if (count < 1) {
        return fail("the menu count is below 1");
    }
    // Every menu and item the counts promise has a section line of its own
    // beside the leading "[]" in a file this program writes.
    int64_t promised = count;
    if (promised > ini.GetSectionCount() - 1) {
        return fail("the menu count is larger than the file");
    }
    std::vector<int> itemCounts(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        itemCounts[i] = std::max(0, ini.ReadInt(SectionName(i).c_str(), "count"));
        promised += itemCounts[i];
        if (promised > ini.GetSectionCount() - 1) {
            return fail("the item counts are larger than the file");
        }
    }
    menus.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        SMenuRecord& menu = menus[i];
        menu.name = ini.ReadString(SectionName(i).c_str(), "name");
        menu.items.resize(static_cast<size_t>(itemCounts[i]));
        for (int j = 0; j < itemCounts[i]; ++j) {
            SString section = SectionName(i, j);
            const char* name = section.c_str();
            SMenuItemRecord& item = menu.items[j];
            item.name = ini.ReadString(name, "name");
            item.id = nameToId ? nameToId(item.name) : ini.ReadInt(name, "id");
            item.separator = ini.ReadBool(name, "separator");
            int submenu = ini.ReadInt(name, "menu");
            item.submenu = submenu >= 1 && submenu < count ? submenu : -1;
            item.text = ini.ReadString(name, "text");
            item.tip = ini.ReadString(name, "tip");
            item.image = ini.ReadString(name, "image");
            item.data = ini.ReadInt(name, "data");
            item.checked = ini.ReadBool(name, "checked");
            item.disabled = ini.ReadBool(name, "disabled");
        }
    }
    UpdateImages();
    return true;
}

SString SMenuDefinition::Format() const {
    SString text = SString(MENU_MAGIC) + "\r\n[]\r\n";
    AddIniNumber(text, "count", static_cast<long long>(menus.size()));
    bool complete = true;
    for (size_t i = 0; i < menus.size(); ++i) {
        const SMenuRecord& menu = menus[i];
        text += SString("\r\n[") + SectionName(static_cast<int>(i)) + "]\r\n";
        complete &= AddIniLine(text, "name", menu.name);
        AddIniNumber(text, "count", static_cast<long long>(menu.items.size()));
        for (size_t j = 0; j < menu.items.size(); ++j) {
            const SMenuItemRecord& item = menu.items[j];
            text +=
                SString("\r\n[") + SectionName(static_cast<int>(i), static_cast<int>(j)) + "]\r\n";
            AddIniNumber(text, "id", item.id);
            complete &= AddIniLine(text, "name", item.name);
            AddIniNumber(text, "separator", item.separator ? 1 : 0);
            AddIniNumber(text, "menu", item.submenu >= 1 ? item.submenu : 0);
            complete &= AddIniLine(text, "text", item.text);
            complete &= AddIniLine(text, "tip", item.tip);
            complete &= AddIniLine(text, "image", item.image);
            AddIniNumber(text, "data", item.data);
            AddIniNumber(text, "checked", item.checked ? 1 : 0);
            AddIniNumber(text, "disabled", item.disabled ? 1 : 0);
        }
    }
    return complete ? text : SString();
}

bool SMenuDefinition::Save(SFile* file) const {
    if (file == nullptr || menus.empty()) {
        return false;
    }
    SString text = Format();
    return !text.IsEmpty() && file->Write(text.c_str(), text.GetLength()) == text.GetLength();
}
