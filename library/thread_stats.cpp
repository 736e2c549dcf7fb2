#include "library/thread_stats.h"

bool PThreadStats::StartCount(const char* folder) {
    // A run owns root and result until its end notice reaches this thread.
    if (HasThread()) {
        return false;
    }
    root = folder != nullptr ? folder : "";
    result.reset();
    return Start(false);
}

bool PThreadStats::Run() {
    result = std::make_unique<PStatsTable>(CountLibrary(root.c_str()));
    // The post hands the table over: the worker does not touch it again.
    if (!Post(POST_RESULT, 0u)) {
        result.reset();
    }
    if (!IsStopRequested()) {
        PurgeEmptyIni(root.c_str());
    }
    return false;
}

void PThreadStats::OnPost(unsigned id, SValue* /*value*/) {
    if (id != POST_RESULT || result == nullptr) {
        return;
    }
    std::unique_ptr<PStatsTable> table = std::move(result);
    if (onResult) {
        onResult(std::move(*table));
    }
}
