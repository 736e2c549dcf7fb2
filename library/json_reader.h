// PJsonValue: a small reader of JSON text, for the replies of web services.
// It keeps what it reads as a tree of values. The reader is bounded: nesting
// deeper than JSON_MAX_DEPTH or more than JSON_MAX_VALUES values fail, so a
// hostile reply costs neither the stack nor unbounded memory. Bad input is
// a false result, never a crash.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

constexpr int JSON_MAX_DEPTH = 64;
constexpr size_t JSON_MAX_VALUES = 200000;

class PJsonValue {
public:
    enum Kind { JSON_NULL, JSON_BOOL, JSON_NUMBER, JSON_STRING, JSON_ARRAY, JSON_OBJECT };

    Kind kind = JSON_NULL;
    bool boolean = false;
    double number = 0;
    std::string text;               // a string, in UTF-8
    std::vector<PJsonValue> items;  // an array's items, or an object's values
    std::vector<std::string> names; // an object's names, beside its values in items

    bool IsObject() const { return kind == JSON_OBJECT; }
    bool IsArray() const { return kind == JSON_ARRAY; }
    bool IsString() const { return kind == JSON_STRING; }
    // An object's value of that name (the first, when it repeats); null for
    // a missing name or a value that is no object.
    const PJsonValue* Get(const char* name) const;
    // The string of that name; "" when missing or not a string.
    const std::string& GetString(const char* name) const;
};

// Reads the whole of data (size bytes, need not end with a zero) into
// value. False, with value reset, for anything that is not one JSON value
// with only blanks around it. A UTF-8 byte order mark before it is skipped.
bool ReadJson(const char* data, size_t size, PJsonValue* value);
