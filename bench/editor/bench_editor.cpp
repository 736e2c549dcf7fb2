// Times the code editor on the headless platform with a text of 200,000
// lines and 10 MB: opening the file (reading, the UTF-8 check, the split
// into lines and the first frame of an 800 by 600 window), and typing one
// character at line 150,000 (the key's message, the edit and the frame a
// display draws, clipped to the damaged line). Prints one line per measure
// with the median of the runs: "name value unit".
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "editors/code_edit_ctrl.h"
#include "toolkit/platform/headless/headless_platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// 200,000 lines of code-like text, 10 MB in all.
std::string MakeText() {
    std::string text;
    text.reserve(10 * 1024 * 1024 + 4096);
    const char* words[] = {"if",      "value",    "\"text\"", "count",
                           "// note", "MAX_SIZE", "return",   "\t"};
    for (int line = 0; line < 200000; ++line) {
        std::string row = "\tline_" + std::to_string(line) + " =";
        for (int w = 0; row.size() < 50; ++w) {
            row += ' ';
            row += words[(line + w) % 8];
        }
        row.resize(51);
        text += row;
        text += '\n';
    }
    return text;
}

} // namespace

int main(int argc, char** argv) {
    int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    SetPlatform(new SHeadlessPlatform);
    if (!ToolkitStart(nullptr, SW_SHOW, false, false, false)) {
        std::fprintf(stderr, "the toolkit did not start\n");
        return 1;
    }
    auto* platform = static_cast<SHeadlessPlatform*>(GetPlatform());
    std::string text = MakeText();
    std::string path =
        std::string(std::getenv("TMPDIR") != nullptr ? std::getenv("TMPDIR") : "/tmp") +
        "/melkora_bench_editor.txt";
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size()) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        return 1;
    }
    std::fclose(file);
    std::printf("text %zu bytes, 200000 lines\n", text.size());

    std::vector<double> opens;
    std::vector<double> types;
    for (int run = 0; run < runs; ++run) {
        SWnd top;
        SCodeEditCtrl editor;
        SRect bounds{0, 0, 800, 600};
        top.Create("bench", WS_VISIBLE, 0, &bounds, 0);
        editor.Create("", WS_VISIBLE, 0, &bounds, top.GetHandle());
        editor.ApplyProperties(
            "CODEEDIT_SHOWNUMBER=1\r\nCODEEDIT_COMMENT=1\r\nCODEEDIT_STRINGS=1\r\n"
            "CODEEDIT_UPPERWORDS=1\r\n");
        editor.SetKeywords("if return");
        SetFocus(editor.GetHandle());
        SHeadlessPlatform::DispatchPending();
        platform->PresentFrame(top.GetHandle());

        Clock::time_point start = Clock::now();
        editor.LoadFile(path.c_str());
        platform->PresentFrame(top.GetHandle());
        opens.push_back(Milliseconds(start));
        if (editor.GetEditor().GetLineCount() != 200001) {
            std::fprintf(stderr, "read %d lines\n", editor.GetEditor().GetLineCount());
            return 1;
        }

        editor.GoToLine(150000);
        editor.GetEditor().SetCaret(SCodePos{149999, 20}, false);
        editor.EnsureCaretVisible();
        platform->PresentFrame(top.GetHandle());
        for (int key = 0; key < 20; ++key) {
            start = Clock::now();
            PostMessage(editor.GetHandle(), WM_CHAR, 'a' + static_cast<unsigned>(key), 0);
            SHeadlessPlatform::DispatchPending();
            SRect frame = platform->PresentFrame(top.GetHandle());
            types.push_back(Milliseconds(start));
            if (frame.IsEmpty() || frame.Height() > 3 * editor.GetLineHeight()) {
                std::fprintf(stderr, "a key drew a frame of %d by %d\n", frame.Width(),
                             frame.Height());
                return 1;
            }
        }
        editor.Destroy();
        top.Destroy();
    }
    std::remove(path.c_str());
    std::printf("open %.1f ms\n", Median(opens));
    std::printf("type %.2f ms\n", Median(types));
    std::printf("type-90th %.2f ms\n", [&] {
        std::sort(types.begin(), types.end());
        return types[types.size() * 9 / 10];
    }());
    std::printf("type-worst %.2f ms\n", types.back());
    ToolkitEnd();
    return 0;
}
