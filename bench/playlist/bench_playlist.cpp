// Reads and saves huge playlists through PPlaylistStore, as the panel and
// `melkora-cli playlist` do: a playlist of ENTRIES entries (paths of about
// 40 bytes, CR LF after each) and a playlist of one line of LINE bytes.
// Both are written once into ROOT/Playlists/ by this program.
//
//   bench_playlist ROOT RUNS ENTRIES LINE
//
// Output, one line per measure, each the median of RUNS runs in
// milliseconds: "load <entries> <ms>", "save <entries> <ms>",
// "line <bytes> <ms>". Exit 1 when a read gives other entries than were
// written.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "library/playlist.h"

namespace {

double Milliseconds(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool WriteBytes(const SString& path, const SString& bytes) {
    return WriteFileAtomic(path.c_str(), bytes.c_str(), bytes.GetLength());
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        fprintf(stderr, "usage: bench_playlist ROOT RUNS ENTRIES LINE\n");
        return 2;
    }
    SString root(argv[1]);
    root += "/";
    int runs = std::max(1, atoi(argv[2]));
    int entries = std::max(1, atoi(argv[3]));
    int lineBytes = std::max(1, atoi(argv[4]));
    SString folder = root + "Playlists/";
    SDisk().CreateFolder(folder.c_str(), true);

    SString big("");
    char entry[96];
    for (int i = 0; i < entries; ++i) {
        snprintf(entry, sizeof entry, "Artist %03d\\Album %02d\\%07d Song title.mp3\r\n", i % 500,
                 i % 37, i);
        big += entry;
    }
    SString line(lineBytes);
    line.Replace(' ', 'x');
    line += "\r\n";
    if (!WriteBytes(folder + "big.lst", big) || !WriteBytes(folder + "line.lst", line)) {
        fprintf(stderr, "cannot write the playlists in %s\n", folder.c_str());
        return 1;
    }

    std::vector<double> loads, saves, lines;
    for (int run = 0; run < runs; ++run) {
        PPlaylistStore store;
        store.SetRoot(root.c_str());
        store.RefreshPlaylists(false);
        auto start = std::chrono::steady_clock::now();
        bool loaded = store.SelectPlaylist("big") && store.LoadPlaylist("");
        loads.push_back(Milliseconds(start));
        if (!loaded || store.GetEntryCount() != entries) {
            fprintf(stderr, "read %d entries of %d\n", store.GetEntryCount(), entries);
            return 1;
        }
        start = std::chrono::steady_clock::now();
        if (!store.SavePlaylist("")) {
            fprintf(stderr, "cannot save the playlist\n");
            return 1;
        }
        saves.push_back(Milliseconds(start));
        start = std::chrono::steady_clock::now();
        loaded = store.SelectPlaylist("line") && store.LoadPlaylist("");
        lines.push_back(Milliseconds(start));
        if (!loaded || store.GetEntryCount() != 1 ||
            store.GetEntries().GetAt(0)->GetLength() != lineBytes) {
            fprintf(stderr, "the long line did not read back whole\n");
            return 1;
        }
    }
    printf("load %d %.1f\n", entries, Median(loads));
    printf("save %d %.1f\n", entries, Median(saves));
    printf("line %d %.1f\n", lineBytes, Median(lines));
    return 0;
}
