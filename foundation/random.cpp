#include "foundation/random.h"

#include <time.h>
#include <unistd.h>

#include <climits>
#include <cmath>

namespace {

SRandom& ThreadRandom() {
    thread_local SRandom random;
    return random;
}

} // namespace

int SRandom::Next() {
    // Unsigned arithmetic wraps modulo 2^32, as the generator expects.
    state = state * 214013u + 2531011u;
    return int(state >> 16 & 0x7FFF);
}

void SeedRandom(unsigned seed) {
    ThreadRandom().Seed(seed);
}

void SeedRandomFromClock() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    unsigned milliseconds =
        static_cast<unsigned>(now.tv_sec) * 1000u + static_cast<unsigned>(now.tv_nsec / 1000000);
    SeedRandom(milliseconds ^ (static_cast<unsigned>(getpid()) * 2654435761u));
}

int NextRandom() {
    return ThreadRandom().Next();
}

int GetRandom(unsigned range) {
    double value = std::round(NextRandom() / 32768.0 * range);
    if (value > INT_MAX) {
        return INT_MAX;
    }
    return int(value);
}
