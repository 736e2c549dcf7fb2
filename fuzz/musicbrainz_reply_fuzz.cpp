// Feeds arbitrary bytes to the reader of MusicBrainz release searches (the check is in
// cover_reader_check.h).
#include "cover_reader_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return CheckCoverReader(
        data, size, [](const char* text, size_t length, std::vector<PCoverCandidate>* found) {
            return ReadMusicBrainzReleases(text, length, "http://127.0.0.1/caa", found);
        });
}
