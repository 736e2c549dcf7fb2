#include "app/preferences.h"

#include <string>
#include <string_view>

#include "app/settings.h"
#include "foundation/registry.h"

PPreferences ReadPreferences() {
    PPreferences values;
    values.folder = ReadSettingString(SETTING_FOLDER);
    values.images = ReadSettingString(SETTING_IMAGES);
    values.smallIcons = ReadSettingBool(SETTING_TOOLBAR);
    values.autoHide = ReadSettingBool(SETTING_AUTO_HIDE);
    values.taskbar = ReadSettingBool(SETTING_TASKBAR);
    values.taskbarColor = ReadSettingInt(SETTING_TASKBAR_COLOR) & 0xFFFFFF;
    values.emails = ReadSettingString(SETTING_EMAILS);
    return values;
}

bool WritePreferences(const PPreferences& values) {
    bool written = WriteSettingString(SETTING_FOLDER, values.folder.c_str());
    written = WriteSettingString(SETTING_IMAGES, values.images.c_str()) && written;
    written = WriteSettingBool(SETTING_TOOLBAR, values.smallIcons) && written;
    written = WriteSettingBool(SETTING_AUTO_HIDE, values.autoHide) && written;
    written = WriteSettingBool(SETTING_TASKBAR, values.taskbar) && written;
    written = WriteSettingInt(SETTING_TASKBAR_COLOR, values.taskbarColor & 0xFFFFFF) && written;
    written = WriteSettingString(SETTING_EMAILS, values.emails.c_str()) && written;
    return written;
}

namespace {

// Calls take(part) for each part of text between separators.
template <class Take> void EachPart(std::string_view text, char separator, Take take) {
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(separator, start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        take(text.substr(start, end - start));
        start = end + 1;
    }
}

std::string_view TrimBlanks(std::string_view text) {
    const char* blanks = " \t\r";
    size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace

SString EmailsToLines(const char* stored) {
    std::string lines;
    EachPart(stored != nullptr ? stored : "", ';', [&](std::string_view item) {
        if (!item.empty()) {
            lines.append(lines.empty() ? "" : "\n").append(item);
        }
    });
    return SString(lines.c_str());
}

SString EmailsFromLines(const char* text) {
    std::string joined;
    EachPart(text != nullptr ? text : "", '\n', [&](std::string_view line) {
        std::string_view address = TrimBlanks(line);
        if (!address.empty()) {
            joined.append(address).append(";");
        }
    });
    if (!joined.empty()) {
        joined.pop_back(); // the last ";"
    }
    return SString(joined.c_str());
}

const char* FindOverlongPreference(const PPreferences& values) {
    constexpr int LONGEST = SRegistry::READ_LIMIT - 1;
    if (values.folder.GetLength() > LONGEST) {
        return SETTING_FOLDER;
    }
    if (values.images.GetLength() > LONGEST) {
        return SETTING_IMAGES;
    }
    if (values.emails.GetLength() > LONGEST) {
        return SETTING_EMAILS;
    }
    return nullptr;
}
