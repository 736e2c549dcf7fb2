// melkora-cli demo: the collection that `make run` opens. The job runs once
// (it encodes about twenty files), and each check reads what it made
// through the program's own readers.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "controls/gst/gst_encode.h"
#include "foundation/file.h"
#include "foundation/image.h"
#include "library/metadata.h"
#include "library/playlist.h"
#include "library/statistics.h"
#include "pages/description.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

struct DemoRun {
    int status = -1;
    std::string out;
    std::string err;
};

// Runs melkora-cli with arguments already quoted for the shell.
DemoRun RunDemoCli(const TempDir& scratch, const std::string& arguments) {
    // Under AddressSanitizer the job's leak check needs whole stacks to
    // match the suppressions of GStreamer's and fontconfig's globals.
    const char* asan = getenv("ASAN_OPTIONS");
    std::string options = std::string(asan != nullptr ? asan : "") + ":fast_unwind_on_malloc=0";
    std::string command = "ASAN_OPTIONS='" + options + "' '" + MELKORA_CLI_PATH + "' " + arguments +
                          " >'" + (scratch / "out") + "' 2>'" + (scratch / "err") + "'";
    int result = std::system(command.c_str());
    DemoRun run;
    run.status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    run.out = TempDir::Read(scratch / "out");
    run.err = TempDir::Read(scratch / "err");
    return run;
}

std::string Quoted(const std::string& text) {
    return "'" + text + "'";
}

bool IsSong(const fs::path& path) {
    std::string extension = path.extension().string();
    return extension == ".ogg" || extension == ".mp3" || extension == ".flac" ||
           extension == ".wav";
}

// The collection of the one run, shared by the checks below.
struct Demo {
    std::unique_ptr<TempDir> dir;
    std::string root;
};
Demo demo;

std::vector<fs::path> Files(bool (*wanted)(const fs::path&)) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(demo.root)) {
        if (entry.is_regular_file() && wanted(entry.path())) {
            found.push_back(entry.path());
        }
    }
    return found;
}

void EveryFolderHasItsCoverAndEveryArtistItsTexts() {
    int genres = 0;
    int artists = 0;
    int albums = 0;
    for (auto entry = fs::recursive_directory_iterator(demo.root);
         entry != fs::recursive_directory_iterator(); ++entry) {
        if (!entry->is_directory() || entry->path().filename() == "Playlists") {
            continue;
        }
        fs::path folder = entry->path();
        EXPECT_TRUE(fs::is_regular_file(folder.string() + ".png")) << folder;
        int level = entry.depth() + 1; // 1 genres, 2 artists, 3 albums
        if (level == 1 || level == 2) {
            (level == 1 ? genres : artists)++;
            EXPECT_TRUE(fs::is_regular_file(folder.string() + ".txt")) << folder;
        }
        if (level == 2) {
            EXPECT_TRUE(fs::is_regular_file(folder.string() + ".ini")) << folder;
        }
        if (level == 3) {
            ++albums;
            bool hasMedia = false;
            for (const auto& file : fs::directory_iterator(folder)) {
                hasMedia = hasMedia || IsSong(file.path()) || file.path().extension() == ".mkv";
            }
            EXPECT_TRUE(hasMedia) << folder;
        }
        EXPECT_LE(level, 3) << folder;
    }
    EXPECT_GE(genres, 3);
    EXPECT_GE(artists, 2 * genres);
    EXPECT_GE(albums, artists);
}

void CoversDecodeAt150SquareAndEachIsItsOwn() {
    std::vector<fs::path> covers =
        Files([](const fs::path& path) { return path.extension() == ".png"; });
    ASSERT_GE(covers.size(), 15u);
    std::set<std::string> contents;
    for (const fs::path& cover : covers) {
        SFileMem bytes;
        SImage picture;
        ASSERT_TRUE(bytes.LoadFile(cover.c_str())) << cover;
        EXPECT_TRUE(picture.Load(&bytes)) << cover;
        EXPECT_EQ(picture.GetWidth(), COVER_SIDE) << cover;
        EXPECT_EQ(picture.GetHeight(), COVER_SIDE) << cover;
        contents.insert(TempDir::Read(cover.string()));
    }
    EXPECT_EQ(contents.size(), covers.size()) << "two covers are the same picture";
    // The program finds them as its own covers.
    PCovers finder;
    finder.SetRoot((demo.root + "/").c_str());
    EXPECT_EQ(
        std::string(
            finder.FindCover((demo.root + "/Jazz/Odile Marsh/Velvet Hours/").c_str()).c_str()),
        demo.root + "/Jazz/Odile Marsh/Velvet Hours.png");
}

// Descriptions: lines joined by CR LF with none after the last; their marks
// turn into the page's links to the collection's own folders.
void DescriptionsUseTheMarksAndLinkTheCollectionsFolders() {
    std::vector<fs::path> texts = Files([](const fs::path& path) {
        return path.extension() == ".txt" && fs::is_directory(path.parent_path() / path.stem());
    });
    ASSERT_GE(texts.size(), 9u);
    bool hasHeading = false;
    bool hasNestedBullet = false;
    for (const fs::path& text : texts) {
        std::string bytes = TempDir::Read(text.string());
        ASSERT_FALSE(bytes.empty()) << text;
        EXPECT_NE(bytes.back(), '\n') << text;
        for (size_t i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == '\n') {
                EXPECT_TRUE(i > 0 && bytes[i - 1] == '\r') << text << " has a bare line feed";
            }
        }
        hasHeading = hasHeading || bytes.find("{") != std::string::npos;
        hasNestedBullet = hasNestedBullet || bytes.find("\r\n\t.") != std::string::npos;
    }
    EXPECT_TRUE(hasHeading);
    EXPECT_TRUE(hasNestedBullet);

    // Every link of every description leads to a folder of the collection.
    PKnownFolders known;
    ASSERT_TRUE(known.Load(demo.root.c_str()));
    std::string html;
    int links = 0;
    for (const fs::path& path : texts) {
        SString description;
        ASSERT_TRUE(ReadDescriptionFile(path.c_str(), description));
        std::string text = description.c_str();
        for (size_t start = 0; start <= text.size();) {
            size_t end = text.find("\r\n", start);
            end = end == std::string::npos ? text.size() : end;
            std::string line =
                ConvertDescriptionLine(SString(text.substr(start, end - start).c_str()), &known)
                    .c_str();
            for (size_t href = line.find("href=\""); href != std::string::npos;
                 href = line.find("href=\"", href + 1)) {
                size_t close = line.find(".link\"", href);
                ASSERT_NE(close, std::string::npos) << line;
                std::string folder = demo.root + "/" + line.substr(href + 6, close - href - 6);
                EXPECT_TRUE(fs::is_directory(folder)) << path << ": " << line;
                ++links;
            }
            html += line;
            start = end + 2;
        }
    }
    EXPECT_GE(links, 10);
    EXPECT_NE(html.find("<font class=txtGenre>Rock</font>"), std::string::npos) << html;
    EXPECT_NE(html.find("<font class=txtQuote>"), std::string::npos) << html;
    EXPECT_NE(html.find("<div class=txtTab><div class=txtTab>" + std::string(DESCRIPTION_BULLET)),
              std::string::npos)
        << html;
}

void ArtistsCarryASiteLinkAndTracksTheirTexts() {
    SString caption = ComposeCoverCaption((demo.root + "/Rock/The Copper Lanterns/").c_str());
    EXPECT_STREQ(caption.c_str(),
                 "The Copper Lanterns\n\n<link>example.com/copper-lanterns</link>");
    std::vector<fs::path> trackTexts = Files([](const fs::path& path) {
        return path.extension() == ".txt" && !fs::is_directory(path.parent_path() / path.stem());
    });
    ASSERT_GE(trackTexts.size(), 2u);
    for (const fs::path& text : trackTexts) {
        bool besideATrack = false;
        for (const auto& file : fs::directory_iterator(text.parent_path())) {
            besideATrack =
                besideATrack || (file.path().stem() == text.stem() && file.path() != text);
        }
        EXPECT_TRUE(besideATrack) << text;
    }
}

// The playlist: every entry ends with CR LF, names a file of the collection
// with "\" separators, and the playlist panel's store reads it.
void PlaylistNamesFilesOfTheCollection() {
    std::string bytes = TempDir::Read(demo.root + "/Playlists/Favourites.lst");
    ASSERT_GE(bytes.size(), 2u);
    EXPECT_EQ(bytes.substr(bytes.size() - 2), "\r\n");
    EXPECT_EQ(bytes.find('/'), std::string::npos);
    PPlaylistStore store;
    store.SetRoot((demo.root + "/").c_str());
    ASSERT_TRUE(store.RefreshPlaylists(false));
    ASSERT_TRUE(store.SelectPlaylist("Favourites"));
    ASSERT_TRUE(store.LoadPlaylist());
    ASSERT_GE(store.GetEntryCount(), 4);
    bool hasVideo = false;
    for (int row = 0; row < store.GetEntryCount(); ++row) {
        std::string path = store.GetEntryPath(row).c_str();
        EXPECT_TRUE(fs::is_regular_file(path)) << path;
        hasVideo = hasVideo || fs::path(path).extension() == ".mkv";
    }
    EXPECT_TRUE(hasVideo);
}

// Each song opens as the player opens it, with one sound stream of three to
// six seconds; the video has a picture and a sound of three.
void SongsAndTheVideoOpenWithTheirLengths() {
    std::vector<fs::path> songs = Files(IsSong);
    ASSERT_GE(songs.size(), 12u);
    std::set<std::string> extensions;
    for (const fs::path& song : songs) {
        SGstMediaInfo info;
        SString error;
        ASSERT_TRUE(GstProbeFile(song.c_str(), 10000, &info, &error))
            << song << ": " << error.c_str();
        EXPECT_EQ(info.audioStreams, 1) << song;
        EXPECT_EQ(info.videoStreams, 0) << song;
        EXPECT_GE(info.durationMs, 2900u) << song;
        EXPECT_LE(info.durationMs, 6200u) << song;
        extensions.insert(song.extension().string());
    }
    EXPECT_EQ(extensions.size(), 4u);
    std::vector<fs::path> videos =
        Files([](const fs::path& path) { return path.extension() == ".mkv"; });
    ASSERT_EQ(videos.size(), 1u);
    SGstMediaInfo info;
    ASSERT_TRUE(GstProbeFile(videos[0].c_str(), 10000, &info));
    EXPECT_EQ(info.videoStreams, 1);
    EXPECT_EQ(info.audioStreams, 1);
    EXPECT_NEAR(double(info.durationMs), 3000.0, 100.0);
}

// Every song and the video are of kinds the program counts and plays.
void TheProgramCountsEverySongAndTheVideo() {
    PStatsTable table = CountLibrary(demo.root.c_str());
    std::string expected = std::to_string(Files(IsSong).size()) + " songs, 1 video, 0 radio";
    EXPECT_EQ(std::string(table.FormatTotals().c_str()), expected);
}

// The program's own player plays the video to its end.
void TheProgramsPlayerPlaysTheVideo() {
    std::vector<fs::path> videos =
        Files([](const fs::path& path) { return path.extension() == ".mkv"; });
    ASSERT_EQ(videos.size(), 1u);
    std::string video = videos[0].string();
    DemoRun play = RunDemoCli(*demo.dir, "play " + Quoted(video) + " --sink fake");
    EXPECT_EQ(play.status, 0) << play.err;
    EXPECT_EQ(play.out, "open " + video + "\nend " + video + "\nstop\n");
}

// One run of the job makes the collection that every check reads; it runs
// into an empty folder that exists already, the one case of a folder that
// is there and still taken.
TEST(DemoJob, MakesACollectionTheProgramShowsAndPlays) {
    demo.dir = std::make_unique<TempDir>();
    demo.root = demo.dir->MakeFolder("collection");
    DemoRun job = RunDemoCli(*demo.dir, "demo " + Quoted(demo.root));
    ASSERT_EQ(job.status, 0) << job.err;
    EXPECT_EQ(job.out, "");
    EXPECT_EQ(job.err, "");
    const struct {
        const char* name;
        void (*check)();
    } checks[] = {
        {"EveryFolderHasItsCoverAndEveryArtistItsTexts",
         EveryFolderHasItsCoverAndEveryArtistItsTexts},
        {"CoversDecodeAt150SquareAndEachIsItsOwn", CoversDecodeAt150SquareAndEachIsItsOwn},
        {"DescriptionsUseTheMarksAndLinkTheCollectionsFolders",
         DescriptionsUseTheMarksAndLinkTheCollectionsFolders},
        {"ArtistsCarryASiteLinkAndTracksTheirTexts", ArtistsCarryASiteLinkAndTracksTheirTexts},
        {"PlaylistNamesFilesOfTheCollection", PlaylistNamesFilesOfTheCollection},
        {"SongsAndTheVideoOpenWithTheirLengths", SongsAndTheVideoOpenWithTheirLengths},
        {"TheProgramCountsEverySongAndTheVideo", TheProgramCountsEverySongAndTheVideo},
        {"TheProgramsPlayerPlaysTheVideo", TheProgramsPlayerPlaysTheVideo},
    };
    for (const auto& check : checks) {
        SCOPED_TRACE(check.name);
        check.check();
    }
    demo.dir.reset();
}

// What the job refuses, and that it leaves a refused folder as it was.
TEST(DemoJob, RefusesWhatItMustNotFill) {
    TempDir dir;
    std::string full = dir.Write("full/keep.txt", "mine");
    std::string file = dir.Write("file", "x");
    struct Case {
        std::string arguments;
        int status;
        const char* errorStart;
    };
    const Case cases[] = {
        {"demo " + Quoted(dir / "full"), 1, "melkora-cli: the folder is not empty: "},
        {"demo " + Quoted(file), 1, "melkora-cli: not a folder: "},
        {"demo", 2, "usage: melkora-cli demo DIR"},
        {"demo a b", 2, "usage: melkora-cli demo DIR"},
        {"demo --force", 2, "usage: melkora-cli demo DIR"},
        {"demo --help", 0, ""},
        // The shared cover names every job takes change nothing here.
        {"demo --images 'A;B' " + Quoted(dir / "full"), 1,
         "melkora-cli: the folder is not empty: "},
        {"demo --images", 2, "usage: melkora-cli demo DIR"},
    };
    TempDir scratch;
    for (const Case& c : cases) {
        DemoRun run = RunDemoCli(scratch, c.arguments);
        EXPECT_EQ(run.status, c.status) << c.arguments;
        EXPECT_EQ(run.err.rfind(c.errorStart, 0), 0u) << c.arguments << ": " << run.err;
        if (c.status == 1) {
            EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        }
    }
    EXPECT_EQ(TempDir::Read(full), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir / "full"), fs::directory_iterator()), 1);
    EXPECT_EQ(TempDir::Read(file), "x");
}

} // namespace
