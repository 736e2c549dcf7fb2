// The melkora-cli jobs of the generated pages: "pages", "page",
// "describe-line", "book" and "zip-book". Each runs through the same code
// as the desktop command it stands for.
#pragma once

#include <cstdio>

// One job of the command line: its name, its usage text (one or more lines,
// each ending in "\n") and its entry. run receives the arguments after the
// job's name and returns the exit status: 0 done, 1 failed (the reason on
// stderr), 2 usage error.
struct PCliJob {
    const char* name;
    const char* usage;
    int (*run)(int argc, char** argv);
};

// The jobs of this front, and their number.
const PCliJob* GetPagesJobs(int* count);
// Writes the usage of every job.
void PrintPagesUsage(FILE* out);
// The job called name, or null.
const PCliJob* FindPagesJob(const char* name);
