#include "dialogs/dialog_definition.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "foundation/file.h"
#include "foundation/parser.h"

namespace {

constexpr int MAX_GENERATED = 9999;

// The key of a property line: what stands before its first "=".
bool KeyMatches(const SString& line, int equals, const char* key) {
    return static_cast<size_t>(equals) == strlen(key) && strncmp(line.c_str(), key, equals) == 0;
}

void ReadFont(const SString& value, SDialogDefinition::_SCtrl& record) {
    SStringArray parts;
    SStringParser parser(value.c_str());
    if (parser.Parse(",", SStringParser::PARSE_QUOTES, '"', &parts) != 3) {
        return;
    }
    record.fontFace = parts.GetText(0);
    record.fontSize = static_cast<uint16_t>(ParseDefinitionNumber(parts.GetText(1).c_str()));
    record.fontFlags = static_cast<uint32_t>(ParseDefinitionNumber(parts.GetText(2).c_str()));
}

void ReadPosition(const SString& value, SDialogDefinition::_SCtrl& record) {
    SStringArray parts;
    SStringParser parser(value.c_str());
    if (parser.Parse(" ", 0, '"', &parts) != 4) {
        return;
    }
    record.x = static_cast<int16_t>(ParseDefinitionNumber(parts.GetText(0).c_str()));
    record.y = static_cast<int16_t>(ParseDefinitionNumber(parts.GetText(1).c_str()));
    record.width = static_cast<int16_t>(ParseDefinitionNumber(parts.GetText(2).c_str()));
    record.height = static_cast<int16_t>(ParseDefinitionNumber(parts.GetText(3).c_str()));
}

// Applies one key line to the record; false for a line without "=".
bool ReadKeyLine(const SString& line, SDialogDefinition::_SCtrl& record) {
    int equals = line.Find('=');
    if (equals < 0) {
        return false;
    }
    SString key = line.Left(equals);
    SString value = line.Mid(equals + 1);
    const char* text = value.c_str();
    if (key == "ID") {
        record.id = static_cast<int16_t>(ParseDefinitionNumber(text));
    } else if (key == "NAME") {
        record.name = value;
    } else if (key == "CAPTION") {
        record.caption = value;
    } else if (key == "FONT") {
        ReadFont(value, record);
    } else if (key == "POSITION") {
        ReadPosition(value, record);
    } else if (key == "STYLE") {
        ParseStyleWords(record.type, text, record.style);
    } else if (key == "EXSTYLE") {
        ParseStyleWords(record.type, text, record.exStyle);
    } else if (key == "BACKCOLOR") {
        record.backColor = ParseColorText(text);
    } else if (key == "TEXTCOLOR") {
        record.textColor = ParseColorText(text);
    } else if (key == "TRANSPARENT") {
        record.transparent = ParseDefinitionNumber(text) != 0;
    } else if (key == "ISLOCKED") {
        record.locked = ParseDefinitionNumber(text) != 0;
    } else if (!key.IsEmpty()) {
        record.properties += key;
        record.properties += '=';
        record.properties += value;
        record.properties += "\r\n";
    }
    return true;
}

// Little-endian numbers and length-prefixed strings of the binary record.
template <typename T> void PutNumber(std::string& out, T value) {
    auto bits = static_cast<uint64_t>(value);
    for (size_t i = 0; i < sizeof(T); ++i) {
        out += static_cast<char>((bits >> (8 * i)) & 0xFF);
    }
}

void PutString(std::string& out, const SString& text) {
    PutNumber<uint32_t>(out, static_cast<uint32_t>(text.GetLength()));
    out.append(text.c_str(), text.GetLength());
}

// Reads from a file, keeping count of the bytes and whether any were
// missing.
struct SBinaryReader {
    SFile* file;
    int consumed = 0;
    bool shortRead = false;

    template <typename T> T Number() {
        unsigned char bytes[sizeof(T)] = {};
        int got = file->Read(bytes, sizeof(T));
        consumed += got;
        if (got != static_cast<int>(sizeof(T))) {
            shortRead = true;
            return T{};
        }
        uint64_t bits = 0;
        for (size_t i = 0; i < sizeof(T); ++i) {
            bits |= static_cast<uint64_t>(bytes[i]) << (8 * i);
        }
        return static_cast<T>(bits);
    }

    SString String() {
        uint32_t length = Number<uint32_t>();
        if (shortRead) {
            return SString();
        }
        // A length beyond what remains is a damaged record: nothing is
        // allocated for it.
        if (length > static_cast<uint32_t>(file->GetRemaining())) {
            shortRead = true;
            return SString();
        }
        SString text;
        if (length > 0) {
            std::string bytes(length, '\0');
            int got = file->Read(bytes.data(), static_cast<int>(length));
            consumed += got;
            if (got != static_cast<int>(length)) {
                shortRead = true;
                return SString();
            }
            text.Assign(bytes.data(), static_cast<int>(length));
        }
        return text;
    }
};

} // namespace

bool SDialogDefinition::_SCtrl::operator==(const _SCtrl& other) const {
    return id == other.id && type == other.type && name == other.name && caption == other.caption &&
           fontFace == other.fontFace && fontSize == other.fontSize &&
           fontFlags == other.fontFlags && x == other.x && y == other.y && width == other.width &&
           height == other.height && locked == other.locked && isDialog == other.isDialog &&
           style == other.style && exStyle == other.exStyle && backColor == other.backColor &&
           textColor == other.textColor && transparent == other.transparent &&
           properties == other.properties;
}

SString SDialogDefinition::_SCtrl::GetProperty(const char* key) const {
    if (key == nullptr) {
        return SString();
    }
    // Lines are cut at CR and at LF alike.
    const char* text = properties.c_str();
    int length = properties.GetLength();
    int start = 0;
    while (start < length) {
        int end = start;
        while (end < length && text[end] != '\r' && text[end] != '\n') {
            ++end;
        }
        SString line(properties.Mid(start, end - start));
        int equals = line.Find('=');
        if (equals >= 0 && KeyMatches(line, equals, key)) {
            return line.Mid(equals + 1);
        }
        start = end + 1;
    }
    return SString();
}

int SDialogDefinition::_SCtrl::GetPropertyInt(const char* key) const {
    return static_cast<int>(ParseDefinitionNumber(GetProperty(key).c_str()));
}

uint32_t SDialogDefinition::_SCtrl::GetPropertyColorRaw(const char* key) const {
    SString value = GetProperty(key);
    if (value.IsEmpty()) {
        return COLOR_NOT_SET;
    }
    return static_cast<uint32_t>(ParseDefinitionNumber(value.c_str()));
}

int SDialogDefinition::_SCtrl::GetPropertyDrawMode(const char* key) const {
    int mode = DrawModeOfWord(GetProperty(key).c_str());
    return mode >= 0 ? mode : DRAW_TOPLEFT;
}

bool SDialogDefinition::_SCtrl::SetProperty(const char* key, const char* value) {
    if (key == nullptr || *key == 0) {
        return false;
    }
    if (value == nullptr) {
        value = "";
    }
    int start = 0;
    int length = properties.GetLength();
    while (start < length) {
        int end = properties.Find("\r\n", start);
        int lineEnd = end >= 0 ? end : length;
        SString line = properties.Mid(start, lineEnd - start);
        int equals = line.Find('=');
        if (equals < 0) {
            return false; // the walk stops here, and nothing is changed
        }
        if (KeyMatches(line, equals, key)) {
            int valueStart = start + equals + 1;
            properties.ReplaceRange(value, valueStart, lineEnd - valueStart);
            return true;
        }
        if (end < 0) {
            break;
        }
        start = end + 2;
    }
    properties += key;
    properties += '=';
    properties += value;
    properties += "\r\n";
    return true;
}

bool SDialogDefinition::_SCtrl::SetPropertyInt(const char* key, int64_t value) {
    SString text;
    text.Format("%lld", static_cast<long long>(value));
    return SetProperty(key, text.c_str());
}

bool SDialogDefinition::_SCtrl::SetPropertyColor(const char* key, uint32_t color) {
    return SetPropertyInt(key, static_cast<int32_t>(color));
}

void SDialogDefinition::Reset() {
    hasDialog = false;
    loaded = false;
    dialog = _SCtrl();
    controls.clear();
    idCounts.clear();
    nameCounts.clear();
    ForgetHints();
}

void SDialogDefinition::Reindex() {
    idCounts.clear();
    nameCounts.clear();
    for (const auto& control : controls) {
        ++idCounts[control->id];
        ++nameCounts[NameKey(control->name)];
    }
    ForgetHints();
}

void SDialogDefinition::ForgetHints() {
    idHint = 1;
    nameHints.fill(1);
}

SDialogDefinition::_SCtrl* SDialogDefinition::GetControl(int index) {
    return index >= 0 && index < GetControlCount() ? controls[index].get() : nullptr;
}

const SDialogDefinition::_SCtrl* SDialogDefinition::GetControl(int index) const {
    return index >= 0 && index < GetControlCount() ? controls[index].get() : nullptr;
}

SDialogDefinition::_SCtrl* SDialogDefinition::FindControl(int id) {
    for (auto& control : controls) {
        if (control->id == id) {
            return control.get();
        }
    }
    return nullptr;
}

SDialogDefinition::_SCtrl* SDialogDefinition::FindControl(const char* name) {
    for (auto& control : controls) {
        if (name != nullptr && control->name == SString(name)) {
            return control.get();
        }
    }
    return nullptr;
}

void SDialogDefinition::SetDialog(const _SCtrl& record) {
    dialog = record;
    dialog.type = CTRL_DIALOG;
    dialog.isDialog = true;
    hasDialog = true;
}

SString SDialogDefinition::GenerateName(int type) const {
    const SControlType* row = GetControlType(type);
    if (row == nullptr) {
        return SString();
    }
    int& hint = nameHints[static_cast<size_t>(type)];
    hint = std::max(hint, 1);
    for (int number = hint; number <= MAX_GENERATED; ++number) {
        std::string candidate = row->section + std::to_string(number);
        if (nameCounts.count(candidate) == 0) {
            hint = number;
            return SString(candidate.c_str());
        }
    }
    hint = MAX_GENERATED + 1;
    return SString();
}

int SDialogDefinition::GenerateId() const {
    idHint = std::max(idHint, 1);
    for (int id = idHint; id <= MAX_GENERATED; ++id) {
        if (idCounts.count(id) == 0) {
            idHint = id;
            return id;
        }
    }
    idHint = MAX_GENERATED + 1;
    return -1;
}

SDialogDefinition::_SCtrl* SDialogDefinition::AddControl(const _SCtrl& record, bool checkName,
                                                         bool checkId) {
    if (GetControlType(record.type) == nullptr) {
        return nullptr;
    }
    for (const auto& control : controls) {
        if (control.get() == &record) {
            return nullptr;
        }
    }
    auto copy = std::make_unique<_SCtrl>(record);
    copy->isDialog = false;
    if (!checkId || idCounts.count(copy->id) != 0) {
        int id = GenerateId();
        if (id < 0) {
            return nullptr;
        }
        copy->id = static_cast<int16_t>(id);
    }
    if (!checkName || nameCounts.count(NameKey(copy->name)) != 0) {
        SString name = GenerateName(copy->type);
        if (name.IsEmpty()) {
            return nullptr;
        }
        copy->name = name;
    }
    ++idCounts[copy->id];
    ++nameCounts[NameKey(copy->name)];
    controls.push_back(std::move(copy));
    return controls.back().get();
}

bool SDialogDefinition::RemoveControl(int index) {
    if (index < 0 || index >= GetControlCount()) {
        return false;
    }
    const _SCtrl& control = *controls[index];
    if (--idCounts[control.id] == 0) {
        idCounts.erase(control.id);
    }
    std::string name = NameKey(control.name);
    if (--nameCounts[name] == 0) {
        nameCounts.erase(name);
    }
    controls.erase(controls.begin() + index);
    ForgetHints();
    return true;
}

int SDialogDefinition::ReadBlock(SFile* file, _SCtrl& record) {
    if (file == nullptr || !file->IsOpen()) {
        return -1;
    }
    int start = file->GetPosition();
    SString section = file->ReadLine(true);
    // One character is cut from each end, whatever they are.
    int type = section.GetLength() >= 2
                   ? FindControlType(section.Mid(1, section.GetLength() - 2).c_str())
                   : -1;
    if (type < 0) {
        return 0;
    }
    record.type = static_cast<int16_t>(type);
    record.isDialog = type == CTRL_DIALOG;
    while (!file->IsEnd()) {
        SString line = file->ReadLine(true);
        if (line.IsEmpty()) {
            break;
        }
        if (!ReadKeyLine(line, record)) {
            return -1;
        }
    }
    return file->GetPosition() - start;
}

SString SDialogDefinition::FormatBlock(const _SCtrl& record) {
    const SControlType* row = GetControlType(record.type);
    if (row == nullptr) {
        return SString();
    }
    SString text;
    text.Format("[%s]\r\nID=%d\r\nNAME=", row->section, record.id);
    text += record.name;
    text += "\r\nCAPTION=";
    text += record.caption;
    text += "\r\nFONT=";
    text += record.fontFace;
    SString numbers;
    numbers.Format(", %u, %u\r\nPOSITION=%d %d %d %d\r\nSTYLE=", record.fontSize, record.fontFlags,
                   record.x, record.y, record.width, record.height);
    text += numbers;
    text += FormatStyleWords(record.type, record.style, false);
    text += "\r\nEXSTYLE=";
    text += FormatStyleWords(record.type, record.exStyle, true);
    text += "\r\nBACKCOLOR=";
    text += FormatColorText(record.backColor);
    text += "\r\nTEXTCOLOR=";
    text += FormatColorText(record.textColor);
    text += record.transparent ? "\r\nTRANSPARENT=1" : "\r\nTRANSPARENT=0";
    text += record.locked ? "\r\nISLOCKED=1\r\n" : "\r\nISLOCKED=0\r\n";
    text += record.properties;
    text += "\r\n";
    return text;
}

int SDialogDefinition::WriteBlock(SFile* file, const _SCtrl& record) {
    if (file == nullptr) {
        return 0;
    }
    SString text = FormatBlock(record);
    if (text.IsEmpty()) {
        return 0;
    }
    return file->Write(text.c_str(), text.GetLength());
}

bool SDialogDefinition::Load(SFile* file, SString* error) {
    Reset();
    auto fail = [&](const char* reason) {
        Reset();
        if (error != nullptr) {
            *error = reason;
        }
        return false;
    };
    if (file == nullptr || !file->IsOpen()) {
        return fail("no file");
    }
    if (file->ReadLine(true) != SString(DIALOG_MAGIC)) {
        return fail("the first line is not \"TAVORA DIALOG 1.0.0.0\"");
    }
    file->ReadLine(true); // read and discarded, whatever it holds
    bool first = true;
    while (!file->IsEnd()) {
        _SCtrl record;
        int result = ReadBlock(file, record);
        if (result == 0) {
            return fail("a block starts with an unknown section");
        }
        if (result < 0) {
            return fail("a line inside a block has no \"=\"");
        }
        if (first) {
            SetDialog(record);
            first = false;
        } else if (AddControl(record, true, true) == nullptr) {
            return fail("no free name or ID is left for a control");
        }
    }
    loaded = true;
    return true;
}

bool SDialogDefinition::Save(SFile* file) const {
    if (file == nullptr) {
        return false;
    }
    SString head = SString(DIALOG_MAGIC) + "\r\n\r\n";
    if (file->Write(head.c_str(), head.GetLength()) != head.GetLength()) {
        return false;
    }
    if (!hasDialog) {
        return true;
    }
    std::vector<const _SCtrl*> records{&dialog};
    for (const auto& control : controls) {
        records.push_back(control.get());
    }
    for (const _SCtrl* record : records) {
        SString text = FormatBlock(*record);
        if (text.IsEmpty() || file->Write(text.c_str(), text.GetLength()) != text.GetLength()) {
            return false;
        }
    }
    return true;
}

int SDialogDefinition::WriteBinary(SFile* file, const _SCtrl& record) {
    if (file == nullptr) {
        return 0;
    }
    std::string out;
    PutNumber<int16_t>(out, record.id);
    PutNumber<int16_t>(out, record.type);
    PutString(out, record.name);
    PutString(out, record.caption);
    PutString(out, record.fontFace);
    PutNumber<uint16_t>(out, record.fontSize);
    PutNumber<uint32_t>(out, record.fontFlags);
    PutNumber<int16_t>(out, record.x);
    PutNumber<int16_t>(out, record.y);
    PutNumber<int16_t>(out, record.width);
    PutNumber<int16_t>(out, record.height);
    PutNumber<uint8_t>(out, record.locked ? 1 : 0);
    PutNumber<uint8_t>(out, record.isDialog ? 1 : 0);
    PutNumber<uint32_t>(out, record.style);
    PutNumber<uint32_t>(out, record.exStyle);
    PutNumber<uint32_t>(out, record.backColor);
    PutNumber<uint32_t>(out, record.textColor);
    PutNumber<uint8_t>(out, record.transparent ? 1 : 0);
    PutString(out, record.properties);
    return file->Write(out.data(), static_cast<int>(out.size()));
}

int SDialogDefinition::ReadBinary(SFile* file, _SCtrl& record) {
    if (file == nullptr || !file->IsOpen()) {
        return 0;
    }
    SBinaryReader in{file};
    _SCtrl read;
    read.id = in.Number<int16_t>();
    read.type = in.Number<int16_t>();
    read.name = in.String();
    read.caption = in.String();
    read.fontFace = in.String();
    read.fontSize = in.Number<uint16_t>();
    read.fontFlags = in.Number<uint32_t>();
    read.x = in.Number<int16_t>();
    read.y = in.Number<int16_t>();
    read.width = in.Number<int16_t>();
    read.height = in.Number<int16_t>();
    read.locked = in.Number<uint8_t>() != 0;
    read.isDialog = in.Number<uint8_t>() != 0;
    read.style = in.Number<uint32_t>();
    read.exStyle = in.Number<uint32_t>();
    read.backColor = in.Number<uint32_t>();
    read.textColor = in.Number<uint32_t>();
    read.transparent = in.Number<uint8_t>() != 0;
    read.properties = in.String();
    if (in.shortRead) {
        return 0;
    }
    record = read;
    return in.consumed;
}
