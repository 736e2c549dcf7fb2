#include "pages/description_edit.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "foundation/file.h"
#include "pages/description.h"

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

// The selected part [s, e) of line i of the selection's lines (i counts
// from the selection's first line).
void PartOf(const std::vector<std::string>& lines, int i, PTextPoint start, PTextPoint end, int* s,
            int* e) {
    int size = static_cast<int>(lines[static_cast<size_t>(i)].size());
    int count = static_cast<int>(lines.size());
    *s = i == 0 ? std::clamp(start.column, 0, size) : 0;
    *e = i == count - 1 ? std::clamp(end.column, 0, size) : size;
    if (*e < *s) {
        *e = *s;
    }
}

// Narrows [s, e) past blanks and tabs at both ends; false when nothing is
// left.
bool TrimPart(const std::string& line, int* s, int* e) {
    while (*s < *e && IsBlank(line[static_cast<size_t>(*s)])) {
        ++*s;
    }
    while (*e > *s && IsBlank(line[static_cast<size_t>(*e - 1)])) {
        --*e;
    }
    return *s < *e;
}

// Text inserted before a byte of the old line.
struct Insertion {
    int at;
    std::string text;
};

std::string Apply(const std::string& line, const std::vector<Insertion>& insertions) {
    std::string result;
    result.reserve(line.size() + 32);
    size_t from = 0;
    for (const Insertion& insertion : insertions) {
        auto at = static_cast<size_t>(insertion.at);
        result.append(line, from, at - from);
        result += insertion.text;
        from = at;
    }
    result.append(line, from, std::string::npos);
    return result;
}

// Where a byte of the old line lands after the insertions.
int Shift(int position, const std::vector<Insertion>& insertions) {
    int shifted = position;
    for (const Insertion& insertion : insertions) {
        if (insertion.at <= position) {
            shifted += static_cast<int>(insertion.text.size());
        }
    }
    return shifted;
}

// True when the new line pairs its "#" as the old one did, shifted, plus
// one new pair at (a, b) when a is not negative.
bool PairsKept(const std::string& oldLine, const std::string& newLine,
               const std::vector<Insertion>& insertions, int a, int b) {
    std::vector<std::pair<int, int>> expected;
    for (const PMarkPair& pair : FindMarkPairs(oldLine)) {
        expected.emplace_back(Shift(pair.a, insertions), Shift(pair.b, insertions));
    }
    if (a >= 0) {
        expected.emplace_back(a, b);
        std::sort(expected.begin(), expected.end());
    }
    std::vector<std::pair<int, int>> found;
    for (const PMarkPair& pair : FindMarkPairs(newLine)) {
        found.emplace_back(pair.a, pair.b);
    }
    return found == expected;
}

// The mark pair of line whose span holds [s, e) (s > a for a caret, s >= a
// for a part), or null.
const PMarkPair* PairAround(const std::vector<PMarkPair>& pairs, int s, int e, bool caret) {
    for (const PMarkPair& pair : pairs) {
        bool startInside = caret ? (pair.a < s && s <= pair.b) : (pair.a <= s && s <= pair.b);
        if (startInside && e <= pair.b + 1) {
            return &pair;
        }
    }
    return nullptr;
}

// The line with the mark's tag replaced by tag.
std::string Retag(const std::string& line, const PMarkPair& pair, const char* tag) {
    auto a = static_cast<size_t>(pair.a);
    auto c = static_cast<size_t>(pair.c);
    return line.substr(0, a + 1) + tag + line.substr(c);
}

// One selected part [s, e) of a line rewritten; false when the line is to
// stay. [*from, *to) receives the span of the new line that was written.
using PartRewrite = bool (*)(const std::string& line, int s, int e, const char* tag,
                             std::string* result, int* from, int* to);

bool MarkPart(const std::string& line, int s, int e, const char* tag, std::string* result, int* from,
              int* to) {
    std::vector<PMarkPair> pairs = FindMarkPairs(line);
    const PMarkPair* around = PairAround(pairs, s, e, false);
    if (around != nullptr) {
        if (around->c < 0) {
            return false;
        }
        *result = Retag(line, *around, tag);
        *from = around->a;
        *to = around->b + 1 + static_cast<int>(result->size()) - static_cast<int>(line.size());
        return true;
    }
    std::string open = std::string("#") + tag + " ";
    std::vector<Insertion> insertions{{s, open}, {e, "#"}};
    std::string candidate = Apply(line, insertions);
    int a = s;
    int b = e + static_cast<int>(open.size());
    if (!PairsKept(line, candidate, insertions, a, b)) {
        return false;
    }
    *result = std::move(candidate);
    *from = a;
    *to = b + 1;
    return true;
}

bool BoldPart(const std::string& line, int s, int e, const char* /*tag*/, std::string* result,
              int* from, int* to) {
    // "<b>" holds no "#", blank or "@", so the pairs stay; only an end
    // inside a mark's tag or link would change what the mark says.
    for (const PMarkPair& pair : FindMarkPairs(line)) {
        if (pair.c < 0) {
            continue;
        }
        for (int x : {s, e}) {
            if ((pair.a < x && x <= pair.c) || (pair.d >= 0 && pair.d < x && x <= pair.b)) {
                return false;
            }
        }
    }
    *result = Apply(line, {{s, "<b>"}, {e, "</b>"}});
    *from = s;
    *to = e + 7;
    return true;
}

// Runs rewrite over each line's selected part. The selection afterwards
// runs from what was written on the first line (else the old start) to
// what was written on the last (else the old end).
PDescriptionEdit RewriteParts(const std::vector<std::string>& lines, PTextPoint start,
                              PTextPoint end, const char* tag, PartRewrite rewrite) {
    PDescriptionEdit edit;
    edit.first = start.line;
    edit.last = start.line + static_cast<int>(lines.size()) - 1;
    edit.lines = lines;
    edit.anchor = start;
    edit.caret = end;
    int count = static_cast<int>(lines.size());
    for (int i = 0; i < count; ++i) {
        const std::string& line = lines[static_cast<size_t>(i)];
        int s = 0;
        int e = 0;
        PartOf(lines, i, start, end, &s, &e);
        if (!TrimPart(line, &s, &e)) {
            continue;
        }
        std::string rewritten;
        int from = 0;
        int to = 0;
        if (!rewrite(line, s, e, tag, &rewritten, &from, &to)) {
            ++edit.refused;
            continue;
        }
        edit.lines[static_cast<size_t>(i)] = std::move(rewritten);
        edit.changed = true;
        if (i == 0) {
            edit.anchor = PTextPoint{start.line, from};
        }
        if (i == count - 1) {
            edit.caret = PTextPoint{end.line, to};
        }
    }
    return edit;
}

bool ValidRange(const std::vector<std::string>& lines, PTextPoint start, PTextPoint end) {
    return !lines.empty() && start <= end && end.line - start.line + 1 == static_cast<int>(lines.size());
}

} // namespace

std::vector<PMarkPair> FindMarkPairs(const std::string& line) {
    std::vector<PMarkPair> pairs;
    size_t p = 0;
    while (p < line.size()) {
        size_t a = line.find('#', p);
        if (a == std::string::npos) {
            break;
        }
        size_t b = line.find('#', a + 1);
        if (b == std::string::npos) {
            break;
        }
        PMarkPair pair;
        pair.a = static_cast<int>(a);
        pair.b = static_cast<int>(b);
        size_t c = line.find(' ', a + 1);
        if (c != std::string::npos && c < b) {
            pair.c = static_cast<int>(c);
            size_t d = line.find('@', c + 1);
            if (d != std::string::npos && d < b) {
                pair.d = static_cast<int>(d);
            }
        }
        pairs.push_back(pair);
        p = b + 1;
    }
    return pairs;
}

PDescriptionEdit MarkSelection(const std::vector<std::string>& lines, PTextPoint start,
                               PTextPoint end, const char* tag) {
    if (!ValidRange(lines, start, end) || tag == nullptr) {
        return PDescriptionEdit();
    }
    if (start != end) {
        return RewriteParts(lines, start, end, tag, MarkPart);
    }
    // A caret alone: a new empty mark, or the tag of the mark it stands in.
    PDescriptionEdit edit;
    edit.first = edit.last = start.line;
    const std::string& line = lines[0];
    int p = std::clamp(start.column, 0, static_cast<int>(line.size()));
    std::vector<PMarkPair> pairs = FindMarkPairs(line);
    const PMarkPair* around = PairAround(pairs, p, p, true);
    int tagLength = static_cast<int>(strlen(tag));
    if (around != nullptr) {
        if (around->c < 0) {
            edit.refused = 1;
            return edit;
        }
        edit.lines.push_back(Retag(line, *around, tag));
        int grown = tagLength - (around->c - around->a - 1);
        p = p > around->c ? p + grown : around->a + 1 + tagLength;
    } else {
        std::vector<Insertion> insertions{{p, std::string("#") + tag + " #"}};
        std::string candidate = Apply(line, insertions);
        if (!PairsKept(line, candidate, insertions, p, p + tagLength + 2)) {
            edit.refused = 1;
            return edit;
        }
        edit.lines.push_back(std::move(candidate));
        p += tagLength + 2;
    }
    edit.changed = true;
    edit.anchor = edit.caret = PTextPoint{start.line, p};
    return edit;
}

PDescriptionEdit BoldSelection(const std::vector<std::string>& lines, PTextPoint start,
                               PTextPoint end) {
    if (!ValidRange(lines, start, end) || start == end) {
        return PDescriptionEdit();
    }
    return RewriteParts(lines, start, end, "", BoldPart);
}

PDescriptionEdit GroupSelection(const std::vector<std::string>& lines, PTextPoint start,
                                PTextPoint end) {
    PDescriptionEdit edit;
    if (!ValidRange(lines, start, end)) {
        return edit;
    }
    edit.first = start.line;
    edit.last = end.line;
    const std::string& firstLine = lines.front();
    const std::string& lastLine = lines.back();
    int s = std::clamp(start.column, 0, static_cast<int>(firstLine.size()));
    int e = std::clamp(end.column, 0, static_cast<int>(lastLine.size()));
    // The heading's line end would cut a mark in two.
    for (const PMarkPair& pair : FindMarkPairs(firstLine)) {
        if (pair.a < s && s <= pair.b) {
            edit.refused = 1;
            return edit;
        }
    }
    for (const PMarkPair& pair : FindMarkPairs(lastLine)) {
        if (pair.a < e && e <= pair.b) {
            edit.refused = 1;
            return edit;
        }
    }
    std::string title;
    for (int i = 0; i < static_cast<int>(lines.size()); ++i) {
        int ps = 0;
        int pe = 0;
        PartOf(lines, i, start, end, &ps, &pe);
        if (i > 0) {
            title += ' ';
        }
        for (int k = ps; k < pe; ++k) {
            char c = lines[static_cast<size_t>(i)][static_cast<size_t>(k)];
            if (c != '{' && c != '}') {
                title += c;
            }
        }
    }
    std::string head = firstLine.substr(0, static_cast<size_t>(s));
    std::string tail = lastLine.substr(static_cast<size_t>(e));
    bool breakFirst = std::any_of(head.begin(), head.end(), [](char c) { return !IsBlank(c); });
    int headingLine = start.line;
    if (breakFirst) {
        edit.lines.push_back(head);
        edit.lines.push_back("{" + title + "}");
        ++headingLine;
    } else {
        edit.lines.push_back(head + "{" + title + "}");
    }
    edit.lines.push_back(tail);
    if (start == end) {
        int column = static_cast<int>(edit.lines[static_cast<size_t>(headingLine - start.line)].size()) - 1;
        edit.caret = PTextPoint{headingLine, column};
    } else {
        edit.caret = PTextPoint{headingLine + 1, 0};
    }
    edit.anchor = edit.caret;
    edit.changed = true;
    return edit;
}

// Files.

PDescriptionState LoadDescriptionForEditing(const char* path, SString* text, SString* reason) {
    SString ignoredText;
    SString ignoredReason;
    SString& out = text != nullptr ? *text : ignoredText;
    SString& why = reason != nullptr ? *reason : ignoredReason;
    out = "";
    why = "";
    if (path == nullptr || path[0] == 0) {
        why = "no file named";
        return DESCRIPTION_UNREADABLE;
    }
    struct stat status;
    if (stat(path, &status) != 0) {
        if (errno == ENOENT) {
            return DESCRIPTION_NEW;
        }
        why.Format("cannot read %s: %s", path, strerror(errno));
        return DESCRIPTION_UNREADABLE;
    }
    if (!S_ISREG(status.st_mode)) {
        why.Format("%s is no file", path);
        return DESCRIPTION_UNREADABLE;
    }
    if (status.st_size > DESCRIPTION_MAX_EDIT_BYTES) {
        why.Format("%s is too large to edit (%lld bytes)", path, static_cast<long long>(status.st_size));
        return DESCRIPTION_UNREADABLE;
    }
    SString read;
    errno = 0;
    if (!ReadDescriptionFile(path, read)) {
        why.Format("cannot read %s: %s", path, errno != 0 ? strerror(errno) : "read failed");
        return DESCRIPTION_UNREADABLE;
    }
    std::string kept;
    kept.reserve(static_cast<size_t>(read.GetLength()));
    int dropped = 0;
    const char* data = read.c_str();
    for (int i = 0; i < read.GetLength(); ++i) {
        auto c = static_cast<unsigned char>(data[i]);
        if (c < 0x20 && c != '\t' && c != '\r' && c != '\n') {
            ++dropped;
            continue;
        }
        kept += static_cast<char>(c);
    }
    out.Assign(kept.data(), static_cast<int>(kept.size()));
    if (dropped > 0) {
        why.Format("%d control characters of %s were left out", dropped, path);
    }
    return DESCRIPTION_LOADED;
}

std::string DescriptionFileBytes(const std::vector<std::string>& lines, bool* empty) {
    bool none = lines.empty() || (lines.size() == 1 && lines[0].empty());
    if (empty != nullptr) {
        *empty = none;
    }
    std::string bytes;
    if (none) {
        return bytes;
    }
    size_t size = 0;
    for (const std::string& line : lines) {
        size += line.size() + 2;
    }
    bytes.reserve(size);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) {
            bytes += "\r\n";
        }
        bytes += lines[i];
    }
    return bytes;
}

bool SaveDescriptionLines(const char* path, const std::vector<std::string>& lines, SString* reason) {
    SString ignored;
    SString& why = reason != nullptr ? *reason : ignored;
    why = "";
    if (path == nullptr || path[0] == 0) {
        why = "no file named";
        return false;
    }
    bool empty = false;
    std::string bytes = DescriptionFileBytes(lines, &empty);
    if (empty) {
        if (unlink(path) != 0 && errno != ENOENT) {
            why.Format("cannot remove %s: %s", path, strerror(errno));
            return false;
        }
        return true;
    }
    if (bytes.size() > static_cast<size_t>(0x7FFFFFFF)) {
        why.Format("%s would be too large", path);
        return false;
    }
    errno = 0;
    if (!WriteFileAtomic(path, bytes.data(), static_cast<int>(bytes.size()))) {
        why.Format("cannot write %s: %s", path, errno != 0 ? strerror(errno) : "write failed");
        return false;
    }
    return true;
}
