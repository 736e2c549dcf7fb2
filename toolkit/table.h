// STable: a small in-memory table of named columns, with a file form and a
// reading of comma-separated text. The spreadsheet keeps its cells in one.
//
// Every string of the file form is one line ended by CR LF, read with
// SFile::ReadLine; the order is the magic "TAVORA TABLE 1.0.0.0", the column
// count, the row count, the table's two strings, each column's name and two
// strings, then each row's two strings followed by, per column, the cell
// text and its two attribute strings.
//
// A column reference is a string: one that reads as a number is the
// column's index (-1 out of range), any other is a name found without
// regard to case; an empty reference is -1. Rows exist only as the common
// length of the per-row arrays.
#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "foundation/array.h"
#include "foundation/string.h"

class SFile;

class STable {
public:
    STable() = default;
    STable(const STable&) = delete;
    STable& operator=(const STable&) = delete;
    ~STable();

    // The file. firstOption and secondOption are the keepBlanks of the
    // reader for the first and the second kind of string (table, column,
    // row and attribute strings); the name, counts and cell texts always
    // keep their blanks. With commaText there is no magic: each non-empty
    // line is a row split at "," with '"' as quote, the first one fixing the
    // column count. False, with an empty table, for a wrong magic, a
    // negative count or a column name that cannot be added.
    bool Load(SFile* file, bool firstOption, bool secondOption, bool commaText);
    // Writes the file form in the order Load reads it; false when the file
    // took less than was written.
    bool Save(SFile* file) const;
    void Clear();

    // Shape.
    int GetColumnCount() const { return static_cast<int>(columns.size()); }
    int GetRowCount() const { return rowStrings[0].GetCount(); }
    // A position outside 0 to the count appends. The name is trimmed; a
    // non-empty name already there, or one that reads as a number, gives -1.
    int AddColumn(const char* name, int position = -1);
    // Removing the last column empties the rows as well.
    bool RemoveColumn(const char* reference);
    // A position outside 0 to the row count appends; the new row's strings
    // and cells are empty. Returns its index.
    int AddRow(int position = -1);
    bool RemoveRow(int row);
    // The column's index, or -1 (see the reference rule above).
    int FindColumn(const char* reference) const;
    SString GetColumnName(int column) const;

    // Cells; out of range reads give "" and writes false.
    SString GetCell(int row, const char* column) const;
    bool SetCell(int row, const char* column, const char* text);
    SString GetCell(int row, int column) const;
    bool SetCell(int row, int column, const char* text);
    // A cell's attribute strings (which 0 or 1) and the values in them.
    SString GetCellAttributes(int row, int column, int which) const;
    bool SetCellAttributes(int row, int column, int which, const char* text);
    SString GetAttribute(int row, int column, int which, const char* key) const;
    bool SetAttribute(int row, int column, int which, const char* key, const char* value);

    // The table's, a column's and a row's two strings (which 0 or 1).
    SString GetTableString(int which) const;
    void SetTableString(int which, const char* text);
    SString GetColumnString(int column, int which) const;
    bool SetColumnString(int column, int which, const char* text);
    SString GetRowString(int row, int which) const;
    bool SetRowString(int row, int which, const char* text);

private:
    struct SField {
        SString name;
        SString strings[2];
        SStringArray cells;
        SStringArray attributes[2];
    };

    SField* Column(int column) const;
    bool IsRow(int row) const { return row >= 0 && row < GetRowCount(); }
    bool LoadCommaText(SFile* file);

    SString tableStrings[2];
    SStringArray rowStrings[2];
    std::vector<std::unique_ptr<SField>> columns;
    std::unordered_set<std::string> foldedNames; // the non-empty names, case folded
};

// Attribute strings: "key=value" pairs joined with ";", keys compared
// without regard to case.
// The value of key, or "" when it is absent.
SString GetAttributeValue(const SString& text, const char* key);
// text with key set to value: a pair whose key matches has its value
// replaced in place; otherwise ";" (unless text is empty), key, "=" and
// the value are appended. A value holding ";==;" leaves the text as it is.
SString SetAttributeValue(const SString& text, const char* key, const char* value);
