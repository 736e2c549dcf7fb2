#include "app/cli/demo_art.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <cairo.h>
#include <pango/pangocairo.h>

#include "foundation/file.h"
#include "foundation/image.h"

namespace {

constexpr double PI = 3.14159265358979323846;

// A small deterministic generator (xorshift), so every run draws and plays
// the same collection.
class Dice {
public:
    explicit Dice(uint32_t seed) : state(seed * 2654435761u + 0x9E3779B9u) {
        if (state == 0) {
            state = 1;
        }
    }
    uint32_t Next() {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state;
    }
    // In [0, 1).
    double Unit() { return (Next() >> 8) * (1.0 / 16777216.0); }
    double Range(double low, double high) { return low + (high - low) * Unit(); }
    int Pick(int count) { return int(Next() % uint32_t(count)); }

private:
    uint32_t state;
};

struct Rgb {
    double r, g, b;
};

// hue in degrees, saturation and value 0 to 1.
Rgb FromHsv(double hue, double saturation, double value) {
    hue = std::fmod(std::fmod(hue, 360.0) + 360.0, 360.0) / 60.0;
    int sector = int(hue);
    double f = hue - sector;
    double p = value * (1 - saturation);
    double q = value * (1 - saturation * f);
    double t = value * (1 - saturation * (1 - f));
    switch (sector) {
    case 0:
        return {value, t, p};
    case 1:
        return {q, value, p};
    case 2:
        return {p, value, t};
    case 3:
        return {p, q, value};
    case 4:
        return {t, p, value};
    default:
        return {value, p, q};
    }
}

void SetColor(cairo_t* cr, const Rgb& color, double alpha) {
    cairo_set_source_rgba(cr, color.r, color.g, color.b, alpha);
}

void DrawBackground(cairo_t* cr, double side, double hue, Dice& dice) {
    double angle = dice.Range(0, 2 * PI);
    double cx = side / 2;
    double dx = std::cos(angle) * side / 2;
    double dy = std::sin(angle) * side / 2;
    cairo_pattern_t* gradient = cairo_pattern_create_linear(cx - dx, cx - dy, cx + dx, cx + dy);
    Rgb light = FromHsv(hue, 0.55, 0.92);
    Rgb dark = FromHsv(hue + 45, 0.8, 0.32);
    cairo_pattern_add_color_stop_rgb(gradient, 0, light.r, light.g, light.b);
    cairo_pattern_add_color_stop_rgb(gradient, 1, dark.r, dark.g, dark.b);
    cairo_set_source(cr, gradient);
    cairo_paint(cr);
    cairo_pattern_destroy(gradient);
}

void DrawShapes(cairo_t* cr, double s, int style, double hue, Dice& dice) {
    Rgb accent = FromHsv(hue + 180, 0.6, 0.95);
    Rgb deep = FromHsv(hue + 20, 0.9, 0.2);
    switch (style) {
    case COVER_RINGS: {
        double cx = dice.Range(0.2, 0.8) * s;
        double cy = dice.Range(0.15, 0.6) * s;
        for (int ring = 8; ring >= 1; --ring) {
            cairo_arc(cr, cx, cy, ring * s * 0.07, 0, 2 * PI);
            SetColor(cr, ring % 2 ? accent : Rgb{1, 1, 1}, 0.18 + 0.05 * (8 - ring));
            cairo_set_line_width(cr, s * 0.025);
            cairo_stroke(cr);
        }
        break;
    }
    case COVER_STRIPES: {
        cairo_save(cr);
        cairo_translate(cr, s / 2, s / 2);
        cairo_rotate(cr, dice.Range(-PI / 3, PI / 3));
        for (int band = -6; band <= 6; ++band) {
            double width = s * dice.Range(0.03, 0.09);
            cairo_rectangle(cr, band * s * 0.12, -s, width, 2 * s);
            SetColor(cr, band % 3 == 0 ? accent : Rgb{1, 1, 1}, 0.35);
            cairo_fill(cr);
        }
        cairo_restore(cr);
        break;
    }
    case COVER_WAVES: {
        double phase = dice.Range(0, 2 * PI);
        double cycles = dice.Range(1.5, 3.5);
        for (int line = 0; line < 9; ++line) {
            double base = s * (0.08 + line * 0.085);
            for (int x = 0; x <= int(s); x += 2) {
                double y = base + std::sin(phase + line * 0.5 + x * cycles * 2 * PI / s) * s * 0.04;
                x == 0 ? cairo_move_to(cr, x, y) : cairo_line_to(cr, x, y);
            }
            SetColor(cr, line % 2 ? accent : Rgb{1, 1, 1}, 0.55);
            cairo_set_line_width(cr, s * 0.018);
            cairo_stroke(cr);
        }
        break;
    }
    case COVER_DOTS:
        for (int dot = 0; dot < 28; ++dot) {
            cairo_arc(cr, dice.Unit() * s, dice.Unit() * s, s * dice.Range(0.02, 0.12), 0, 2 * PI);
            SetColor(cr, FromHsv(hue + dice.Range(-60, 60) + 180, 0.5, 1.0), dice.Range(0.25, 0.6));
            cairo_fill(cr);
        }
        break;
    case COVER_MOUNTAINS: {
        cairo_arc(cr, dice.Range(0.25, 0.75) * s, s * 0.3, s * 0.13, 0, 2 * PI);
        cairo_set_source_rgba(cr, 1.0, 0.9, 0.55, 0.9);
        cairo_fill(cr);
        for (int ridge = 0; ridge < 3; ++ridge) {
            double base = s * (0.55 + ridge * 0.12);
            cairo_move_to(cr, 0, s);
            for (int x = 0; x <= int(s); x += int(s / 10)) {
                cairo_line_to(cr, x, base - dice.Range(0, s * 0.18));
            }
            cairo_line_to(cr, s, s);
            cairo_close_path(cr);
            SetColor(cr, FromHsv(hue + 200, 0.5, 0.5 - ridge * 0.14), 0.85);
            cairo_fill(cr);
        }
        break;
    }
    case COVER_SUNBURST: {
        double cx = dice.Pick(2) ? 0 : s;
        double cy = dice.Pick(2) ? 0 : s * 0.3;
        int rays = 10 + dice.Pick(8);
        for (int ray = 0; ray < rays; ray += 2) {
            double a = ray * 2 * PI / rays;
            double b = (ray + 1) * 2 * PI / rays;
            cairo_move_to(cr, cx, cy);
            cairo_line_to(cr, cx + std::cos(a) * s * 2, cy + std::sin(a) * s * 2);
            cairo_line_to(cr, cx + std::cos(b) * s * 2, cy + std::sin(b) * s * 2);
            cairo_close_path(cr);
            SetColor(cr, accent, 0.3);
            cairo_fill(cr);
        }
        break;
    }
    case COVER_GRID: {
        cairo_save(cr);
        cairo_translate(cr, s / 2, s / 2);
        cairo_rotate(cr, dice.Range(0.1, 0.6));
        for (int row = -3; row < 3; ++row) {
            for (int column = -3; column < 3; ++column) {
                cairo_rectangle(cr, column * s * 0.2 + s * 0.02, row * s * 0.2 + s * 0.02, s * 0.16,
                                s * 0.16);
                SetColor(cr, dice.Pick(3) == 0 ? accent : Rgb{1, 1, 1}, dice.Range(0.1, 0.5));
                cairo_fill(cr);
            }
        }
        cairo_restore(cr);
        break;
    }
    case COVER_RECORD: {
        double cx = s * dice.Range(0.45, 0.6);
        double cy = s * 0.42;
        cairo_arc(cr, cx, cy, s * 0.36, 0, 2 * PI);
        cairo_set_source_rgb(cr, 0.07, 0.07, 0.08);
        cairo_fill(cr);
        for (int groove = 0; groove < 7; ++groove) {
            cairo_arc(cr, cx, cy, s * (0.17 + groove * 0.025), 0, 2 * PI);
            cairo_set_source_rgba(cr, 1, 1, 1, 0.08);
            cairo_set_line_width(cr, 1);
            cairo_stroke(cr);
        }
        cairo_arc(cr, cx, cy, s * 0.12, 0, 2 * PI);
        SetColor(cr, accent, 1);
        cairo_fill(cr);
        cairo_arc(cr, cx, cy, s * 0.015, 0, 2 * PI);
        cairo_set_source_rgb(cr, 0.07, 0.07, 0.08);
        cairo_fill(cr);
        break;
    }
    case COVER_PORTRAIT: {
        double cx = s * dice.Range(0.4, 0.6);
        cairo_arc(cr, cx, s * 0.45, s * 0.38, 0, 2 * PI);
        cairo_set_source_rgba(cr, 1, 1, 1, 0.22);
        cairo_fill(cr);
        cairo_arc(cr, cx, s * 0.36, s * 0.14, 0, 2 * PI);
        SetColor(cr, deep, 0.9);
        cairo_fill(cr);
        cairo_save(cr);
        cairo_translate(cr, cx, s * 0.8);
        cairo_scale(cr, s * 0.3, s * 0.22);
        cairo_arc(cr, 0, 0, 1, PI, 2 * PI);
        cairo_restore(cr);
        cairo_close_path(cr);
        SetColor(cr, deep, 0.9);
        cairo_fill(cr);
        break;
    }
    default:
        break;
    }
}

// The large initial of a genre's cover.
void DrawInitial(cairo_t* cr, double s, const char* title) {
    int length = title[0] == 0 ? 0 : g_utf8_next_char(title) - title;
    PangoLayout* layout = pango_cairo_create_layout(cr);
    PangoFontDescription* font = pango_font_description_from_string("Serif Bold");
    pango_font_description_set_absolute_size(font, s * 0.7 * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    pango_layout_set_text(layout, title, length);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    cairo_move_to(cr, (s - width) / 2, (s * 0.8 - height) / 2);
    cairo_set_source_rgba(cr, 1, 1, 1, 0.35);
    pango_cairo_show_layout(cr, layout);
    pango_font_description_free(font);
    g_object_unref(layout);
}

// The title in white on a dark band at the bottom, wrapped to the width.
void DrawTitle(cairo_t* cr, double s, const char* title) {
    PangoLayout* layout = pango_cairo_create_layout(cr);
    PangoFontDescription* font = pango_font_description_from_string("Sans Bold");
    pango_font_description_set_absolute_size(font, s * 0.095 * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    pango_layout_set_width(layout, int((s - s * 0.12) * PANGO_SCALE));
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout, title, -1);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    double top = s - height - s * 0.08;
    cairo_rectangle(cr, 0, top - s * 0.03, s, s - top + s * 0.03);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.45);
    cairo_fill(cr);
    cairo_move_to(cr, s * 0.06 + 1, top + 1);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.6);
    pango_cairo_show_layout(cr, layout);
    cairo_move_to(cr, s * 0.06, top);
    cairo_set_source_rgb(cr, 1, 1, 1);
    pango_cairo_show_layout(cr, layout);
    pango_font_description_free(font);
    g_object_unref(layout);
}

} // namespace

bool WriteDemoCover(const char* path, const char* title, int style, double hue, uint32_t seed,
                    int side) {
    if (path == nullptr || title == nullptr || side < 16 || side > 2000) {
        return false;
    }
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, side, side);
    cairo_t* cr = cairo_create(surface);
    Dice dice(seed);
    DrawBackground(cr, side, hue, dice);
    if (style == COVER_LETTER) {
        DrawInitial(cr, side, title);
    } else {
        DrawShapes(cr, side, style, hue, dice);
    }
    DrawTitle(cr, side, title);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    SImage picture;
    bool ok =
        cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS && picture.LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
    SFileMem bytes;
    return ok && picture.Save(&bytes, IMAGE_PNG) && bytes.SaveFile(path);
}

// Tunes.

namespace {

constexpr int MAJOR[7] = {0, 2, 4, 5, 7, 9, 11};
constexpr int MINOR[7] = {0, 2, 3, 5, 7, 8, 10};
// The four chords of the loop, as scale degrees of their roots.
constexpr int MAJOR_LOOP[4] = {0, 4, 5, 3};
constexpr int MINOR_LOOP[4] = {0, 5, 2, 6};
// Rhythms of one bar of melody, in eighths; each sums to 8.
constexpr int RHYTHMS[][7] = {{2, 2, 2, 2},       {1, 1, 2, 1, 1, 2}, {3, 1, 2, 2},   {2, 1, 1, 4},
                              {1, 1, 1, 1, 2, 2}, {4, 2, 2},          {2, 2, 1, 1, 2}};
constexpr int RHYTHM_COUNT = int(sizeof(RHYTHMS) / sizeof(RHYTHMS[0]));

double Frequency(double note) {
    return 440.0 * std::pow(2.0, (note - 69.0) / 12.0);
}

// A note of a scale degree (any integer) above root.
int NoteOf(int root, bool minor, int degree) {
    int octave = degree >= 0 ? degree / 7 : -((-degree + 6) / 7);
    int step = degree - octave * 7;
    return root + 12 * octave + (minor ? MINOR : MAJOR)[step];
}

class Mixer {
public:
    Mixer(size_t frames, uint32_t seed) : buffer(frames, 0.0f), noise(seed ^ 0x5EED) {}

    // One melodic note at start seconds lasting length seconds.
    void Note(int instrument, double start, double length, double note, double level) {
        double f = Frequency(note);
        bool sustained = instrument == INSTRUMENT_SQUARE || instrument == INSTRUMENT_SAW ||
                         instrument == INSTRUMENT_ORGAN || instrument == INSTRUMENT_FLUTE;
        double tail = sustained ? 0.08 : 1.5;
        Span(start, length + tail, [&](double t) {
            double w = 2 * PI * f * t;
            double value = 0;
            double envelope = std::min(1.0, t / 0.006);
            switch (instrument) {
            case INSTRUMENT_SQUARE:
                for (int n = 1; n <= 7; n += 2) {
                    value += std::sin(n * w) / n;
                }
                value = std::tanh(1.6 * value) * 0.8;
                envelope *= 0.6 + 0.4 * std::exp(-t / 0.25);
                break;
            case INSTRUMENT_SAW:
                for (int n = 1; n <= 8; ++n) {
                    value += std::sin(n * w) / n * (n % 2 ? 1 : -1);
                }
                value *= 0.55;
                envelope *= 0.55 + 0.45 * std::exp(-t / 0.3);
                break;
            case INSTRUMENT_ORGAN: {
                double v = w + 0.02 * std::sin(2 * PI * 6 * t) * f / 6;
                value = std::sin(v) + 0.5 * std::sin(2 * v) + 0.3 * std::sin(3 * v) +
                        0.15 * std::sin(4 * v);
                value *= 0.5;
                envelope = std::min(1.0, t / 0.03);
                break;
            }
            case INSTRUMENT_EPIANO:
                value = std::sin(w + (2.5 * std::exp(-t / 0.25) + 0.3) * std::sin(w));
                envelope *= std::exp(-t / 1.1);
                break;
            case INSTRUMENT_PLUCK:
                for (int n = 1; n <= 6; ++n) {
                    value += std::sin(n * w) * std::exp(-t * (2.0 + n * 1.8)) / n;
                }
                break;
            case INSTRUMENT_BELL:
                value = std::sin(w + 1.8 * std::exp(-t / 1.5) * std::sin(3.5 * w));
                envelope *= std::exp(-t / 1.2);
                break;
            default: { // INSTRUMENT_FLUTE
                double vibrato = t > 0.15 ? 0.004 * std::sin(2 * PI * 5 * t) * f / 5 : 0;
                double v = w + 2 * PI * vibrato;
                value = std::sin(v) + 0.15 * std::sin(2 * v) + 0.06 * Noise();
                envelope = std::min(1.0, t / 0.06);
                break;
            }
            }
            if (sustained && t > length) {
                envelope *= std::max(0.0, 1.0 - (t - length) / tail);
            } else if (!sustained && t > length) {
                envelope *= std::exp(-(t - length) / 0.15);
            }
            return value * envelope * level;
        });
    }

    // A bass note: a soft triangle with a short pluck.
    void Bass(double start, double length, int note, double level) {
        double f = Frequency(note);
        Span(start, length + 0.05, [&](double t) {
            double phase = std::fmod(f * t, 1.0);
            double triangle = 4 * std::abs(phase - 0.5) - 1;
            double envelope = std::min(1.0, t / 0.01) * (0.5 + 0.5 * std::exp(-t / 0.2));
            if (t > length) {
                envelope *= std::max(0.0, 1 - (t - length) / 0.05);
            }
            return (0.7 * triangle + 0.5 * std::sin(2 * PI * f * t)) * envelope * level;
        });
    }

    void Kick(double start, double level) {
        Span(start, 0.35, [&](double t) {
            double phase = 2 * PI * (45 * t + (110 - 45) * 0.04 * (1 - std::exp(-t / 0.04)));
            return std::sin(phase) * std::exp(-t / 0.12) * level;
        });
    }

    // Noise through a first difference (brighter) or as it is.
    void Hit(double start, double decay, double level, bool bright, double toneHz = 0) {
        double last = 0;
        Span(start, decay * 6, [&](double t) {
            double n = Noise();
            double value = bright ? n - last : n;
            last = n;
            if (toneHz > 0) {
                value = 0.6 * value + 0.6 * std::sin(2 * PI * toneHz * t) * std::exp(-t / 0.04);
            }
            return value * std::exp(-t / decay) * level;
        });
    }

    std::vector<int16_t> Finish() {
        float peak = 0;
        for (float sample : buffer) {
            peak = std::max(peak, std::abs(sample));
        }
        double gain = peak > 0 ? 0.85 / peak : 0;
        size_t fadeIn = DEMO_SAMPLE_RATE / 100;
        size_t fadeOut = std::min(buffer.size(), size_t(DEMO_SAMPLE_RATE * 4 / 10));
        std::vector<int16_t> samples(buffer.size());
        for (size_t i = 0; i < buffer.size(); ++i) {
            double value = buffer[i] * gain;
            if (i < fadeIn) {
                value *= double(i) / fadeIn;
            }
            size_t left = buffer.size() - i;
            if (left < fadeOut) {
                value *= double(left) / fadeOut;
            }
            samples[i] = int16_t(std::lround(std::clamp(value, -1.0, 1.0) * 32767));
        }
        return samples;
    }

private:
    template <typename Voice> void Span(double start, double length, Voice voice) {
        size_t first = size_t(std::max(0.0, start) * DEMO_SAMPLE_RATE);
        size_t end = std::min(buffer.size(), size_t((start + length) * DEMO_SAMPLE_RATE));
        for (size_t i = first; i < end; ++i) {
            buffer[i] += float(voice(double(i) / DEMO_SAMPLE_RATE - start));
        }
    }
    double Noise() { return noise.Unit() * 2 - 1; }

    std::vector<float> buffer;
    Dice noise;
};

} // namespace

std::vector<int16_t> RenderDemoTune(const PDemoTune& tune) {
    double seconds = std::clamp(tune.seconds, 1.0, 30.0);
    Mixer mixer(size_t(seconds * DEMO_SAMPLE_RATE), tune.seed);
    Dice dice(tune.seed);
    double beat = 60.0 / std::clamp(tune.beatsPerMinute, 40, 240);
    double eighth = beat / 2;
    const int* loop = tune.minor ? MINOR_LOOP : MAJOR_LOOP;
    int bars = int(std::ceil(seconds / (4 * beat)));
    bool swing = tune.backing == BACKING_SWING;
    int degree = 7 + dice.Pick(3) * 2; // the melody starts on the root, third or fifth above
    for (int bar = 0; bar < bars; ++bar) {
        double barStart = bar * 4 * beat;
        int chord = loop[bar % 4];
        int bassRoot = NoteOf(tune.rootNote - 24, tune.minor, chord);
        // The accompaniment.
        for (int b = 0; b < 4; ++b) {
            double at = barStart + b * beat;
            switch (tune.backing) {
            case BACKING_BAND:
                mixer.Bass(at, beat * 0.85, bassRoot, 0.35);
                if (b % 2 == 0) {
                    mixer.Kick(at, 0.6);
                } else {
                    mixer.Hit(at, 0.07, 0.25, false, 190);
                }
                mixer.Hit(at, 0.015, 0.12, true);
                mixer.Hit(at + eighth, 0.015, 0.08, true);
                break;
            case BACKING_SWING: {
                constexpr int WALK[4] = {0, 2, 4, 5};
                mixer.Bass(at, beat * 0.9, NoteOf(tune.rootNote - 24, tune.minor, chord + WALK[b]),
                           0.4);
                mixer.Hit(at, 0.09, 0.06, true);
                if (b % 2 == 1) {
                    mixer.Hit(at, 0.12, 0.09, false);
                }
                break;
            }
            default:
                if (b % 2 == 0) {
                    mixer.Bass(at, beat * 1.9, bassRoot + 12, 0.25);
                }
                break;
            }
        }
        if (tune.backing == BACKING_CHAMBER || tune.backing == BACKING_SWING) {
            for (int voice = 0; voice < 3; ++voice) {
                int note = NoteOf(tune.rootNote - 12, tune.minor, chord + voice * 2);
                mixer.Note(INSTRUMENT_ORGAN, barStart, 4 * beat * 0.95, note, 0.07);
            }
        }
        // The melody: a walk over the scale that leans to the chord's tones.
        const int* rhythm = RHYTHMS[dice.Pick(RHYTHM_COUNT)];
        int position = 0;
        for (int i = 0; i < 7 && rhythm[i] > 0; ++i) {
            double start = barStart + position * eighth;
            if (swing && position % 2 == 1) {
                start += eighth / 3;
            }
            bool last = bar == bars - 1 && (position + rhythm[i] >= 8);
            if (last) {
                degree = 7;
            } else if (i == 0) {
                degree = 7 + chord + (dice.Pick(2) ? 2 : 0); // a chord tone on the downbeat
            } else {
                constexpr int STEPS[] = {-2, -1, -1, 1, 1, 2, 0, 3};
                degree = std::clamp(degree + STEPS[dice.Pick(8)], 4, 13);
            }
            double length = rhythm[i] * eighth * 0.92;
            mixer.Note(tune.instrument, start, length, NoteOf(tune.rootNote, tune.minor, degree),
                       0.35);
            position += rhythm[i];
        }
    }
    return mixer.Finish();
}
