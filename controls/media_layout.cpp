#include "controls/media_layout.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>

#include "foundation/image.h"

namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

uint32_t HexPair(const char* digits) {
    return static_cast<uint32_t>(HexDigit(digits[0]) * 16 + HexDigit(digits[1]));
}

bool NameIs(const char* name, int length, const char* word) {
    int wordLength = static_cast<int>(std::strlen(word));
    if (length != wordLength) {
        return false;
    }
    for (int i = 0; i < length; ++i) {
        if (std::toupper(static_cast<unsigned char>(name[i])) != word[i]) {
            return false;
        }
    }
    return true;
}

// The counters and switches of the walk over runs and marks.
struct MarkState {
    int bold = 0;
    int italic = 0;
    int underline = 0;
    int left = 0;
    int center = 0;
    int right = 0;
    bool link = false;
    bool image = false;
    std::vector<uint32_t> colors;

    int Align() const {
        if (right > 0) {
            return 2;
        }
        if (center > 0) {
            return 1;
        }
        return left > 0 ? 0 : -1;
    }

    void Apply(const SMediaLayout::_STag& tag) {
        auto count = [&](int& counter) {
            counter = tag.opening ? counter + 1 : std::max(0, counter - 1);
        };
        switch (tag.kind) {
        case MARK_BOLD:
            count(bold);
            break;
        case MARK_ITALIC:
            count(italic);
            break;
        case MARK_UNDERLINE:
            count(underline);
            break;
        case MARK_LEFT:
            count(left);
            break;
        case MARK_CENTER:
            count(center);
            break;
        case MARK_RIGHT:
            count(right);
            break;
        case MARK_LINK:
            link = tag.opening;
            break;
        case MARK_IMAGE:
            image = tag.opening;
            break;
        case MARK_COLOR:
            if (tag.opening) {
                colors.push_back(tag.color);
            } else if (colors.size() > 1) {
                colors.pop_back();
            }
            break;
        default:
            break;
        }
    }
};

// A run never reaches this width when wrapping is off.
constexpr float UNBOUNDED_WIDTH = 2147483647.0f;

} // namespace

uint32_t MediaColor(uint32_t color) {
    uint32_t alpha = color >> 24;
    if (alpha == 0 || alpha == 0xFF) {
        return (color & 0xFFFFFFu) | MEDIA_COLOR_SET;
    }
    return color;
}

int ClassifyMark(const char* mark, int length, bool* opening, uint32_t* color) {
    *opening = true;
    *color = 0;
    if (mark == nullptr || length < 3 || mark[0] != '<' || mark[length - 1] != '>') {
        return 0;
    }
    const char* name = mark + 1;
    int nameLength = length - 2;
    if (name[0] == '/') {
        *opening = false;
        ++name;
        --nameLength;
    }
    if (nameLength > 0 && name[0] == '#') {
        if (!*opening) {
            return MARK_COLOR; // "</#" and anything
        }
        int digits = nameLength - 1;
        if (digits != 6 && digits != 8) {
            return 0;
        }
        for (int i = 1; i < nameLength; ++i) {
            if (HexDigit(name[i]) < 0) {
                return 0;
            }
        }
        uint32_t red = HexPair(mark + 2);
        uint32_t green = HexPair(mark + 4);
        uint32_t blue = HexPair(mark + 6);
        uint32_t alpha = length == 11 ? HexPair(mark + 8) : 0xFE;
        if (alpha == 0xFF) {
            alpha = 0xFE;
        }
        *color = (alpha << 24) | (blue << 16) | (green << 8) | red;
        return MARK_COLOR;
    }
    struct Word {
        const char* text;
        int kind;
    };
    static const Word words[] = {
        {"B", MARK_BOLD},    {"I", MARK_ITALIC},    {"U", MARK_UNDERLINE}, {"LINK", MARK_LINK},
        {"IMG", MARK_IMAGE}, {"LEFT", MARK_LEFT},   {"L", MARK_LEFT},      {"CENTER", MARK_CENTER},
        {"C", MARK_CENTER},  {"RIGHT", MARK_RIGHT}, {"R", MARK_RIGHT}};
    for (const Word& word : words) {
        if (NameIs(name, nameLength, word.text)) {
            return word.kind;
        }
    }
    return 0;
}

std::vector<SMediaLayout::MarkedLine> SMediaLayout::FindMarks(const SString& text) {
    std::vector<MarkedLine> result;
    const char* data = text.c_str();
    int length = text.GetLength();
    int start = 0;
    while (true) {
        int end = start;
        while (end < length && data[end] != '\r' && data[end] != '\n') {
            ++end;
        }
        MarkedLine line;
        line.start = start;
        line.end = end;
        int position = start;
        while (position < end) {
            const char* open =
                static_cast<const char*>(std::memchr(data + position, '<', end - position));
            const char* close =
                static_cast<const char*>(std::memchr(data + position, '>', end - position));
            if (open == nullptr || close == nullptr || close < open) {
                break;
            }
            int before = static_cast<int>(open - data);
            int after = static_cast<int>(close - data) + 1;
            _STag tag;
            tag.kind = ClassifyMark(open, after - before, &tag.opening, &tag.color);
            if (tag.kind != 0) {
                tag.before = before;
                tag.after = after;
                line.tags.push_back(tag);
            }
            position = after;
        }
        result.push_back(std::move(line));
        if (end >= length) {
            break;
        }
        start = end + (data[end] == '\r' && end + 1 < length && data[end + 1] == '\n' ? 2 : 1);
    }
    return result;
}

void SMediaLayout::Clear() {
    lines.clear();
    contentWidth = 0;
    contentHeight = 0;
}

void SMediaLayout::Build(const SString& text, const SMediaFont& font, uint32_t textColor,
                         uint32_t linkColor, bool wrapping, int innerWidth, unsigned align,
                         SMediaMeasure& measure, const ImageLookup& images) {
    Clear();
    MarkState state;
    state.colors.push_back(textColor);
    float boxWidth = wrapping ? static_cast<float>(std::max(innerWidth, 0)) : UNBOUNDED_WIDTH;
    float lineHeight = measure.LineHeight(font);
    float widest = 0;
    float top = 0;
    for (const MarkedLine& marked : FindMarks(text)) {
        _SLine line;
        line.height = lineHeight;
        auto emit = [&](int from, int to) {
            line.align = std::max(line.align, state.Align());
            if (to <= from) {
                return;
            }
            _SText run;
            run.start = from;
            run.length = to - from;
            run.font = font;
            run.font.weight = state.bold > 0 ? 700 : 400;
            run.font.italic = font.italic || state.italic > 0;
            run.font.underline = font.underline || state.underline > 0 || state.link;
            run.color = state.link ? linkColor : state.colors.back();
            run.link = state.link;
            run.align = state.Align();
            if (state.image && images) {
                run.image = images(text.Mid(from, to - from));
            }
            if (run.image != nullptr) {
                run.width = static_cast<float>(run.image->GetWidth());
                run.height = static_cast<float>(run.image->GetHeight());
            } else {
                SMediaExtent size = measure.MeasureText(run.font, text.c_str() + from, run.length,
                                                        boxWidth, wrapping);
                run.width = size.width;
                run.height = size.height;
            }
            run.y = top;
            line.width += run.width;
            line.height = std::max(line.height, run.height);
            line.texts.push_back(run);
        };
        int position = marked.start;
        for (const _STag& tag : marked.tags) {
            emit(position, tag.before);
            state.Apply(tag);
            line.align = std::max(line.align, state.Align());
            position = tag.after;
        }
        emit(position, marked.end);
        AlignLine(line, innerWidth, align);
        widest = std::max(widest, line.width);
        top += line.height;
        lines.push_back(std::move(line));
    }
    contentWidth = static_cast<int>(std::ceil(widest));
    contentHeight = static_cast<int>(std::ceil(top));
}

void SMediaLayout::AlignLine(_SLine& line, int innerWidth, unsigned align) {
    int how = line.align >= 0 ? line.align : static_cast<int>(align & 0x0F);
    if (line.texts.empty()) {
        return;
    }
    if (how == 2) {
        float x = static_cast<float>(innerWidth);
        for (size_t i = line.texts.size(); i-- > 0;) {
            x -= line.texts[i].width;
            line.texts[i].x = x;
        }
        return;
    }
    // Justify counts as left.
    float x = how == 1 ? std::trunc(innerWidth / 2.0f - line.width / 2.0f) : 0.0f;
    for (_SText& run : line.texts) {
        run.x = x;
        x += run.width;
    }
}

std::vector<SMediaPlacedRun> SMediaLayout::Place(const SRect& inner, int offsetX, int offsetY,
                                                 bool scrollingVertically, unsigned align) const {
    std::vector<SMediaPlacedRun> placed;
    float originX = static_cast<float>(inner.left + offsetX);
    float y = static_cast<float>(inner.top + offsetY);
    if (!scrollingVertically) {
        if ((align & 0xF0) == MEDIA_ALIGN_MIDDLE) {
            y = static_cast<float>((inner.top + inner.bottom) / 2 - contentHeight / 2);
        } else if ((align & 0xF0) == MEDIA_ALIGN_BOTTOM) {
            y = static_cast<float>(inner.bottom - contentHeight);
        }
    }
    for (size_t index = 0; index < lines.size() && y < inner.bottom; ++index) {
        const _SLine& line = lines[index];
        if (y + line.height > 0) {
            for (size_t run = 0; run < line.texts.size(); ++run) {
                const _SText& text = line.texts[run];
                placed.push_back(SMediaPlacedRun{static_cast<int>(index), static_cast<int>(run),
                                                 originX + text.x, y, text.width, text.height});
            }
        }
        y += line.height;
    }
    return placed;
}

int MediaFrameState(bool isButton, bool isFlat, bool isEnabled, bool isChecked, bool isHovered,
                    bool isPressed) {
    if (!isButton || isFlat || !isEnabled) {
        return MEDIA_FRAME_NONE;
    }
    if (isChecked || (isHovered && isPressed)) {
        return MEDIA_FRAME_SUNKEN;
    }
    return isHovered ? MEDIA_FRAME_RAISED : MEDIA_FRAME_NONE;
}
