#include "app/cli/cli_play.h"

#include <cstring>
#include <string>
#include <vector>

#include "app/player.h"
#include "foundation/array.h"
#include "toolkit/wnd_app.h"

namespace {

// The program's player, printing the queue's events: "open <path>",
// "end <path>", "skip <path>" and "stop", each on its own line, flushed at
// once so that a reader sees them as they happen.
class CliPlayer : public PMedia {
public:
    void OnNowPlaying(const char* path, int /*position*/, int /*count*/) override {
        Print("open", path);
        ++opened;
    }
    void OnSkipped(const char* path) override { Print("skip", path); }
    void OnNowPlayingCleared() override {
        Print("stop", nullptr);
        PostQuitMessage(0);
    }
    void OnMediaEnded() override {
        PPlayQueue* queue = GetQueue();
        if (queue != nullptr && queue->GetIndex() >= 0) {
            Print("end", queue->GetEntries().GetAt(queue->GetIndex())->c_str());
        }
        PMedia::OnMediaEnded();
    }

    int opened = 0;

private:
    static void Print(const char* event, const char* path) {
        if (path != nullptr) {
            printf("%s %s\n", event, path);
        } else {
            printf("%s\n", event);
        }
        fflush(stdout);
    }
};

} // namespace

int RunPlayJob(int argc, char** argv) {
    bool repeat = false;
    bool shuffle = false;
    bool fakeSink = false;
    SStringArray paths;
    for (int i = 0; i < argc; ++i) {
        const char* argument = argv[i];
        if (strcmp(argument, "--help") == 0 || strcmp(argument, "-h") == 0) {
            fputs(PLAY_USAGE, stdout);
            return 0;
        }
        if (strcmp(argument, "--repeat") == 0) {
            repeat = true;
        } else if (strcmp(argument, "--shuffle") == 0) {
            shuffle = true;
        } else if (strcmp(argument, "--sink") == 0) {
            if (i + 1 >= argc || strcmp(argv[i + 1], "fake") != 0) {
                fputs(PLAY_USAGE, stderr);
                return 2;
            }
            fakeSink = true;
            ++i;
        } else if (strncmp(argument, "--", 2) == 0) {
            fputs(PLAY_USAGE, stderr);
            return 2;
        } else {
            paths.Add(argument);
        }
    }
    if (paths.GetCount() == 0) {
        fputs(PLAY_USAGE, stderr);
        return 2;
    }
    if (!ToolkitStart(nullptr, SW_HIDE, false, false, false)) {
        fputs("melkora-cli: the window toolkit did not start\n", stderr);
        return 1;
    }
    int status = 0;
    {
        CliPlayer player;
        player.SetFakeSinks(fakeSink);
        SRect rect{0, 0, 320, 240};
        if (!player.Create("Melkora Browser", 0, 0, &rect, 0)) {
            fputs("melkora-cli: the player did not start\n", stderr);
            status = 1;
        } else {
            PPlayQueue queue(player);
            player.SetQueue(&queue);
            queue.SetRepeat(repeat);
            if (shuffle) {
                paths.Shuffle();
            }
            // The queue prints "stop" and ends the loop when it runs out.
            queue.SetPlayQueue(&paths);
            if (queue.GetIndex() >= 0) {
                RunLoop(nullptr, nullptr, nullptr);
            }
            if (player.opened == 0) {
                fputs("melkora-cli: nothing could be played\n", stderr);
                status = 1;
            }
            player.SetQueue(nullptr);
            player.Destroy();
        }
    }
    ToolkitEnd();
    return status;
}
