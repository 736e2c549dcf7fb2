// Lists a whole tree with SDisk::Enumerate (recursive, folders and files,
// hidden included, every entry kept in an SStringArray) and prints the
// number of entries found, plus the time of the listing itself.
//
//   bench_enumerate ROOT
//
// Output, one line: "<entries> <milliseconds>".
#include <chrono>
#include <cstdio>
#include <cstring>

#include "foundation/array.h"
#include "foundation/disk.h"

int main(int argc, char** argv) {
    if (argc != 2 || argv[1][0] == 0) {
        fprintf(stderr, "usage: bench_enumerate ROOT\n");
        return 2;
    }
    SString pattern(argv[1]);
    if (argv[1][strlen(argv[1]) - 1] != '/') {
        pattern += "/";
    }
    pattern += "*";

    auto start = std::chrono::steady_clock::now();
    SStringArray entries;
    SDisk disk;
    int count =
        disk.Enumerate(&entries, pattern.c_str(), ENUM_RECURSIVE | ENUM_FOLDERS | ENUM_FILES);
    auto end = std::chrono::steady_clock::now();
    double milliseconds = std::chrono::duration<double, std::milli>(end - start).count();
    printf("%d %.1f\n", count, milliseconds);
    return count == entries.GetCount() ? 0 : 1;
}
