#include "library/play_queue.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "foundation/random.h"
#include "support/temp_dir.h"

namespace {

using Events = std::vector<std::string>;

// A player that logs every call; paths in failing do not open.
class FakeHost : public PPlayerHost {
public:
    bool OpenMedia(const char* address) override {
        // A command held while the open waits runs before it returns, as
        // the real player's nested loop does; the open then reports failure
        // when the command opened something else meanwhile.
        if (held && Name(address) == heldOn) {
            auto command = std::move(held);
            held = nullptr;
            size_t before = events.size();
            command();
            for (size_t i = before; i < events.size(); ++i) {
                if (events[i] == "stop" || events[i].rfind("open ", 0) == 0) {
                    return false;
                }
            }
        }
        if (failing.count(address) != 0) {
            events.push_back("skip " + Name(address));
            return false;
        }
        ++opens;
        events.push_back("open " + Name(address));
        return true;
    }
    void Pause() override { events.push_back("pause"); }
    bool TogglePause() override {
        events.push_back("toggle");
        return true;
    }
    void Stop() override { events.push_back("stop"); }
    bool Seek(int seconds) override {
        events.push_back("seek " + std::to_string(seconds));
        return true;
    }
    void OnNowPlaying(const char*, int position, int count) override {
        events.push_back("now " + std::to_string(position) + "/" + std::to_string(count));
    }
    void OnQueueGrown(int count) override { events.push_back("grown " + std::to_string(count)); }
    void OnSkipped(const char* path) override { skipped.push_back(Name(path)); }
    void ShutDownMachine() override { events.push_back("shutdown"); }

    // The file name alone keeps the expectations short.
    static std::string Name(const char* path) {
        std::string text(path);
        size_t slash = text.rfind('/');
        return slash == std::string::npos ? text : text.substr(slash + 1);
    }

    std::set<std::string> failing;
    std::string heldOn;             // the file whose open the command waits for
    std::function<void()> held;     // runs once, during that open
    Events events;
    Events skipped; // as the queue reported them, by queued path
    int opens = 0;
};

class PlayQueueTest : public ::testing::Test {
protected:
    SStringArray Paths(std::initializer_list<const char*> names) {
        SStringArray paths;
        for (const char* name : names) {
            paths.Add((dir / name).c_str());
        }
        return paths;
    }
    void Fail(const char* name) { host.failing.insert(dir / name); }
    Events Take() {
        Events taken = host.events;
        host.events.clear();
        return taken;
    }

    TempDir dir;
    FakeHost host;
    PPlayQueue queue{host};
};

TEST_F(PlayQueueTest, PlayFromSkipsFilesThatDoNotOpen) {
    Fail("a.mp3");
    Fail("b.mp3");
    SStringArray list = Paths({"a.mp3", "b.mp3", "c.mp3"});
    ASSERT_TRUE(queue.SetPlayQueue(&list));
    EXPECT_EQ(queue.GetIndex(), 2);
    EXPECT_EQ(Take(), (Events{"skip a.mp3", "skip b.mp3", "open c.mp3", "now 3/3"}));
    EXPECT_FALSE(queue.SetPlayQueue(nullptr));
}

TEST_F(PlayQueueTest, AQueueThatNeverOpensEndsAsAStop) {
    Fail("a.mp3");
    SStringArray list = Paths({"a.mp3"});
    EXPECT_FALSE(queue.SetPlayQueue(&list));
    EXPECT_EQ(queue.GetCount(), 0);
    EXPECT_EQ(queue.GetIndex(), -1);
    EXPECT_FALSE(queue.PlayFrom(0, false));
    EXPECT_FALSE(queue.NextTrack());
    EXPECT_FALSE(queue.PreviousTrack());
    EXPECT_FALSE(queue.TogglePause());
    EXPECT_FALSE(queue.SeekSeconds(3));
    EXPECT_FALSE(queue.StopPlaying());
}

TEST_F(PlayQueueTest, NextOnTheLastEntryStopsWithoutRepeatAndWrapsWithIt) {
    SStringArray list = Paths({"a.mp3", "b.mp3"});
    queue.SetPlayQueue(&list);
    ASSERT_TRUE(queue.NextTrack());
    EXPECT_EQ(queue.GetIndex(), 1);
    queue.SetRepeat(true);
    ASSERT_TRUE(queue.NextTrack());
    EXPECT_EQ(queue.GetIndex(), 0);
    queue.SetRepeat(false);
    queue.NextTrack();
    Take();
    EXPECT_FALSE(queue.NextTrack());
    EXPECT_EQ(queue.GetCount(), 0); // emptied, not only stopped
    EXPECT_EQ(queue.GetIndex(), -1);
    EXPECT_EQ(Take(), (Events{"stop"}));
}

TEST_F(PlayQueueTest, PreviousOnTheFirstEntryStopsTheQueue) {
    for (bool repeat : {false, true}) {
        SStringArray list = Paths({"a.mp3", "b.mp3"});
        queue.SetRepeat(repeat);
        queue.SetPlayQueue(&list);
        EXPECT_FALSE(queue.PreviousTrack());
        EXPECT_EQ(queue.GetCount(), 0);
        EXPECT_EQ(queue.GetIndex(), -1);
    }
    SStringArray list = Paths({"a.mp3", "b.mp3"});
    queue.SetPlayQueue(&list);
    queue.NextTrack();
    Take();
    EXPECT_TRUE(queue.PreviousTrack());
    EXPECT_EQ(queue.GetIndex(), 0);
    EXPECT_EQ(Take(), (Events{"open a.mp3", "now 1/2"}));
    // Back onto a file that fails: the queue stops.
    Fail("a.mp3");
    queue.SetPlayQueue(&list);
    EXPECT_FALSE(queue.PreviousTrack());
    EXPECT_EQ(queue.GetCount(), 0);
}

TEST_F(PlayQueueTest, OneEntryWithRepeatReplaysWithoutReopening) {
    SStringArray list = Paths({"a.mp3"});
    queue.SetRepeat(true);
    queue.SetPlayQueue(&list);
    queue.OnTrackEnded();
    queue.OnTrackEnded();
    EXPECT_EQ(host.opens, 1);
    EXPECT_EQ(queue.GetIndex(), 0);
    EXPECT_EQ(Take(), (Events{"open a.mp3", "now 1/1", "seek 0", "seek 0"}));
}

TEST_F(PlayQueueTest, LastEntryEndedWithRepeatRestartsKeepingTheOrder) {
    SeedRandom(5);
    SStringArray list = Paths({"a.mp3", "b.mp3", "c.mp3"});
    queue.SetRepeat(true);
    queue.SetPlayQueue(&list);
    queue.NextTrack();
    queue.NextTrack();
    Take();
    queue.OnTrackEnded();
    EXPECT_EQ(queue.GetIndex(), 0);
    EXPECT_EQ(queue.GetCount(), 3);
    EXPECT_EQ(Take(), (Events{"open a.mp3", "now 1/3"}));
}

TEST_F(PlayQueueTest, ShutdownFollowsTheEndOfTheQueueOnly) {
    SStringArray one = Paths({"a.mp3"});
    queue.SetShutdown(true);
    queue.SetPlayQueue(&one);
    Take();
    queue.OnTrackEnded();
    EXPECT_EQ(Take(), (Events{"stop", "shutdown"}));

    // The last entry fails to open: NextTrack fails, so the machine goes off.
    Fail("c.mp3");
    SStringArray list = Paths({"a.mp3", "b.mp3", "c.mp3"});
    queue.SetPlayQueue(&list);
    queue.OnTrackEnded();
    Take();
    queue.OnTrackEnded();
    EXPECT_EQ(Take(), (Events{"skip c.mp3", "stop", "shutdown"}));

    // A late end after the queue stopped does nothing at all.
    queue.OnTrackEnded();
    EXPECT_EQ(Take(), Events{});

    queue.SetShutdown(false);
    queue.SetPlayQueue(&list);
    queue.OnTrackEnded();
    queue.OnTrackEnded();
    for (const std::string& event : Take()) {
        EXPECT_NE(event, "shutdown");
    }
}

TEST_F(PlayQueueTest, PlayFolderAtUsesTheRowAsTheQueueIndex) {
    // The track list shows 1.mp3, 2.wax, 3.mp3; the queue leaves the radio out.
    dir.Write("F/1.mp3", "");
    dir.Write("F/2.wax", "<asx><ref href=\"http://r\"/></asx>");
    dir.Write("F/3.mp3", "");
    dir.Write("F/4.mp3", "");
    ASSERT_TRUE(queue.PlayFolderAt(2, (dir / "F").c_str()));
    EXPECT_EQ(queue.GetCount(), 3);
    EXPECT_EQ(Take(), (Events{"open 4.mp3", "now 3/3"})); // row 2 was 3.mp3 on screen
    ASSERT_TRUE(queue.PlayFolderAt(-1, (dir / "F").c_str()));
    EXPECT_EQ(queue.GetIndex(), 0);
    dir.MakeFolder("Empty");
    EXPECT_FALSE(queue.PlayFolderAt(0, (dir / "Empty").c_str()));
    EXPECT_EQ(queue.GetCount(), 3); // the queue stays as it was
}

TEST_F(PlayQueueTest, PlayFoldersTreeTakesSongsOnlyAndShufflesWithTheGenerator) {
    dir.Write("R/A/1.mp3", "");
    dir.Write("R/A/v.avi", "");
    dir.Write("R/B/2.mp3", "");
    dir.Write("R/3.mp3", "");
    dir.Write("R/p.jpg", "");
    ASSERT_TRUE(queue.PlayFolders((dir / "R").c_str(), nullptr, true, false));
    EXPECT_EQ(std::string(queue.GetEntries().Join(",").c_str()),
              (dir / "R/3.mp3") + "," + (dir / "R/A/1.mp3") + "," + (dir / "R/B/2.mp3"));
    SeedRandom(1); // draws 41, 18467, 6334: places 0, 2, 1
    ASSERT_TRUE(queue.PlayFolders((dir / "R").c_str(), nullptr, true, true));
    EXPECT_EQ(std::string(queue.GetEntries().Join(",").c_str()),
              (dir / "R/3.mp3") + "," + (dir / "R/B/2.mp3") + "," + (dir / "R/A/1.mp3"));
    ASSERT_TRUE(queue.PlayFolders((dir / "R").c_str(), nullptr, false, false));
    EXPECT_EQ(queue.GetCount(), 2); // 3.mp3 and p.jpg
    EXPECT_FALSE(queue.PlayFolders(nullptr, (dir / "R").c_str(), false, false));
    ASSERT_TRUE(queue.PlayFolders(nullptr, (dir / "R").c_str(), true, false));
    EXPECT_EQ(queue.GetCount(), 5);
}

TEST_F(PlayQueueTest, AddingExtendsAndStartsPausedOnAnEmptyQueue) {
    dir.Write("F/1.mp3", "");
    dir.Write("G/Sub/2.mp3", "");
    SStringArray rows = Paths({"x.mp3"});
    ASSERT_TRUE(queue.AddFiles(rows));
    EXPECT_EQ(Take(), (Events{"open x.mp3", "pause", "now 1/1"}));
    ASSERT_TRUE(queue.AddFolder((dir / "F").c_str()));
    ASSERT_TRUE(queue.AddFolder((dir / "G").c_str())); // falls back to the tree's songs
    EXPECT_EQ(Take(), (Events{"grown 2", "grown 3"}));
    dir.MakeFolder("Empty");
    EXPECT_FALSE(queue.AddFolder((dir / "Empty").c_str()));
    EXPECT_FALSE(queue.AddFiles(SStringArray()));
    EXPECT_EQ(queue.GetIndex(), 0);
    SStringArray titles;
    queue.GetQueueTitles(titles);
    EXPECT_EQ(titles.Join(","), "x,1,2");
    // A second play replaces the queue.
    ASSERT_TRUE(queue.PlaySelectedTracks(rows));
    EXPECT_EQ(queue.GetCount(), 1);
    EXPECT_FALSE(queue.PlaySelectedTracks(SStringArray()));
}

TEST_F(PlayQueueTest, RadioFilesHandTheirStreamToThePlayer) {
    std::string radio = dir.Write("r.asx", "<asx><entry><ref href=\"http://stream/x\"/></entry></asx>");
    std::string empty = dir.Write("e.wvx", "<asx></asx>");
    SStringArray list;
    list.Add(empty.c_str());
    list.Add(radio.c_str());
    ASSERT_TRUE(queue.SetPlayQueue(&list));
    EXPECT_EQ(queue.GetIndex(), 1);
    EXPECT_EQ(Take(), (Events{"open x", "now 2/2"}));
    // A radio file without an address is skipped under its own name.
    EXPECT_EQ(host.skipped, (Events{"e.wvx"}));
}

TEST_F(PlayQueueTest, SkippedEntriesAreReportedByTheirQueuedPath) {
    Fail("a.mp3");
    Fail("c.mp3");
    SStringArray list = Paths({"a.mp3", "b.mp3", "c.mp3"});
    ASSERT_TRUE(queue.SetPlayQueue(&list));
    EXPECT_EQ(host.skipped, (Events{"a.mp3"}));
    queue.OnTrackEnded();
    EXPECT_EQ(host.skipped, (Events{"a.mp3", "c.mp3"}));
    EXPECT_EQ(queue.GetIndex(), -1);
}

TEST_F(PlayQueueTest, TransportWorksOnAQueueAndStopIsFalseOnceEmpty) {
    EXPECT_FALSE(queue.StopPlaying());
    SStringArray list = Paths({"a.mp3"});
    queue.SetPlayQueue(&list);
    EXPECT_TRUE(queue.TogglePause());
    EXPECT_TRUE(queue.SeekSeconds(30));
    EXPECT_TRUE(queue.StopPlaying());
    EXPECT_FALSE(queue.StopPlaying());
}

// Commands held during an open run before it returns; whatever they do to
// the queue, the outer operation leaves it as they left it.
TEST_F(PlayQueueTest, CommandsHeldDuringAnOpenTakeOverTheQueue) {
    struct HeldCase {
        const char* name;
        std::function<void()> command;
        int index;
        int count;
        Events events;
    };
    const HeldCase cases[] = {
        {"a new queue",
         [this] {
             SStringArray other = Paths({"x.mp3", "y.mp3"});
             queue.SetPlayQueue(&other);
         },
         0, 2, {"open x.mp3", "now 1/2"}},
        {"selected tracks",
         [this] { queue.PlaySelectedTracks(Paths({"x.mp3"})); },
         0, 1, {"open x.mp3", "now 1/1"}},
        {"stop", [this] { queue.StopPlaying(); }, -1, 0, {"stop"}},
        {"previous", [this] { queue.PreviousTrack(); }, 0, 4, {"open a.mp3", "now 1/4"}},
        {"next", [this] { queue.NextTrack(); }, 2, 4, {"open c.mp3", "now 3/4"}}};
    for (const HeldCase& c : cases) {
        SCOPED_TRACE(c.name);
        SStringArray list = Paths({"a.mp3", "b.mp3", "c.mp3", "d.mp3"});
        queue.SetPlayQueue(&list);
        queue.NextTrack();
        Take();
        host.heldOn = "c.mp3";
        host.held = c.command;
        queue.NextTrack(); // opens c.mp3, during which the command runs
        EXPECT_EQ(queue.GetIndex(), c.index);
        EXPECT_EQ(queue.GetCount(), c.count);
        EXPECT_EQ(Take(), c.events);
        EXPECT_TRUE(host.skipped.empty()) << "the outer open is no skip";
        queue.StopPlaying();
    }
}

TEST_F(PlayQueueTest, ANewQueueReplacesTheOldWithoutStoppingButAnEmptyOneStops) {
    SStringArray first = Paths({"a.mp3"});
    SStringArray second = Paths({"b.mp3", "c.mp3"});
    queue.SetPlayQueue(&first);
    Take();
    ASSERT_TRUE(queue.SetPlayQueue(&second));
    ASSERT_TRUE(queue.PlaySelectedTracks(first));
    EXPECT_EQ(Take(), (Events{"open b.mp3", "now 1/2", "open a.mp3", "now 1/1"}));
    // A new queue that never opens ends as a stop.
    Fail("b.mp3");
    Fail("c.mp3");
    EXPECT_FALSE(queue.SetPlayQueue(&second));
    EXPECT_EQ(Take(), (Events{"skip b.mp3", "skip c.mp3", "stop"}));
    queue.SetPlayQueue(&first);
    Take();
    SStringArray none;
    EXPECT_FALSE(queue.SetPlayQueue(&none));
    EXPECT_EQ(Take(), (Events{"stop"}));
    EXPECT_EQ(queue.GetIndex(), -1);
}

TEST_F(PlayQueueTest, ATrackThatFailsWhilePlayingIsPassedOver) {
    SStringArray list = Paths({"a.mp3", "b.mp3", "c.mp3"});
    queue.SetRepeat(true);
    queue.SetShutdown(true);
    queue.SetPlayQueue(&list);
    Take();
    queue.OnTrackFailed();
    EXPECT_EQ(queue.GetIndex(), 1);
    EXPECT_EQ(host.skipped, (Events{"a.mp3"}));
    queue.NextTrack();
    Take();
    // On the last entry it ends the queue, as a file that does not open
    // does, even with repeat on; the shutdown follows.
    queue.OnTrackFailed();
    EXPECT_EQ(Take(), (Events{"stop", "shutdown"}));
    EXPECT_EQ(queue.GetCount(), 0);
    queue.OnTrackFailed(); // nothing plays: nothing happens
    EXPECT_EQ(Take(), Events{});
}

} // namespace
