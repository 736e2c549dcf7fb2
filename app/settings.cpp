#include "app/settings.h"

#include <climits>
#include <cstdint>
#include <cstdlib>

const SettingInfo SETTINGS_TABLE[SETTING_COUNT] = {
    {SETTING_FOLDER, SettingType::TEXT},      {SETTING_IMAGES, SettingType::TEXT},
    {SETTING_TOOLBAR, SettingType::BOOL},     {SETTING_AUTO_HIDE, SettingType::BOOL},
    {SETTING_TASKBAR, SettingType::BOOL},     {SETTING_TASKBAR_COLOR, SettingType::NUMBER},
    {SETTING_EMAILS, SettingType::TEXT},      {SETTING_COLUMN, SettingType::NUMBER},
    {SETTING_COLUMN2, SettingType::NUMBER},   {SETTING_PLAYLIST, SettingType::TEXT},
    {SETTING_VOLUME, SettingType::NUMBER},    {SETTING_REPEAT, SettingType::BOOL},
    {SETTING_WINDOW, SettingType::TEXT},      {SETTING_WINDOW_VIDEO, SettingType::TEXT},
    {SETTING_WINDOW_BOOK, SettingType::TEXT}, {SETTING_WINDOW_DESCRIPTION, SettingType::TEXT},
    {SETTING_WINDOW_HELP, SettingType::TEXT},
};

const SettingInfo* FindSetting(const char* name) {
    if (name == nullptr) {
        return nullptr;
    }
    SString wanted(name);
    for (const SettingInfo& info : SETTINGS_TABLE) {
        if (wanted.CompareNoCase(info.name) == 0) {
            return &info;
        }
    }
    return nullptr;
}

SString ReadSettingString(const char* name) {
    return SRegistry::ReadString(SETTINGS_ROOT, SETTINGS_KEY, name);
}

uint32_t ReadSettingInt(const char* name) {
    return SRegistry::ReadInt(SETTINGS_ROOT, SETTINGS_KEY, name);
}

bool ReadSettingBool(const char* name) {
    return ReadSettingInt(name) != 0;
}

bool WriteSettingString(const char* name, const char* text) {
    return SRegistry::WriteString(SETTINGS_ROOT, SETTINGS_KEY, name, text);
}

bool WriteSettingInt(const char* name, uint32_t value) {
    return SRegistry::WriteInt(SETTINGS_ROOT, SETTINGS_KEY, name, value);
}

bool WriteSettingBool(const char* name, bool value) {
    return WriteSettingInt(name, value ? 1 : 0);
}

SString FormatPlacement(const SWindowPlacement& placement) {
    SString text;
    text.Format("7:%d,%d,%d,%d,%d,%d,%d", placement.rect.left, placement.rect.top,
                placement.rect.right, placement.rect.bottom, placement.isVisible ? 1 : 0,
                placement.isMinimized ? 1 : 0, placement.isMaximized ? 1 : 0);
    return text;
}

namespace {

int ClampToInt(long long value) {
    if (value > INT_MAX) {
        return INT_MAX;
    }
    if (value < INT_MIN) {
        return INT_MIN;
    }
    return static_cast<int>(value);
}

// The leading decimal number of text as atoi reads it (blanks, a sign,
// digits, anything after ignored; none gives 0), clamped to the int range
// instead of overflowing.
int ReadNumber(const char* text) {
    return ClampToInt(std::strtoll(text, nullptr, 10));
}

// Moves [low, high) inside [areaLow, areaHigh) as the placement rule says.
void FitSpan(int& low, int& high, int areaLow, int areaHigh) {
    int64_t size = int64_t(high) - low;
    int64_t areaSize = int64_t(areaHigh) - areaLow;
    if (size > areaSize) {
        low = areaLow;
        high = areaHigh;
        return;
    }
    int64_t shift = 0;
    if (low < areaLow) {
        shift = int64_t(areaLow) - low;
    } else if (high > areaHigh) {
        shift = int64_t(areaHigh) - high;
    }
    low = ClampToInt(low + shift);
    high = ClampToInt(high + shift);
}

} // namespace

bool ParsePlacement(const char* text, SWindowPlacement* placement) {
    if (text == nullptr || *text == 0 || placement == nullptr) {
        return false;
    }
    const char* colon = text;
    while (*colon != 0 && *colon != ':') {
        ++colon;
    }
    if (*colon != ':') {
        return false;
    }
    if (ReadNumber(text) < 7) {
        return false;
    }
    // Seven fields separated by ","; each is read as a number from its start.
    int fields[7] = {};
    const char* field = colon + 1;
    for (int i = 0; i < 7; ++i) {
        if (field == nullptr) {
            return false;
        }
        fields[i] = ReadNumber(field);
        const char* comma = field;
        while (*comma != 0 && *comma != ',') {
            ++comma;
        }
        field = *comma == ',' ? comma + 1 : nullptr;
    }
    SWindowPlacement result;
    result.rect = {fields[0], fields[1], fields[2], fields[3]};
    if (result.rect.right < result.rect.left) {
        result.rect.right = result.rect.left;
    }
    if (result.rect.bottom < result.rect.top) {
        result.rect.bottom = result.rect.top;
    }
    result.isVisible = fields[4] != 0;
    result.isMinimized = fields[5] != 0;
    result.isMaximized = fields[6] != 0;
    *placement = result;
    return true;
}

SRect FitToWorkArea(const SRect& rect, const SRect& workArea) {
    SRect fitted = rect;
    FitSpan(fitted.left, fitted.right, workArea.left, workArea.right);
    FitSpan(fitted.top, fitted.bottom, workArea.top, workArea.bottom);
    return fitted;
}

bool ReadPlacement(const char* name, const SRect& workArea, SWindowPlacement* placement) {
    SWindowPlacement parsed;
    if (!ParsePlacement(ReadSettingString(name).c_str(), &parsed)) {
        return false;
    }
    parsed.rect = FitToWorkArea(parsed.rect, workArea);
    *placement = parsed;
    return true;
}

bool WritePlacement(const char* name, const SWindowPlacement& placement) {
    return WriteSettingString(name, FormatPlacement(placement).c_str());
}

int ColumnWidthFromSetting(uint32_t stored, int splitterWidth, int fallback) {
    if (stored > 100 && int64_t(stored) < int64_t(splitterWidth) - 200) {
        return static_cast<int>(stored);
    }
    return fallback;
}

int VolumeFromSlider(int position) {
    if (position < 0) {
        position = 0;
    } else if (position > 50) {
        position = 50;
    }
    return (50 - position) * 100 / 50;
}
