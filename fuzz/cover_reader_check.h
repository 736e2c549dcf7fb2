// The shared check of the cover search readers' fuzz targets: a reader fed
// arbitrary bytes must neither crash nor hang, and every candidate it gives
// must be a web address within the result limit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <strings.h>
#include <vector>

#include "library/cover_search.h"

template <class Reader> int CheckCoverReader(const uint8_t* data, size_t size, Reader read) {
    if (size > 256 * 1024) {
        return 0;
    }
    std::vector<PCoverCandidate> found;
    int count = read(reinterpret_cast<const char*>(data), size, &found);
    if (count < 0 || count > COVER_MAX_RESULTS || static_cast<size_t>(count) != found.size()) {
        abort();
    }
    for (const PCoverCandidate& candidate : found) {
        if (strncasecmp(candidate.imageUrl.c_str(), "http", 4) != 0 || candidate.width < 0 ||
            candidate.height < 0) {
            abort();
        }
    }
    return 0;
}
