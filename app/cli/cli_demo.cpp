#include "app/cli/cli_demo.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "app/cli/demo_art.h"
#include "controls/gst/gst_encode.h"
#include "foundation/disk.h"
#include "foundation/file.h"
#include "library/metadata.h"

namespace {

// The longest any one file may take to encode, in milliseconds; a healthy
// machine needs a small part of it.
constexpr int ENCODE_TIMEOUT_MS = 30000;

struct DemoSong {
    const char* title; // the file's name without its extension
    PDemoTune tune;
};

struct DemoAlbum {
    const char* name;
    const char* extension; // of every song of the album
    int coverStyle;
    std::vector<DemoSong> songs;
};

struct DemoArtist {
    const char* name;
    const char* site;
    std::vector<const char*> description; // lines, "\t" for indentation
    std::vector<DemoAlbum> albums;
};

struct DemoGenre {
    const char* name;
    double hue; // of its covers, in degrees
    std::vector<const char*> description;
    std::vector<DemoArtist> artists;
};

PDemoTune Tune(int instrument, int backing, int root, bool minor, int bpm, double seconds,
               uint32_t seed) {
    PDemoTune tune;
    tune.instrument = instrument;
    tune.backing = backing;
    tune.rootNote = root;
    tune.minor = minor;
    tune.beatsPerMinute = bpm;
    tune.seconds = seconds;
    tune.seed = seed;
    return tune;
}

// The collection. Every song has a sound of its own: its instrument, key,
// mode, tempo and melody differ from every other's.
const std::vector<DemoGenre>& Genres() {
    static const std::vector<DemoGenre> genres = {
        {"Rock",
         8,
         {"{About}", "#genre Rock# as this collection plays it: square waves, a kick and a snare.",
          "The bands:", ". #name The Copper Lanterns#", ". #name Mira Vale#", "",
          "Start with #title Night Drive# and turn it up."},
         {{"The Copper Lanterns",
           "http://www.example.com/copper-lanterns",
           {"{Biography}",
            "#name The Copper Lanterns# are a #genre Rock# band from a harbour town that is on no "
            "map.",
            "#quote No song of ours is longer than six seconds.#", "{Albums}",
            ". #title Night Drive#, their first", ". #title Static Bloom#",
            "\t. recorded in one afternoon", "\t. mixed in another",
            ". #title Live at the Harbor Hall#, on video", "{See also}",
            "On tour with #name Mira Vale@Rock/Mira Vale#."},
           {{"Night Drive",
             "ogg",
             COVER_RINGS,
             {{"01 Headlights", Tune(INSTRUMENT_SQUARE, BACKING_BAND, 64, true, 132, 5.0, 11)},
              {"02 Neon Rain", Tune(INSTRUMENT_SAW, BACKING_BAND, 62, false, 120, 4.5, 12)}}},
            {"Static Bloom",
             "mp3",
             COVER_STRIPES,
             {{"01 Static Bloom", Tune(INSTRUMENT_SAW, BACKING_BAND, 57, true, 144, 4.0, 13)},
              {"02 Long Way Down",
               Tune(INSTRUMENT_SQUARE, BACKING_BAND, 59, false, 104, 5.5, 14)}}},
            {"Live at the Harbor Hall", "", COVER_SUNBURST, {}}}},
          {"Mira Vale",
           "http://example.org/mira-vale",
           {"{Biography}", "#name Mira Vale# writes small songs about large skies.",
            "Her first album is #title Paper Satellites#.", "{Instruments}", ". lead synthesiser",
            ". drum machine", "\t. with one snare sound only"},
           {{"Paper Satellites",
             "ogg",
             COVER_DOTS,
             {{"01 Paper Satellites", Tune(INSTRUMENT_BELL, BACKING_BAND, 67, false, 112, 5.0, 21)},
              {"02 Orbit", Tune(INSTRUMENT_SQUARE, BACKING_BAND, 69, true, 126, 4.0, 22)},
              {"03 Landing Lights",
               Tune(INSTRUMENT_FLUTE, BACKING_BAND, 65, false, 96, 6.0, 23)}}}}}}},
        {"Jazz",
         215,
         {"{About}", "Late-night #genre Jazz#: walking bass, brushes and swung eighths.",
          ". #name Blue Harbor Trio#", ". #name Odile Marsh#"},
         {{"Blue Harbor Trio",
           "http://www.example.net/blue-harbor-trio",
           {"{Biography}",
            "#name Blue Harbor Trio# play every Thursday at a club that never closes.",
            "#quote Swing is a matter of a third of an eighth.#", "{Albums}", ". #title Late Tram#",
            ". #title Smoke Rings#", "\t. their favourite, says the drummer"},
           {{"Late Tram",
             "flac",
             COVER_RECORD,
             {{"01 Late Tram", Tune(INSTRUMENT_EPIANO, BACKING_SWING, 60, false, 138, 5.0, 31)},
              {"02 Rainy Platform",
               Tune(INSTRUMENT_EPIANO, BACKING_SWING, 58, true, 100, 5.5, 32)}}},
            {"Smoke Rings",
             "mp3",
             COVER_WAVES,
             {{"01 Smoke Rings", Tune(INSTRUMENT_ORGAN, BACKING_SWING, 63, false, 150, 4.0, 33)},
              {"02 Half Past Blue",
               Tune(INSTRUMENT_BELL, BACKING_SWING, 61, true, 92, 5.0, 34)}}}}},
          {"Odile Marsh",
           "http://example.com/odile-marsh",
           {"{Biography}", "#name Odile Marsh# sings without words and plays the flute.",
            "Often heard with the #name Blue Harbor Trio#."},
           {{"Velvet Hours",
             "ogg",
             COVER_MOUNTAINS,
             {{"01 Velvet Hours", Tune(INSTRUMENT_FLUTE, BACKING_SWING, 70, true, 84, 6.0, 41)},
              {"02 Quiet Avenue",
               Tune(INSTRUMENT_PLUCK, BACKING_SWING, 66, false, 116, 4.5, 42)}}}}}}},
        {"Classical",
         40,
         {"{About}", "Short #genre Classical# pieces for plucked strings, organ and bells.",
          ". #name Aster Quartet#", ". #name Lukas Brenner#"},
         {{"Aster Quartet",
           "http://www.example.org/aster-quartet",
           {"{Biography}",
            "The #name Aster Quartet# play études in the morning and suites at night.", "{Albums}",
            ". #title Morning Etudes#", ". #title Winter Suite#", "\t. three movements",
            "\t\t. the second is the shortest"},
           {{"Morning Etudes",
             "wav",
             COVER_GRID,
             {{"01 Allegretto", Tune(INSTRUMENT_PLUCK, BACKING_CHAMBER, 72, false, 132, 4.0, 51)},
              {"02 Adagio", Tune(INSTRUMENT_ORGAN, BACKING_CHAMBER, 55, true, 66, 6.0, 52)}}},
            {"Winter Suite",
             "ogg",
             COVER_MOUNTAINS,
             {{"01 Prelude", Tune(INSTRUMENT_BELL, BACKING_CHAMBER, 74, true, 90, 5.0, 53)},
              {"02 Snowfall", Tune(INSTRUMENT_FLUTE, BACKING_CHAMBER, 76, false, 76, 3.5, 54)},
              {"03 Finale", Tune(INSTRUMENT_PLUCK, BACKING_CHAMBER, 67, false, 160, 4.5, 55)}}}}},
          {"Lukas Brenner",
           "http://www.example.com/lukas-brenner",
           {"{Biography}", "#name Lukas Brenner# composes sonatas for rainy days.",
            "#quote Four chords are enough for a sonata, if they are the right four.#"},
           {{"Sonatas for a Rainy Day",
             "mp3",
             COVER_WAVES,
             {{"01 Sonata in G", Tune(INSTRUMENT_PLUCK, BACKING_CHAMBER, 67, false, 108, 5.0, 61)},
              {"02 Rondo", Tune(INSTRUMENT_ORGAN, BACKING_CHAMBER, 62, true, 120, 4.0, 62)}}}}}}},
    };
    return genres;
}

// The encoding chain of each song extension.
const char* ChainFor(const std::string& extension) {
    if (extension == "ogg") {
        return "audioconvert ! vorbisenc quality=0.4 ! oggmux";
    }
    if (extension == "mp3") {
        return "audioconvert ! lamemp3enc ! xingmux ! id3v2mux";
    }
    if (extension == "flac") {
        return "audioconvert ! flacenc";
    }
    return "audioconvert ! wavenc";
}

// The video: three seconds of colour bars with a ball crossing them, and a
// tone, as Theora and Vorbis in Matroska.
constexpr const char* VIDEO_CHAIN =
    "compositor name=frame ! video/x-raw,width=320,height=240 ! videoconvert ! theoraenc "
    "! queue ! mux. "
    "videotestsrc num-buffers=75 pattern=smpte ! video/x-raw,width=320,height=240,framerate=25/1 "
    "! frame. "
    "videotestsrc num-buffers=75 pattern=ball motion=sweep background-color=0x00000000 "
    "foreground-color=0xffffd040 ! video/x-raw,format=BGRA,width=320,height=240,framerate=25/1 "
    "! frame. "
    "audiotestsrc num-buffers=300 samplesperbuffer=441 freq=523.25 volume=0.3 "
    "! audio/x-raw,rate=44100,channels=1 ! audioconvert ! vorbisenc ! queue ! mux. "
    "matroskamux name=mux";
constexpr const char* VIDEO_ALBUM = "Live at the Harbor Hall";
constexpr const char* VIDEO_TITLE = "01 Opening Night";

// The texts of two tracks.
struct DemoTrackText {
    const char* track; // relative to the root
    const char* text;
};
const DemoTrackText TRACK_TEXTS[] = {
    {"Rock/Mira Vale/Paper Satellites/01 Paper Satellites",
     "Paper satellites over the roof,\r\nfolded at midnight, launched before dawn.\r\n"
     "\r\nThey never come down."},
    {"Jazz/Blue Harbor Trio/Late Tram/01 Late Tram",
     "Recorded live in one take.\r\nElectric piano over walking bass and brushes."},
};

// The entries of the playlist, relative to the root with "\" separators.
const char* const FAVOURITES[] = {
    "Rock\\Mira Vale\\Paper Satellites\\01 Paper Satellites.ogg",
    "Jazz\\Blue Harbor Trio\\Late Tram\\01 Late Tram.flac",
    "Classical\\Aster Quartet\\Winter Suite\\02 Snowfall.ogg",
    "Rock\\The Copper Lanterns\\Live at the Harbor Hall\\01 Opening Night.mkv",
    "Jazz\\Odile Marsh\\Velvet Hours\\01 Velvet Hours.ogg",
    "Classical\\Lukas Brenner\\Sonatas for a Rainy Day\\02 Rondo.mp3",
};

int Fail(const std::string& reason) {
    fprintf(stderr, "melkora-cli: %s\n", reason.c_str());
    return 1;
}

bool WriteText(const std::string& path, const std::string& text) {
    return WriteFileAtomic(path.c_str(), text.data(), int(text.size()));
}

// A description: its lines joined by CR LF, none after the last.
std::string JoinLines(const std::vector<const char*>& lines) {
    std::string text;
    for (size_t i = 0; i < lines.size(); ++i) {
        text += (i > 0 ? "\r\n" : "") + std::string(lines[i]);
    }
    return text;
}

// Makes a folder and its cover beside it.
bool MakeFolder(const std::string& parent, const char* name, int style, double hue, uint32_t seed,
                std::string& reason) {
    std::string folder = parent + name;
    if (!SDisk().CreateFolder(folder.c_str(), false)) {
        reason = "cannot make the folder " + folder;
        return false;
    }
    if (!WriteDemoCover((folder + ".png").c_str(), name, style, hue, seed)) {
        reason = "cannot write the cover " + folder + ".png";
        return false;
    }
    return true;
}

bool Encode(const std::string& path, const PDemoTune& tune, const char* chain,
            std::string& reason) {
    std::vector<int16_t> samples = RenderDemoTune(tune);
    SGstPcm pcm;
    pcm.samples = samples.data();
    pcm.frames = samples.size();
    pcm.rate = DEMO_SAMPLE_RATE;
    pcm.channels = 1;
    SString error;
    if (!GstEncodeFile(chain, path.c_str(), ENCODE_TIMEOUT_MS, &pcm, &error)) {
        reason = "cannot encode " + path + ": " + error.c_str();
        return false;
    }
    return true;
}

// The tree: folders with covers, descriptions, site links and media.
bool MakeTree(const std::string& root, std::string& reason) {
    uint32_t seed = 1;
    for (const DemoGenre& genre : Genres()) {
        if (!MakeFolder(root, genre.name, COVER_LETTER, genre.hue, seed++, reason)) {
            return false;
        }
        std::string genreFolder = root + genre.name + "/";
        if (!WriteText(root + genre.name + ".txt", JoinLines(genre.description))) {
            reason = "cannot write the description of " + std::string(genre.name);
            return false;
        }
        double hue = genre.hue;
        for (const DemoArtist& artist : genre.artists) {
            hue += 23;
            if (!MakeFolder(genreFolder, artist.name, COVER_PORTRAIT, hue, seed++, reason)) {
                return false;
            }
            std::string artistFolder = genreFolder + artist.name + "/";
            if (!WriteText(genreFolder + artist.name + ".txt", JoinLines(artist.description)) ||
                !WriteSite(artistFolder.c_str(), artist.site)) {
                reason = "cannot write the description or site of " + std::string(artist.name);
                return false;
            }
            for (const DemoAlbum& album : artist.albums) {
                hue += 31;
                if (!MakeFolder(artistFolder, album.name, album.coverStyle, hue, seed++, reason)) {
                    return false;
                }
                std::string albumFolder = artistFolder + album.name + "/";
                for (const DemoSong& song : album.songs) {
                    std::string path = albumFolder + song.title + "." + album.extension;
                    if (!Encode(path, song.tune, ChainFor(album.extension), reason)) {
                        return false;
                    }
                }
                if (strcmp(album.name, VIDEO_ALBUM) == 0) {
                    std::string path = albumFolder + VIDEO_TITLE + ".mkv";
                    SString error;
                    if (!GstEncodeFile(VIDEO_CHAIN, path.c_str(), ENCODE_TIMEOUT_MS, nullptr,
                                       &error)) {
                        reason = "cannot encode " + path + ": " + error.c_str();
                        return false;
                    }
                }
            }
        }
    }
    return true;
}

// The playlist, the track texts, and the playlists folder hidden as the
// program hides it.
bool MakeExtras(const std::string& root, std::string& reason) {
    for (const DemoTrackText& track : TRACK_TEXTS) {
        if (!WriteText(root + track.track + ".txt", track.text)) {
            reason = "cannot write the text of " + std::string(track.track);
            return false;
        }
    }
    SDisk disk;
    std::string playlists = root + "Playlists";
    if (!disk.CreateFolder(playlists.c_str(), false)) {
        reason = "cannot make the folder " + playlists;
        return false;
    }
    disk.SetAttributes(playlists.c_str(), disk.GetAttributes(playlists.c_str()) | DISK_HIDDEN);
    std::string favourites;
    for (const char* entry : FAVOURITES) {
        favourites += std::string(entry) + "\r\n";
    }
    if (!WriteText(playlists + "/Favourites.lst", favourites)) {
        reason = "cannot write the playlist";
        return false;
    }
    return true;
}

// The root as an absolute folder path ending in "/", made when missing;
// false when it exists and is no empty folder.
bool PrepareRoot(const char* argument, std::string& root, std::string& reason) {
    std::error_code error;
    std::filesystem::path path = std::filesystem::absolute(argument, error);
    if (error || argument[0] == 0) {
        reason = std::string("not a usable folder name: ") + argument;
        return false;
    }
    std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::exists(status)) {
        if (!std::filesystem::is_directory(status)) {
            reason = std::string("not a folder: ") + argument;
            return false;
        }
        if (!std::filesystem::is_empty(path, error) || error) {
            reason = std::string("the folder is not empty: ") + argument;
            return false;
        }
    } else if (!std::filesystem::create_directories(path, error) || error) {
        reason = std::string("cannot make the folder ") + argument;
        return false;
    }
    root = path.lexically_normal().string();
    if (root.empty() || root.back() != '/') {
        root += '/';
    }
    return true;
}

} // namespace

int RunDemoJob(int argc, char** argv) {
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--help") == 0 || strcmp(argv[i], "-h") == 0) {
            fputs(DEMO_USAGE, stdout);
            return 0;
        }
    }
    // The shared cover names, which every job accepts, play no part here.
    std::vector<const char*> positional;
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--images") == 0 && i + 1 < argc) {
            ++i;
        } else {
            positional.push_back(argv[i]);
        }
    }
    if (positional.size() != 1 || strncmp(positional[0], "--", 2) == 0) {
        fputs(DEMO_USAGE, stderr);
        return 2;
    }
    std::string root;
    std::string reason;
    if (!PrepareRoot(positional[0], root, reason) || !MakeTree(root, reason) ||
        !MakeExtras(root, reason)) {
        return Fail(reason);
    }
    return 0;
}
