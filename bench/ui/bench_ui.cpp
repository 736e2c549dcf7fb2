// Times the main window's picture view of a folder on the headless
// platform: opening a folder of album folders with large JPEG covers (the
// folder view lists it and makes every card's cover on all cores, then the
// thumbnails take the cards and draw the first frame), the first time
// (the cover cache empty) and again (every cover in the cache, a new folder
// view as in a new session); then one frame of the thumbnails at 1920 by
// 1080, whole, and the frame of a hover moving from one card to another.
// Prints one line per measure, "name value unit", medians of the rounds.
//
//   bench_ui FOLDER CACHE [ROUNDS]
//
// FOLDER holds the album folders (its parent is taken as the root); CACHE
// is a folder the cover cache may empty and fill.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

#include "library/folder_view.h"
#include "panels/thumbs_wnd.h"
#include "toolkit/platform/headless/headless_platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int WIDTH = 1920;
constexpr int HEIGHT = 1080;

double Milliseconds(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double CpuMilliseconds() {
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000.0 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000.0;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The parts of an open, in milliseconds: the folder view's listing and
// covers, the cards handed to the thumbnails, the first frame.
struct Open {
    double cpu = 0; // processor time of every thread, user and system
    double view = 0;
    double cards = 0;
    double frame = 0;
    double Total() const { return view + cards + frame; }
};

// Opens folder in a new folder view and hands its cards to the thumbnails,
// then draws the frame; the view's card count goes to cards.
Open OpenFolder(SHeadlessPlatform* platform, SWnd& top, PWndThumbs& thumbs,
                const std::string& root, const std::string& folder, const std::string& cache,
                size_t* cards) {
    Open open;
    double cpuStart = CpuMilliseconds();
    Clock::time_point start = Clock::now();
    PFolderView view;
    view.SetRoot(root.c_str());
    view.SetCoverCacheFolder(cache.c_str());
    view.OpenFolder(folder.c_str(), "", true);
    open.view = Milliseconds(start);
    start = Clock::now();
    thumbs.SetThumbs(view.GetThumbnails());
    open.cards = Milliseconds(start);
    start = Clock::now();
    platform->PresentFrame(top.GetHandle());
    open.frame = Milliseconds(start);
    open.cpu = CpuMilliseconds() - cpuStart;
    *cards = view.GetThumbnails().size();
    return open;
}

void Report(const char* name, const std::vector<Open>& opens) {
    std::vector<double> total, view, cards, frame, cpu;
    for (const Open& open : opens) {
        total.push_back(open.Total());
        cpu.push_back(open.cpu);
        view.push_back(open.view);
        cards.push_back(open.cards);
        frame.push_back(open.frame);
    }
    std::printf("%s %.1f ms (folder view %.1f, cards to thumbnails %.1f, first frame %.1f; "
                "processor time %.1f ms)\n",
                name, Median(total), Median(view), Median(cards), Median(frame), Median(cpu));
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_ui FOLDER CACHE [ROUNDS]\n");
        return 2;
    }
    std::string folder = std::filesystem::absolute(argv[1]).string();
    if (folder.back() != '/') {
        folder += "/";
    }
    std::string root = std::filesystem::path(folder).parent_path().parent_path().string() + "/";
    std::string cache = std::filesystem::absolute(argv[2]).string() + "/";
    int rounds = argc > 3 ? std::max(1, std::atoi(argv[3])) : 5;

    SetPlatform(new SHeadlessPlatform);
    if (!ToolkitStart(nullptr, SW_SHOW, false, false, false)) {
        return 1;
    }
    auto* platform = static_cast<SHeadlessPlatform*>(GetPlatform());
    SWnd top;
    SRect bounds{0, 0, WIDTH, HEIGHT};
    top.Create("bench", WS_VISIBLE, 0, &bounds, 0);
    PWndThumbs thumbs(nullptr);
    thumbs.Create(&top, SRect{0, 0, WIDTH, HEIGHT});
    platform->PresentFrame(top.GetHandle());

    std::vector<Open> first, cached;
    size_t cards = 0;
    for (int round = 0; round < rounds; ++round) {
        std::error_code error;
        std::filesystem::remove_all(cache, error);
        first.push_back(OpenFolder(platform, top, thumbs, root, folder, cache, &cards));
        cached.push_back(OpenFolder(platform, top, thumbs, root, folder, cache, &cards));
    }
    std::printf("cores %u\n", std::thread::hardware_concurrency());
    std::printf("cards %zu\n", cards);
    Report("open_first", first);
    Report("open_cached", cached);

    // Frames at 1920 by 1080: the whole view, then a hover moving between
    // two cards (the damage of two cards).
    std::vector<double> whole, hover;
    for (int i = 0; i < 50; ++i) {
        Clock::time_point start = Clock::now();
        thumbs.Invalidate();
        platform->PresentFrame(top.GetHandle());
        whole.push_back(Milliseconds(start));
    }
    for (int i = 0; i < 50; ++i) {
        SRect card = thumbs.GetCardRect(i % 2 == 0 ? 3 : 4);
        Clock::time_point start = Clock::now();
        platform->MoveMouse(top.GetHandle(), card.left + 80, card.top + 80);
        platform->PresentFrame(top.GetHandle());
        hover.push_back(Milliseconds(start));
    }
    std::printf("columns %d\n", thumbs.GetColumns());
    std::printf("frame_whole %.2f ms\n", Median(whole));
    std::printf("frame_hover %.2f ms\n", Median(hover));
    thumbs.Destroy();
    top.Destroy();
    ToolkitEnd();
    return 0;
}
