// Times the list control on the headless platform: a 400 x 600 window
// whose list holds 100,000 rows, from creating the window and handing the
// list its rows to the first frame the display draws; then a page of
// scrolling by Page Down (the key, the scroll, the frame of the damaged
// area). Prints one line per measure with the median of the runs: "name
// value unit". The rows' texts are made before the clock starts and handed
// over to the list, as a window does with the rows it has read.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "toolkit/list_ctrl.h"
#include "toolkit/platform/headless/headless_platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int ROWS = 100000;
constexpr unsigned KEY_PAGE_DOWN = 34;

double Milliseconds(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Run {
    double open = 0;       // create, rows, first frame
    double firstFrame = 0; // the first frame alone
    double page = 0;       // median of the pages
    int visibleRows = 0;
};

Run OpenAndScroll(SHeadlessPlatform* platform, const std::vector<std::string>& source) {
    Run run;
    std::vector<std::string> texts = source; // the caller's rows, handed over
    Clock::time_point start = Clock::now();
    SWnd top;
    SRect bounds{0, 0, 400, 600};
    top.Create("bench", WS_VISIBLE, 0, &bounds, 0);
    SListCtrl list;
    list.Create(&top, SRect{0, 0, 400, 600}, 1, LIST_SELECTION_EXTENDED);
    list.AddRows(std::move(texts));
    Clock::time_point frame = Clock::now();
    platform->PresentFrame(top.GetHandle());
    run.firstFrame = Milliseconds(frame);
    run.open = Milliseconds(start);
    run.visibleRows = list.GetPageRows();

    SetFocus(list.GetHandle());
    std::vector<double> pages;
    for (int i = 0; i < 50; ++i) {
        Clock::time_point pageStart = Clock::now();
        platform->Key(top.GetHandle(), KEY_PAGE_DOWN);
        platform->PresentFrame(top.GetHandle());
        pages.push_back(Milliseconds(pageStart));
    }
    run.page = Median(pages);
    list.Destroy();
    top.Destroy();
    return run;
}

} // namespace

int main(int argc, char** argv) {
    int runs = argc > 1 ? std::max(1, atoi(argv[1])) : 7;
    if (!ToolkitStart(nullptr, SW_SHOW, false, false, false)) {
        return 1;
    }
    auto* platform = static_cast<SHeadlessPlatform*>(GetPlatform());
    std::vector<std::string> texts;
    texts.reserve(ROWS);
    for (int i = 0; i < ROWS; ++i) {
        texts.push_back("Artist " + std::to_string(i % 977) + " - Track " + std::to_string(i));
    }
    std::vector<double> open, first, page;
    int visible = 0;
    for (int i = 0; i < runs; ++i) {
        Run run = OpenAndScroll(platform, texts);
        open.push_back(run.open);
        first.push_back(run.firstFrame);
        page.push_back(run.page);
        visible = run.visibleRows;
    }
    printf("rows %d, %d visible\n", ROWS, visible);
    printf("open-and-paint %.2f ms\n", Median(open));
    printf("first-frame %.2f ms\n", Median(first));
    printf("page-down-frame %.2f ms\n", Median(page));
    ToolkitEnd();
    return 0;
}
