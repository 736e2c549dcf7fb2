// Feeds arbitrary bytes to the reader of the iTunes Search API's replies (the check is in
// cover_reader_check.h).
#include "cover_reader_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return CheckCoverReader(data, size, ReadItunesAlbums);
}
