#include "app/trace.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const std::chrono::steady_clock::time_point processStart = std::chrono::steady_clock::now();

} // namespace

bool IsTraceOn() {
    static const bool on = [] {
        const char* value = getenv("MELKORA_TRACE");
        return value != nullptr && strcmp(value, "1") == 0;
    }();
    return on;
}

long long TraceMilliseconds() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 processStart)
        .count();
}

void Trace(const char* event, bool withTime, const char* text) {
    if (!IsTraceOn()) {
        return;
    }
    if (withTime && text != nullptr) {
        fprintf(stderr, "%s %lld %s\n", event, TraceMilliseconds(), text);
    } else if (withTime) {
        fprintf(stderr, "%s %lld\n", event, TraceMilliseconds());
    } else if (text != nullptr) {
        fprintf(stderr, "%s %s\n", event, text);
    } else {
        fprintf(stderr, "%s\n", event);
    }
    fflush(stderr);
}
