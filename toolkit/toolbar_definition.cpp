#include "toolkit/toolbar_definition.h"

#include <algorithm>

#include "foundation/file.h"
#include "toolkit/ini_sections.h"

void SToolbarDefinition::Clear() {
    width = 0;
    height = 0;
    buttons.clear();
}

bool SToolbarDefinition::Load(SFile* file, const SToolbarNameToId& nameToId, SString* error) {
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
    if (!ini.SetDefinitionSource(file, TOOLBAR_MAGIC, &reason)) {
        return fail(reason.c_str());
    }
    width = ini.ReadInt("", "width");
    height = ini.ReadInt("", "height");
    int count = std::max(0, ini.ReadInt("", "count"));
    if (count > ini.GetSectionCount() - 1) {
        return fail("the button count is larger than the file");
    }
    buttons.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        SString section;
        section.Format("%d", i);
        const char* name = section.c_str();
        SToolbarButtonRecord& button = buttons[i];
        button.name = ini.ReadString(name, "name");
        button.image = ini.ReadString(name, "image");
        button.separator = ini.ReadBool(name, "separator");
        button.data = ini.ReadInt(name, "data");
        button.disabled = ini.ReadBool(name, "disabled");
        button.text = ini.ReadString(name, "text");
        button.id = nameToId ? nameToId(button.name) : 0;
        // A separator keeps the ID as it came; a button without a command
        // still gets one of its own.
        if (!button.separator && button.id == 0) {
            button.id = -2 - i;
        }
    }
    return true;
}

SString SToolbarDefinition::Format() const {
    SString text = SString(TOOLBAR_MAGIC) + "\r\n[]\r\n";
    AddIniNumber(text, "width", width);
    AddIniNumber(text, "height", height);
    AddIniNumber(text, "count", static_cast<long long>(buttons.size()));
    bool complete = true;
    for (size_t i = 0; i < buttons.size(); ++i) {
        const SToolbarButtonRecord& button = buttons[i];
        SString section;
        section.Format("\r\n[%zu]\r\n", i);
        text += section;
        complete &= AddIniLine(text, "name", button.name);
        complete &= AddIniLine(text, "image", button.image);
        AddIniNumber(text, "separator", button.separator ? 1 : 0);
        AddIniNumber(text, "data", button.data);
        AddIniNumber(text, "disabled", button.disabled ? 1 : 0);
        complete &= AddIniLine(text, "text", button.text);
    }
    return complete ? text : SString();
}

bool SToolbarDefinition::Save(SFile* file) const {
    if (file == nullptr) {
        return false;
    }
    SString text = Format();
    return !text.IsEmpty() && file->Write(text.c_str(), text.GetLength()) == text.GetLength();
}
