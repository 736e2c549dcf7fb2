// Times PBook::BuildBook over a collection: with the pictures spread over
// every core, and on one thread, writing each Book outside the tree, and
// compares the two outputs byte for byte. Medians over the rounds.
//
//   bench_book ROOT OUT [ROUNDS]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "foundation/array.h"
#include "foundation/disk.h"
#include "foundation/file.h"
#include "pages/book.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Timing {
    double wall = 0;
    double cpu = 0; // all threads of the process
};

Timing BuildOnce(const char* root, const std::string& bookPath, int threads) {
    PBook book;
    book.SetRoot(root);
    book.threads = threads;
    Clock::time_point start = Clock::now();
    std::clock_t cpuStart = std::clock();
    if (!book.BuildBook(bookPath.c_str(), true)) {
        fprintf(stderr, "bench_book: the Book could not be written at %s\n", bookPath.c_str());
        exit(1);
    }
    Timing timing;
    timing.wall = std::chrono::duration<double>(Clock::now() - start).count();
    timing.cpu = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
    return timing;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The page and every picture of a Book, by name.
bool SameOutput(const std::string& a, const std::string& b, int& files) {
    SDisk disk;
    SStringArray left;
    SStringArray right;
    disk.Enumerate(&left, (a + "/Book/*").c_str(), ENUM_FILES);
    disk.Enumerate(&right, (b + "/Book/*").c_str(), ENUM_FILES);
    left.Add((a + "/Book.htm").c_str());
    right.Add((b + "/Book.htm").c_str());
    files = left.GetCount();
    if (left.GetCount() != right.GetCount()) {
        return false;
    }
    for (int i = 0; i < left.GetCount(); ++i) {
        SFileMem x;
        SFileMem y;
        if (!x.LoadFile(left.GetText(i).c_str()) || !y.LoadFile(right.GetText(i).c_str()) ||
            x.GetSize() != y.GetSize() || x.GetMd5() != y.GetMd5()) {
            fprintf(stderr, "bench_book: %s differs\n", left.GetText(i).c_str());
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: bench_book ROOT OUT [ROUNDS]\n");
        return 2;
    }
    const char* root = argv[1];
    std::string out = argv[2];
    int rounds = argc > 3 ? std::max(1, atoi(argv[3])) : 1;
    SDisk disk;
    disk.CreateFolder((out + "/parallel").c_str(), true);
    disk.CreateFolder((out + "/single").c_str(), true);
    SStringArray folders;
    int count = disk.Enumerate(&folders, (std::string(root) + "/*.*").c_str(),
                               ENUM_RECURSIVE | ENUM_FOLDERS | ENUM_NO_HIDDEN);
    unsigned cores = std::max(1u, std::thread::hardware_concurrency());

    std::vector<double> parallel;
    std::vector<double> single;
    std::vector<double> parallelCpu;
    std::vector<double> singleCpu;
    for (int round = 0; round < rounds; ++round) {
        Timing timing = BuildOnce(root, out + "/parallel/Book.htm", 0);
        parallel.push_back(timing.wall);
        parallelCpu.push_back(timing.cpu);
        timing = BuildOnce(root, out + "/single/Book.htm", 1);
        single.push_back(timing.wall);
        singleCpu.push_back(timing.cpu);
    }
    int files = 0;
    bool isSame = SameOutput(out + "/parallel", out + "/single", files);
    printf("folders:             %d\n", count);
    printf("all cores (%u):       %.2f s wall, %.2f s CPU\n", cores, Median(parallel),
           Median(parallelCpu));
    printf("one thread:          %.2f s wall, %.2f s CPU\n", Median(single), Median(singleCpu));
    printf("speed-up:            %.2f\n", Median(single) / Median(parallel));
    printf("identical output:    %s (%d files compared)\n", isSame ? "yes" : "NO", files);
    return isSame ? 0 : 1;
}
