#include "controls/gst/gst_encode.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

// One second of a 440 Hz tone at 22,050 frames a second.
std::vector<int16_t> Tone() {
    std::vector<int16_t> samples(22050);
    for (size_t i = 0; i < samples.size(); ++i) {
        samples[i] = int16_t(8000 * std::sin(2 * 3.14159265 * 440 * double(i) / 22050));
    }
    return samples;
}

size_t CountEntries(const std::string& folder) {
    return size_t(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// Every way an encoding fails gives false with a reason, and leaves the
// folder as it was: no torn file at the target, no temporary file beside it,
// an older file at the target untouched.
TEST(GstEncode, AFailureLeavesTheFolderAsItWas) {
    std::vector<int16_t> tone = Tone();
    SGstPcm pcm;
    pcm.samples = tone.data();
    pcm.frames = tone.size();
    pcm.rate = 22050;
    SGstPcm noSamples = pcm;
    noSamples.samples = nullptr;
    struct Case {
        const char* chain;
        const SGstPcm* pcm;
        int timeoutMs;
        const char* reason; // the start of the reason
    };
    const Case cases[] = {
        {"nosuchelement ! oggmux", &pcm, 5000, "the chain does not parse"},
        {"audiotestsrc num-buffers=5 ! fakesink", nullptr, 5000, "the chain has no free output"},
        {"audioconvert ! wavenc", nullptr, 5000, "the chain waits for sound"},
        {"audiotestsrc num-buffers=5 ! wavenc", &pcm, 5000, "the chain takes no sound"},
        {"audioconvert ! wavenc", &noSamples, 5000, "nothing to encode"},
        // A source that never ends is cut off at the limit.
        {"audiotestsrc is-live=true ! wavenc", nullptr, 300, "no end within the time limit"},
        // Caps that no encoder takes: the stream fails as it starts.
        {"audiotestsrc num-buffers=5 ! video/x-raw ! wavenc", nullptr, 5000, ""},
    };
    for (const Case& c : cases) {
        TempDir dir;
        std::string target = dir.Write("song.wav", "old");
        SString error;
        EXPECT_FALSE(GstEncodeFile(c.chain, target.c_str(), c.timeoutMs, c.pcm, &error)) << c.chain;
        EXPECT_EQ(std::string(error.c_str()).rfind(c.reason, 0), 0u)
            << c.chain << ": " << error.c_str();
        EXPECT_FALSE(error.IsEmpty()) << c.chain;
        EXPECT_EQ(TempDir::Read(target), "old") << c.chain;
        EXPECT_EQ(CountEntries(dir.Path()), 1u) << c.chain;
    }
    SString error;
    EXPECT_FALSE(
        GstEncodeFile("audioconvert ! wavenc", "/nonexistent-folder/x.wav", 5000, &pcm, &error));
    EXPECT_EQ(std::string(error.c_str()).rfind("cannot write beside", 0), 0u) << error.c_str();
}

// Samples handed in come out as a file of their length that the player's
// elements open, in each container the demo collection uses.
TEST(GstEncode, SamplesBecomeAFileOfTheirLength) {
    std::vector<int16_t> tone = Tone();
    SGstPcm pcm;
    pcm.samples = tone.data();
    pcm.frames = tone.size();
    pcm.rate = 22050;
    struct Case {
        const char* name;
        const char* chain;
    };
    const Case cases[] = {
        {"a.ogg", "audioconvert ! vorbisenc ! oggmux"},
        {"a.mp3", "audioconvert ! lamemp3enc ! xingmux ! id3v2mux"},
        {"a.flac", "audioconvert ! flacenc"},
        {"a.wav", "audioconvert ! wavenc"},
    };
    TempDir dir;
    for (const Case& c : cases) {
        std::string path = dir / c.name;
        SString error;
        ASSERT_TRUE(GstEncodeFile(c.chain, path.c_str(), 20000, &pcm, &error)) << error.c_str();
        SGstMediaInfo info;
        ASSERT_TRUE(GstProbeFile(path.c_str(), 10000, &info, &error))
            << c.name << ": " << error.c_str();
        EXPECT_EQ(info.audioStreams, 1) << c.name;
        EXPECT_EQ(info.videoStreams, 0) << c.name;
        // MP3 pads its last frames and the encoder's delay: up to a tenth more.
        EXPECT_NEAR(double(info.durationMs), 1000.0, 150.0) << c.name;
    }
    // Only the four files: no temporary file stayed behind.
    EXPECT_EQ(CountEntries(dir.Path()), 4u);
}

TEST(GstEncode, ProbeRefusesWhatIsNoMedia) {
    TempDir dir;
    std::string text = dir.Write("notes.ogg", std::string(4000, 'x'));
    for (const std::string& path : {text, dir / "missing.ogg", std::string()}) {
        SGstMediaInfo info;
        info.durationMs = 7;
        SString error;
        EXPECT_FALSE(GstProbeFile(path.c_str(), 5000, &info, &error)) << path;
        EXPECT_FALSE(error.IsEmpty()) << path;
        EXPECT_EQ(info.durationMs, 0u) << path;
    }
}

} // namespace
