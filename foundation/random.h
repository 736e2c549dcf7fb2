// Pseudo-random numbers from the same linear generator as the classic C
// runtime of the desktop this program came from, so that a seed gives the
// same sequence (and the same shuffled play order) on every system:
// state = state * 214013 + 2531011, and each draw is bits 16 to 30.
#pragma once

class SRandom {
public:
    // The largest value Next gives.
    static constexpr int RANDOM_MAX = 32767;

    explicit SRandom(unsigned seed = 1) : state(seed) {}

    void Seed(unsigned seed) { state = seed; }
    // The next value, from 0 to RANDOM_MAX.
    int Next();

private:
    unsigned state;
};

// The calling thread's own generator, as the runtime's rand keeps one per
// thread. It starts with seed 1 until SeedRandom is called on that thread.
void SeedRandom(unsigned seed);
// Seeds the calling thread's generator from the clock (milliseconds since
// boot, mixed with the process id, so that two runs started within one
// millisecond still differ). The toolkit's start calls it once.
void SeedRandomFromClock();
int NextRandom();
// NextRandom() / 32768.0 * range, rounded to the nearest integer: from 0 to
// range inclusive (range itself is rare but possible). A result that would
// pass the largest int is that largest int.
int GetRandom(unsigned range);
