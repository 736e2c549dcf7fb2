// SValue: a small typed value, the unit of data that threads post to each
// other. The type tag tells which member is live; the other members keep
// whatever they last held.
#pragma once

#include <cstdint>

#include "foundation/string.h"

class SValue {
public:
    // Values of the type tag.
    static constexpr int TYPE_INTEGER = 0;
    static constexpr int TYPE_REAL = 1;
    static constexpr int TYPE_TEXT = 2; // 8-bit text in text
    static constexpr int TYPE_WIDE = 3; // 16-bit text in wide

    SValue() = default; // an integer 0
    // A C++ copy takes every member, names included; Assign takes the value only.
    SValue(const SValue& other) = default;
    SValue& operator=(const SValue& other) = default;
    virtual ~SValue();

    // Copies the type tag and the live member. The names, and the members
    // that are not live, stay as they are.
    void Assign(const SValue& other);

    // Each setter stores its member and makes it the live one.
    void SetInt(int64_t value);
    void SetReal(double value);
    void SetText(const SString& value);
    void SetWide(const SUniString& value);

    // The readers give the member as it stands, whatever the type tag says:
    // no conversion is made.
    int GetType() const { return type; }
    int64_t GetInt() const { return integer; }
    double GetReal() const { return real; }
    const SString& GetText() const { return text; }
    const SUniString& GetWide() const { return wide; }

    // Free names for the owner of the value.
    SString name;
    SString text2;

private:
    int type = TYPE_INTEGER;
    int64_t integer = 0;
    double real = 0.0;
    SString text;
    SUniString wide;
};
