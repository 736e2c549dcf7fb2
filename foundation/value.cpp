#include "foundation/value.h"

SValue::~SValue() = default;

void SValue::Assign(const SValue& other) {
    if (&other == this) {
        return;
    }
    type = other.type;
    switch (type) {
    case TYPE_INTEGER:
        integer = other.integer;
        break;
    case TYPE_REAL:
        real = other.real;
        break;
    case TYPE_TEXT:
        text = other.text;
        break;
    case TYPE_WIDE:
        wide = other.wide;
        break;
    default:
        break;
    }
}

void SValue::SetInt(int64_t value) {
    type = TYPE_INTEGER;
    integer = value;
}

void SValue::SetReal(double value) {
    type = TYPE_REAL;
    real = value;
}

void SValue::SetText(const SString& value) {
    type = TYPE_TEXT;
    text = value;
}

void SValue::SetWide(const SUniString& value) {
    type = TYPE_WIDE;
    wide = value;
}
