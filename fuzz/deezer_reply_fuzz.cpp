// Feeds arbitrary bytes to a cover search reader: it must neither crash
// nor hang, and every candidate it gives must be a web address within the
// result limit.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <vector>

#include "library/cover_search.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 256 * 1024) {
        return 0;
    }
    const char* text = reinterpret_cast<const char*>(data);
    std::vector<PCoverCandidate> found;
    int count = ReadDeezerAlbums(text, size, &found);
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
