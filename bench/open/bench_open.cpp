// Times the open of a song: from the call of OpenMedia to the first
// position report (the first tick of the playing display with a position
// past 0), on the headless platform with the silent sink that keeps time.
// The same is timed for gst-play-1.0 on the same file, from its "Now
// playing" line (printed as it starts the open) to its first position line,
// and from its launch. Prints one line per file with the medians.
//
//   bench_open RUNS FILE...
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>
#include <algorithm>

#include "controls/media_player_ctrl.h"
#include "toolkit/wnd_app.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[(values.size() - 1) / 2];
}

class TimedPlayer : public SMediaPlayerCtrl {
public:
    void OnMediaTimer() override {
        if (!reported && GetPosition() > 0) {
            reported = true;
            reportedAt = Clock::now();
        }
    }
    bool reported = false;
    Clock::time_point reportedAt;
};

// One open of path; false when it fails or no report comes within 10 s.
bool TimeOurs(TimedPlayer& player, const char* path, double* open, double* report) {
    player.reported = false;
    Clock::time_point start = Clock::now();
    if (!player.OpenMedia(path, true)) {
        return false;
    }
    *open = Milliseconds(start, Clock::now());
    SMessage message;
    while (!player.reported && Milliseconds(start, Clock::now()) < 10000) {
        if (GetMessage(&message)) {
            DispatchMessage(&message);
        }
    }
    player.CloseMedia();
    *report = Milliseconds(start, player.reportedAt);
    return player.reported;
}

// One run of gst-play-1.0 on path; fromStart is measured from the "Now
// playing" line, fromLaunch from the spawn.
bool TimeGstPlay(const char* path, double* fromStart, double* fromLaunch) {
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    const char* argv[] = {"gst-play-1.0", "--no-interactive", "--audiosink",
                          "fakesink sync=true", path, nullptr};
    pid_t pid = 0;
    Clock::time_point launch = Clock::now();
    int failed = posix_spawnp(&pid, "gst-play-1.0", &actions, nullptr,
                              const_cast<char* const*>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    if (failed != 0) {
        close(pipeFds[0]);
        return false;
    }
    std::string output;
    Clock::time_point started{};
    bool hasStart = false;
    bool found = false;
    char buffer[512];
    ssize_t count = 0;
    while (!found && (count = read(pipeFds[0], buffer, sizeof(buffer))) > 0) {
        Clock::time_point now = Clock::now();
        output.append(buffer, static_cast<size_t>(count));
        size_t line = output.find("Now playing");
        if (!hasStart && line != std::string::npos) {
            hasStart = true;
            started = now;
        }
        size_t end = line == std::string::npos ? std::string::npos : output.find('\n', line);
        if (end != std::string::npos && output.find(" / ", end) != std::string::npos) {
            found = true;
            *fromStart = Milliseconds(started, now);
            *fromLaunch = Milliseconds(launch, now);
        }
    }
    kill(pid, SIGTERM);
    close(pipeFds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    return found;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: bench_open RUNS FILE...\n");
        return 2;
    }
    int runs = atoi(argv[1]);
    if (!ToolkitStart(nullptr, SW_HIDE, false, false, false)) {
        return 1;
    }
    TimedPlayer player;
    player.SetFakeSinks(true);
    SRect rect{0, 0, 320, 240};
    if (!player.Create("bench", 0, 0, &rect, 0)) {
        fprintf(stderr, "bench_open: the player did not start\n");
        return 1;
    }
    printf("%-28s %10s %12s %14s %14s\n", "file (medians of runs, ms)", "open", "first tick",
           "gst-play", "gst-play+exec");
    int status = 0;
    for (int file = 2; file < argc; ++file) {
        std::vector<double> opens, reports, plays, launches;
        // One warm-up of each, not counted.
        double a = 0, b = 0;
        TimeOurs(player, argv[file], &a, &b);
        TimeGstPlay(argv[file], &a, &b);
        for (int run = 0; run < runs; ++run) {
            double open = 0, report = 0, fromStart = 0, fromLaunch = 0;
            if (TimeOurs(player, argv[file], &open, &report)) {
                opens.push_back(open);
                reports.push_back(report);
            }
            if (TimeGstPlay(argv[file], &fromStart, &fromLaunch)) {
                plays.push_back(fromStart);
                launches.push_back(fromLaunch);
            }
        }
        if (reports.size() != static_cast<size_t>(runs) || plays.size() != static_cast<size_t>(runs)) {
            fprintf(stderr, "bench_open: %s: %zu of our runs and %zu of gst-play's reported\n",
                    argv[file], reports.size(), plays.size());
            status = 1;
        }
        const char* name = strrchr(argv[file], '/');
        printf("%-28s %10.1f %12.1f %14.1f %14.1f\n", name != nullptr ? name + 1 : argv[file],
               Median(opens), Median(reports), Median(plays), Median(launches));
    }
    player.Destroy();
    ToolkitEnd();
    return status;
}
