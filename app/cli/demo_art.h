// The pictures and sounds of the demo collection, made by code: covers
// drawn with Cairo and Pango, and short tunes synthesised sample by sample.
#pragma once

#include <cstdint>
#include <vector>

// Sample rate of every tune, in frames per second (one channel).
constexpr int DEMO_SAMPLE_RATE = 44100;

// The look of a cover: what is drawn under the title.
enum PDemoCoverStyle {
    COVER_RINGS = 0, // concentric rings off centre
    COVER_STRIPES,   // diagonal bands
    COVER_WAVES,     // stacked sine lines
    COVER_DOTS,      // scattered discs
    COVER_MOUNTAINS, // layered ridges under a sun
    COVER_SUNBURST,  // rays from a corner
    COVER_GRID,      // tilted squares
    COVER_RECORD,    // a record with its label
    COVER_PORTRAIT,  // a head and shoulders (artists)
    COVER_LETTER,    // one large initial (genres)
    COVER_STYLE_COUNT
};

// Draws a cover of side by side pixels: a two-colour gradient from hue
// (0 to 360 degrees), the style's shapes, and title over them. seed varies
// the shapes. Writes the PNG atomically; false when it cannot be written.
bool WriteDemoCover(const char* path, const char* title, int style, double hue, uint32_t seed,
                    int side = 150);

// The instrument of a tune's melody.
enum PDemoInstrument {
    INSTRUMENT_SQUARE = 0, // hollow, driven lead
    INSTRUMENT_SAW,        // bright lead
    INSTRUMENT_ORGAN,      // sustained drawbars with vibrato
    INSTRUMENT_EPIANO,     // electric piano (FM)
    INSTRUMENT_PLUCK,      // plucked string
    INSTRUMENT_BELL,       // bell (FM, long ring)
    INSTRUMENT_FLUTE,      // breathy sine with vibrato
};

// The accompaniment under the melody.
enum PDemoBacking {
    BACKING_BAND = 0, // bass on the beat, kick, snare and hats
    BACKING_SWING,    // walking bass and brushes, swung eighths
    BACKING_CHAMBER,  // held chords and a slow bass, no drums
};

// One tune: a melody over a four-chord loop.
struct PDemoTune {
    int instrument = INSTRUMENT_SQUARE;
    int backing = BACKING_BAND;
    int rootNote = 60;  // MIDI note of the key's root
    bool minor = false; // natural minor, else major
    int beatsPerMinute = 120;
    double seconds = 4.0; // length, 1 to 30
    uint32_t seed = 1;    // varies the melody
};

// Renders a tune into mono samples at DEMO_SAMPLE_RATE, peaking a little
// below full scale, faded in and out. Deterministic for a tune.
std::vector<int16_t> RenderDemoTune(const PDemoTune& tune);
