#include "toolkit/menu_definition.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "foundation/file.h"
#include "toolkit/ini_sections.h"

namespace {

// "key=value" CR LF; false when the value holds CR LF.
bool AddLine(SString& text, const char* key, const SString& value) {
    if (value.Find("\r\n") >= 0) {
        return false;
    }
    text += key;
    text += '=';
    text += value;
    text += "\r\n";
    return true;
}

void AddNumber(SString& text, const char* key, long long value) {
    SString number;
    number.Format("%lld", value);
    AddLine(text, key, number);
}

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
    if (file == nullptr || !file->IsOpen()) {
        return fail("no file");
    }
    if (file->ReadLine(true) != SString(MENU_MAGIC)) {
        return fail("the first line is not \"TAVORA MENU 1.0.0.0\"");
    }
    SIniSections ini;
    ini.SetSource(file);
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
    AddNumber(text, "count", static_cast<long long>(menus.size()));
    bool complete = true;
    for (size_t i = 0; i < menus.size(); ++i) {
        const SMenuRecord& menu = menus[i];
        text += SString("\r\n[") + SectionName(static_cast<int>(i)) + "]\r\n";
        complete &= AddLine(text, "name", menu.name);
        AddNumber(text, "count", static_cast<long long>(menu.items.size()));
        for (size_t j = 0; j < menu.items.size(); ++j) {
            const SMenuItemRecord& item = menu.items[j];
            text +=
                SString("\r\n[") + SectionName(static_cast<int>(i), static_cast<int>(j)) + "]\r\n";
            AddNumber(text, "id", item.id);
            complete &= AddLine(text, "name", item.name);
            AddNumber(text, "separator", item.separator ? 1 : 0);
            AddNumber(text, "menu", item.submenu >= 1 ? item.submenu : 0);
            complete &= AddLine(text, "text", item.text);
            complete &= AddLine(text, "tip", item.tip);
            complete &= AddLine(text, "image", item.image);
            AddNumber(text, "data", item.data);
            AddNumber(text, "checked", item.checked ? 1 : 0);
            AddNumber(text, "disabled", item.disabled ? 1 : 0);
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
