#include "toolkit/table.h"

#include <cstdlib>
#include <cstring>

#include "foundation/file.h"
#include "foundation/parser.h"

namespace {

constexpr const char* TABLE_MAGIC = "TAVORA TABLE 1.0.0.0";
constexpr const char* NO_CHANGE = ";==;";

// A name as CompareNoCase sees it: up to its first zero byte, ASCII letters
// in lower case.
std::string Folded(const SString& name) {
    std::string folded(name.c_str());
    for (char& c : folded) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return folded;
}

bool ReadsAsNumber(const SString& text) {
    return !text.IsEmpty() && text.IsInteger();
}

// One string of the file form; false once the file has ended, so that a
// count larger than what the file holds cannot run on.
bool ReadString(SFile* file, bool keepBlanks, SString& text) {
    if (file->IsEnd()) {
        return false;
    }
    text = file->ReadLine(keepBlanks);
    return true;
}

} // namespace

STable::~STable() = default;

void STable::Clear() {
    tableStrings[0].Empty();
    tableStrings[1].Empty();
    rowStrings[0].DeleteAll();
    rowStrings[1].DeleteAll();
    columns.clear();
    foldedNames.clear();
}

bool STable::Load(SFile* file, bool firstOption, bool secondOption, bool commaText) {
    Clear();
    if (file == nullptr || !file->IsOpen()) {
        return false;
    }
    if (commaText) {
        return LoadCommaText(file);
    }
    const bool options[2] = {firstOption, secondOption};
    SString magic;
    SString columnText;
    SString rowText;
    if (!ReadString(file, true, magic) || magic != TABLE_MAGIC ||
        !ReadString(file, true, columnText) || !ReadString(file, true, rowText)) {
        return false;
    }
    long long columnCount = atoll(columnText.c_str());
    long long rowCount = atoll(rowText.c_str());
    if (columnCount < 0 || rowCount < 0) {
        return false;
    }
    bool complete = ReadString(file, options[0], tableStrings[0]) &&
                    ReadString(file, options[1], tableStrings[1]);
    for (long long c = 0; complete && c < columnCount; ++c) {
        SString name;
        SString strings[2];
        complete = ReadString(file, true, name) && ReadString(file, options[0], strings[0]) &&
                   ReadString(file, options[1], strings[1]);
        if (!complete) {
            break;
        }
        int column = AddColumn(name.c_str());
        if (column < 0) {
            Clear();
            return false;
        }
        columns[column]->strings[0] = strings[0];
        columns[column]->strings[1] = strings[1];
    }
    for (long long r = 0; complete && r < rowCount; ++r) {
        SString strings[2];
        complete = ReadString(file, options[0], strings[0]) &&
                   ReadString(file, options[1], strings[1]);
        int row = AddRow();
        rowStrings[0].SetText(row, strings[0].c_str());
        rowStrings[1].SetText(row, strings[1].c_str());
        for (auto& field : columns) {
            SString text;
            SString attributes[2];
            complete = complete && ReadString(file, true, text) &&
                       ReadString(file, options[0], attributes[0]) &&
                       ReadString(file, options[1], attributes[1]);
            field->cells.SetText(row, text.c_str());
            field->attributes[0].SetText(row, attributes[0].c_str());
            field->attributes[1].SetText(row, attributes[1].c_str());
        }
    }
    // A file that ends before its counts are met is damaged: nothing of it
    // is kept rather than a table of half rows.
    if (!complete) {
        Clear();
        return false;
    }
    return true;
}

bool STable::LoadCommaText(SFile* file) {
    while (!file->IsEnd()) {
        SString line = file->ReadLine(true);
        if (line.IsEmpty()) {
            continue;
        }
        SStringArray parts;
        SStringParser parser(line.c_str());
        unsigned flags = SStringParser::PARSE_QUOTES | SStringParser::PARSE_QUOTE_ENDS_TOKEN |
                         SStringParser::PARSE_UNQUOTE;
        if (parser.Parse(",", flags, '"', &parts) < 0) {
            // A quote left open: the line is split as if it had none.
            parts.DeleteAll();
            parser.Parse(",", 0, '"', &parts);
        }
        if (columns.empty()) {
            for (int i = 0; i < parts.GetCount(); ++i) {
                AddColumn("");
            }
        }
        int row = AddRow();
        int count = std::min(parts.GetCount(), GetColumnCount());
        for (int c = 0; c < count; ++c) {
            columns[c]->cells.SetText(row, parts.GetText(c).c_str());
        }
    }
    return true;
}

bool STable::Save(SFile* file) const {
    if (file == nullptr) {
        return false;
    }
    bool complete = true;
    // Every byte of the text, a zero byte included, then CR LF.
    auto write = [&](const SString& text) {
        complete = complete && file->WriteText(text.c_str(), text.GetLength()) == text.GetLength() &&
                   file->WriteBytes("\r\n", 2) == 2;
    };
    write(SString(TABLE_MAGIC));
    write(SString::FromInt(GetColumnCount()));
    write(SString::FromInt(GetRowCount()));
    write(tableStrings[0]);
    write(tableStrings[1]);
    for (const auto& field : columns) {
        write(field->name);
        write(field->strings[0]);
        write(field->strings[1]);
    }
    for (int row = 0; row < GetRowCount(); ++row) {
        write(rowStrings[0].GetText(row));
        write(rowStrings[1].GetText(row));
        for (const auto& field : columns) {
            write(field->cells.GetText(row));
            write(field->attributes[0].GetText(row));
            write(field->attributes[1].GetText(row));
        }
    }
    return complete;
}

int STable::AddColumn(const char* name, int position) {
    SString trimmed(name != nullptr ? name : "");
    trimmed.Trim();
    if (!trimmed.IsEmpty() &&
        (ReadsAsNumber(trimmed) || !foldedNames.insert(Folded(trimmed)).second)) {
        return -1;
    }
    if (position < 0 || position > GetColumnCount()) {
        position = GetColumnCount();
    }
    auto field = std::make_unique<SField>();
    field->name = trimmed;
    int rows = GetRowCount();
    for (SStringArray* array : {&field->cells, &field->attributes[0], &field->attributes[1]}) {
        for (int row = 0; row < rows; ++row) {
            array->Add("");
        }
    }
    columns.insert(columns.begin() + position, std::move(field));
    return position;
}

bool STable::RemoveColumn(const char* reference) {
    int column = FindColumn(reference);
    if (column < 0) {
        return false;
    }
    foldedNames.erase(Folded(columns[column]->name));
    columns.erase(columns.begin() + column);
    if (columns.empty()) {
        rowStrings[0].DeleteAll();
        rowStrings[1].DeleteAll();
    }
    return true;
}

int STable::AddRow(int position) {
    if (position < 0 || position > GetRowCount()) {
        position = GetRowCount();
    }
    rowStrings[0].Add("", position);
    rowStrings[1].Add("", position);
    for (auto& field : columns) {
        field->cells.Add("", position);
        field->attributes[0].Add("", position);
        field->attributes[1].Add("", position);
    }
    return position;
}

bool STable::RemoveRow(int row) {
    if (!IsRow(row)) {
        return false;
    }
    rowStrings[0].DeleteAt(row);
    rowStrings[1].DeleteAt(row);
    for (auto& field : columns) {
        field->cells.DeleteAt(row);
        field->attributes[0].DeleteAt(row);
        field->attributes[1].DeleteAt(row);
    }
    return true;
}

int STable::FindColumn(const char* reference) const {
    SString text(reference != nullptr ? reference : "");
    if (text.IsEmpty()) {
        return -1;
    }
    if (ReadsAsNumber(text)) {
        long long index = atoll(text.c_str());
        return index >= 0 && index < GetColumnCount() ? static_cast<int>(index) : -1;
    }
    for (int c = 0; c < GetColumnCount(); ++c) {
        if (columns[c]->name.CompareNoCase(text.c_str()) == 0) {
            return c;
        }
    }
    return -1;
}

STable::SField* STable::Column(int column) const {
    return column >= 0 && column < GetColumnCount() ? columns[column].get() : nullptr;
}

SString STable::GetColumnName(int column) const {
    SField* field = Column(column);
    return field != nullptr ? field->name : SString("");
}

SString STable::GetCell(int row, const char* column) const {
    return GetCell(row, FindColumn(column));
}

bool STable::SetCell(int row, const char* column, const char* text) {
    return SetCell(row, FindColumn(column), text);
}

SString STable::GetCell(int row, int column) const {
    SField* field = Column(column);
    return field != nullptr && IsRow(row) ? field->cells.GetText(row) : SString("");
}

bool STable::SetCell(int row, int column, const char* text) {
    SField* field = Column(column);
    if (field == nullptr || !IsRow(row)) {
        return false;
    }
    field->cells.SetText(row, text != nullptr ? text : "");
    return true;
}

SString STable::GetCellAttributes(int row, int column, int which) const {
    SField* field = Column(column);
    if (field == nullptr || !IsRow(row) || (which != 0 && which != 1)) {
        return SString("");
    }
    return field->attributes[which].GetText(row);
}

bool STable::SetCellAttributes(int row, int column, int which, const char* text) {
    SField* field = Column(column);
    if (field == nullptr || !IsRow(row) || (which != 0 && which != 1)) {
        return false;
    }
    field->attributes[which].SetText(row, text != nullptr ? text : "");
    return true;
}

SString STable::GetAttribute(int row, int column, int which, const char* key) const {
    return GetAttributeValue(GetCellAttributes(row, column, which), key);
}

bool STable::SetAttribute(int row, int column, int which, const char* key, const char* value) {
    SField* field = Column(column);
    if (field == nullptr || !IsRow(row) || (which != 0 && which != 1)) {
        return false;
    }
    return SetCellAttributes(row, column, which,
                             SetAttributeValue(GetCellAttributes(row, column, which), key, value)
                                 .c_str());
}

SString STable::GetTableString(int which) const {
    return which == 0 || which == 1 ? tableStrings[which] : SString("");
}

void STable::SetTableString(int which, const char* text) {
    if (which == 0 || which == 1) {
        tableStrings[which] = text != nullptr ? text : "";
    }
}

SString STable::GetColumnString(int column, int which) const {
    SField* field = Column(column);
    return field != nullptr && (which == 0 || which == 1) ? field->strings[which] : SString("");
}

bool STable::SetColumnString(int column, int which, const char* text) {
    SField* field = Column(column);
    if (field == nullptr || (which != 0 && which != 1)) {
        return false;
    }
    field->strings[which] = text != nullptr ? text : "";
    return true;
}

SString STable::GetRowString(int row, int which) const {
    return IsRow(row) && (which == 0 || which == 1) ? rowStrings[which].GetText(row)
                                                    : SString("");
}

bool STable::SetRowString(int row, int which, const char* text) {
    if (!IsRow(row) || (which != 0 && which != 1)) {
        return false;
    }
    rowStrings[which].SetText(row, text != nullptr ? text : "");
    return true;
}

// Attribute strings.

namespace {

// Calls found(start, end) with the bounds of each "key=value" pair of text
// whose key is key (case-blind); stops when found returns true.
template <typename Found>
bool FindPair(const SString& text, const char* key, Found found) {
    int keyLength = static_cast<int>(strlen(key));
    int start = 0;
    while (start <= text.GetLength()) {
        int end = text.Find(';', start);
        if (end < 0) {
            end = text.GetLength();
        }
        int equals = text.Find('=', start);
        if (equals >= 0 && equals < end && equals - start == keyLength &&
            text.Mid(start, keyLength).CompareNoCase(key) == 0 && found(equals + 1, end)) {
            return true;
        }
        start = end + 1;
    }
    return false;
}

} // namespace

SString GetAttributeValue(const SString& text, const char* key) {
    SString value("");
    if (key == nullptr || key[0] == 0) {
        return value;
    }
    FindPair(text, key, [&](int start, int end) {
        value = text.Mid(start, end - start);
        return true;
    });
    return value;
}

SString SetAttributeValue(const SString& text, const char* key, const char* value) {
    SString newValue(value != nullptr ? value : "");
    if (key == nullptr || key[0] == 0 || newValue.Find(NO_CHANGE) >= 0) {
        return text;
    }
    SString result = text;
    bool replaced = FindPair(text, key, [&](int start, int end) {
        result = text.Left(start) + newValue + text.Mid(end);
        return true;
    });
    if (!replaced) {
        if (!result.IsEmpty()) {
            result += ";";
        }
        result += key;
        result += "=";
        result += newValue;
    }
    return result;
}
