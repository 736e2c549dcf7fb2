// SKeyboard: the key-name table and the lookup from names back to codes.
#include "foundation/keyboard.h"

#include <gtest/gtest.h>

#include <utility>

TEST(Keyboard, NamesTheKeysOfEachRange) {
    const std::pair<int, const char*> names[] = {
        {1, "LBUTTON"}, {4, "MBUTTON"}, {8, "BACK"},       {9, "TAB"},      {12, "CLEAR"},
        {13, "RETURN"}, {16, "SHIFT"},  {20, "CAPITAL"},   {27, "ESCAPE"},  {32, "SPACE"},
        {33, "PRIOR"},  {40, "DOWN"},   {41, "SELECT"},    {47, "HELP"},    {48, "0"},
        {57, "9"},      {65, "A"},      {90, "Z"},         {91, "LWIN"},    {93, "APPS"},
        {96, "NUM0"},   {105, "NUM9"},  {106, "MULTIPLY"}, {111, "DIVIDE"}, {112, "F1"},
        {123, "F12"},   {135, "F24"},   {144, "NUMLOCK"},  {145, "SCROLL"}, {246, "ATTN"},
        {251, "ZOOM"},
    };
    for (const auto& [code, name] : names) {
        EXPECT_EQ(SKeyboard::GetKeyName(code), name) << code;
    }
}

TEST(Keyboard, EveryNameLeadsBackToItsCodeAndGapsHaveNoName) {
    int named = 0;
    for (int code = 0; code < SKeyboard::KEY_CODE_COUNT; ++code) {
        SString name = SKeyboard::GetKeyName(code);
        if (name.IsEmpty()) {
            continue;
        }
        ++named;
        EXPECT_EQ(SKeyboard::GetKeyCode(name.c_str()), code) << name.c_str();
    }
    EXPECT_EQ(named, 117);
    for (int code : {-1, 0,  5,  7,  10,  11,  14,  15,  21,  26,  28, 31,
                     58, 64, 94, 95, 136, 143, 146, 245, 252, 255, 256}) {
        EXPECT_TRUE(SKeyboard::GetKeyName(code).IsEmpty()) << code;
    }
}

TEST(Keyboard, KeyCodeIgnoresCaseAndRefusesUnknownNames) {
    EXPECT_EQ(SKeyboard::GetKeyCode("return"), 13);
    EXPECT_EQ(SKeyboard::GetKeyCode("f24"), 135);
    EXPECT_EQ(SKeyboard::GetKeyCode("Num0"), 96);
    for (const char* text : {"F25", "RETURN ", "NUM", "", "\xc3\xa9"}) {
        EXPECT_EQ(SKeyboard::GetKeyCode(text), -1) << text;
    }
    EXPECT_EQ(SKeyboard::GetKeyCode(nullptr), -1);
}
