// SDialogDefinition: the records of a dialog definition, its text reader
// and writer, and the binary form of one record. Data only: the control
// factory and the dialog editor build windows from these records.
//
// The text form: 8-bit, every line ended by CR LF (a bare LF ends no line,
// so a file with LF alone fails at the magic).
//
//   TAVORA DIALOG 1.0.0.0
//   (one line, read and discarded; written empty)
//   [DIALOG]                          one block for the dialog, then one
//   ID=0                              block per control in array order
//   NAME=...                          (creation and Z order)
//   CAPTION=...
//   FONT=face, size, flags
//   POSITION=left top width height
//   STYLE=WS_VISIBLE WS_CAPTION ...   symbolic words, each and a blank
//   EXSTYLE=...
//   BACKCOLOR=#RRGGBB or #AARRGGBB-style eight digits
//   TEXTCOLOR=...
//   TRANSPARENT=0|1
//   ISLOCKED=0|1
//   KEY=value                         the property text, kept in file order
//   (empty line)                      closes every block, the last one too
//
// The reader matches section names without regard to case and everything
// else exactly; unknown keys join the property text and are written back
// unchanged. Values survive a round trip; texts do not, and neither do
// style bits that have no word for the record's type.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "dialogs/dialog_format.h"
#include "foundation/string.h"

class SFile;

constexpr const char* DIALOG_MAGIC = "TAVORA DIALOG 1.0.0.0";

class SDialogDefinition {
public:
    // One block: the dialog itself or one control.
    struct _SCtrl {
        int16_t id = 0;
        int16_t type = -1;
        SString name;
        SString caption;
        SString fontFace; // empty: the default font
        uint16_t fontSize = 0;
        uint32_t fontFlags = 0; // FONT_BOLD and friends
        int16_t x = 10;
        int16_t y = 10;
        int16_t width = 150;
        int16_t height = 150;
        bool locked = false;
        bool isDialog = false; // not in the text form: the first block
        uint32_t style = 0;
        uint32_t exStyle = 0;
        uint32_t backColor = COLOR_NOT_SET;
        uint32_t textColor = COLOR_NOT_SET;
        bool transparent = false;
        SString properties; // "KEY=value" CR LF lines

        bool operator==(const _SCtrl& other) const;

        // The property text. Get: the value after the first "=" of the
        // first line whose key equals key exactly; empty when absent.
        SString GetProperty(const char* key) const;
        // Absent gives 0; the leading number otherwise.
        int GetPropertyInt(const char* key) const;
        bool GetPropertyBool(const char* key) const { return GetPropertyInt(key) != 0; }
        // The signed decimal of the 32-bit value; absent gives 0xFF000000.
        // GetPropertyColor resolves a system colour, the Raw form does not.
        uint32_t GetPropertyColorRaw(const char* key) const;
        uint32_t GetPropertyColor(const char* key) const {
            return ResolveColor(GetPropertyColorRaw(key));
        }
        // The draw mode of the stored word; DRAW_TOPLEFT for none or an
        // unknown word.
        int GetPropertyDrawMode(const char* key) const;
        // Replaces the value of the first line with that key in place, or
        // appends "key=value" CR LF. A line without "=" met before a match
        // ends the walk with nothing changed (false), and is meant to.
        bool SetProperty(const char* key, const char* value);
        bool SetPropertyInt(const char* key, int64_t value);
        // A colour as the signed decimal of its 32 bits.
        bool SetPropertyColor(const char* key, uint32_t color);
    };

    SDialogDefinition() = default;
    SDialogDefinition(const SDialogDefinition&) = delete;
    SDialogDefinition& operator=(const SDialogDefinition&) = delete;

    // Back to no dialog and no controls.
    void Reset();
    bool HasDialog() const { return hasDialog; }
    bool IsLoaded() const { return loaded; }
    _SCtrl& GetDialog() { return dialog; }
    const _SCtrl& GetDialog() const { return dialog; }
    int GetControlCount() const { return static_cast<int>(controls.size()); }
    _SCtrl* GetControl(int index);
    const _SCtrl* GetControl(int index) const;
    // By ID or name among the controls; null when absent.
    _SCtrl* FindControl(int id);
    _SCtrl* FindControl(const char* name);
    // Sets the dialog record (type forced to 0, isDialog set).
    void SetDialog(const _SCtrl& record);

    // Appends a copy of record as a control. Refused (null) for a type
    // outside the table or a record already in the array. isDialog is
    // cleared. Without checkId, or when the ID is taken by another control,
    // the ID becomes the smallest free one; without checkName, or when the
    // name (byte for byte) is taken, the name is generated. Refused when no
    // free ID or name is left.
    _SCtrl* AddControl(const _SCtrl& record, bool checkName, bool checkId);
    // Removes the control at index; false out of range.
    bool RemoveControl(int index);
    // Counts the IDs and names again: after a control's ID or name was
    // changed through its pointer.
    void Reindex();
    // The section name and the smallest number from 1 to 9999 that no
    // control has as its name ("BUTTON1"); empty when all are taken.
    SString GenerateName(int type) const;
    // The smallest ID from 1 to 9999 that no control has; -1 when none.
    int GenerateId() const;

    // The whole text form. Load resets first; false for a null file, a
    // wrong magic, a block with an unknown section or a line without "=",
    // or a control that cannot be added; a failed load leaves the
    // definition empty. error (may be null) receives a one-line reason.
    bool Load(SFile* file, SString* error = nullptr);
    // Writes magic, an empty line and every block (nothing more when there
    // is no dialog). False for a null file, a record whose type is not in
    // the table, or a short write.
    bool Save(SFile* file) const;

    // One block from the file's position into record: the bytes consumed,
    // 0 for an unknown section, -1 for a null file or a line without "=".
    static int ReadBlock(SFile* file, _SCtrl& record);
    // One block: the bytes written, 0 for a type outside the table or a
    // null file.
    static int WriteBlock(SFile* file, const _SCtrl& record);
    // The block's text (empty for a type outside the table).
    static SString FormatBlock(const _SCtrl& record);

    // The binary record: ID, type, name, caption, font face, font size,
    // font flags, x, y, width, height, locked, isDialog, style, extended
    // style, back colour, text colour, transparent, property text; numbers
    // little-endian, each string as a 32-bit length and its bytes. The
    // bytes written or read; 0 for a null file, and 0 when the record is
    // cut short (record then untouched).
    static int WriteBinary(SFile* file, const _SCtrl& record);
    static int ReadBinary(SFile* file, _SCtrl& record);

private:
    static std::string NameKey(const SString& name) {
        return std::string(name.c_str(), name.GetLength());
    }
    void ForgetHints();

    bool hasDialog = false;
    bool loaded = false;
    _SCtrl dialog;
    std::vector<std::unique_ptr<_SCtrl>> controls;
    // How many controls hold each ID and each name, so that adding a
    // control of a large definition costs no walk over the others.
    std::unordered_map<int, int> idCounts;
    std::unordered_map<std::string, int> nameCounts;
    // Below these nothing is free: adding only takes more, so each search
    // starts where the last one ended; a removal starts them again at 1.
    mutable int idHint = 1;
    mutable std::array<int, CTRL_TYPE_COUNT> nameHints{};
};
