// The ".hidden" file of a folder (the file managers' convention): the names
// of the folder's entries that are hidden, one a line, LF or CR LF. Read by
// the folder listing and by the walks over the collection.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

constexpr const char* HIDDEN_LIST_NAME = ".hidden";
// A ".hidden" file larger than this is read only this far.
constexpr size_t MAX_HIDDEN_LIST = 1 << 20;

// Reads at most MAX_HIDDEN_LIST bytes of the open file fd and closes it;
// empty for a negative fd or a read error at the start.
std::string ReadHiddenList(int fd);

// Calls visit(std::string_view) for each name of a ".hidden" text, in
// order, the line end (LF or CR LF) taken off and empty lines skipped.
template <typename Visit> void ForEachHiddenName(std::string_view content, Visit visit) {
    size_t start = 0;
    while (start < content.size()) {
        size_t end = content.find('\n', start);
        if (end == std::string_view::npos) {
            end = content.size();
        }
        std::string_view line = content.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        if (!line.empty()) {
            visit(line);
        }
        start = end + 1;
    }
}
