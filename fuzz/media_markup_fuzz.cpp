// The media control's markup layout over any bytes: no crash, every run
// inside the text, the content as wide as its widest line and as high as
// its lines together, and placing the runs in a small box stays in bounds.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "controls/media_layout.h"

namespace {

// Seven pixels a byte, fourteen a line; wrapping breaks at the box.
class FixedMeasure : public SMediaMeasure {
public:
    SMediaExtent MeasureText(const SMediaFont&, const char*, int length, float boxWidth,
                             bool wrap) override {
        float width = 7.0f * static_cast<float>(length);
        float height = 14;
        if (wrap && boxWidth > 0 && width > boxWidth) {
            height *= std::ceil(width / boxWidth);
            width = boxWidth;
        }
        return {width, height};
    }
    float LineHeight(const SMediaFont&) override { return 14; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) {
        return 0;
    }
    // The first byte picks the wrapping and the alignment flags.
    bool wrapping = (data[0] & 1) != 0;
    unsigned align = (data[0] >> 1) & 0x33;
    SString text;
    text.Assign(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));

    FixedMeasure measure;
    SMediaLayout layout;
    SMediaFont font;
    font.face = "Sans";
    layout.Build(text, font, 0, 0xFF0000, wrapping, 120, align, measure,
                 [](const SString&) -> const SImage* { return nullptr; });

    float widest = 0;
    float total = 0;
    for (const auto& line : layout.GetLines()) {
        for (const auto& run : line.texts) {
            if (run.start < 0 || run.length <= 0 || run.start + run.length > text.GetLength()) {
                abort();
            }
        }
        widest = std::max(widest, line.width);
        total += line.height;
    }
    if (std::abs(layout.GetContentWidth() - static_cast<int>(widest)) > 1 ||
        std::abs(layout.GetContentHeight() - static_cast<int>(total)) > 1) {
        abort();
    }
    SRect inner = {1, 1, 119, 39};
    for (const auto& placed : layout.Place(inner, -5, -3, (data[0] & 0x80) != 0, align)) {
        const auto& lines = layout.GetLines();
        if (placed.line < 0 || placed.line >= static_cast<int>(lines.size()) || placed.run < 0 ||
            placed.run >= static_cast<int>(lines[static_cast<size_t>(placed.line)].texts.size())) {
            abort();
        }
    }
    return 0;
}
