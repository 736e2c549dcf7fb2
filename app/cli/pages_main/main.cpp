// A stand-in entry for melkora-cli while the program carries only the
// jobs of the generated pages: it dispatches to them by name. The
// program's own entry takes their table over (app/cli/cli_pages.h).
#include <cstdio>
#include <cstring>

#include "app/cli/cli_pages.h"

namespace {

void PrintUsage(FILE* out) {
    fputs("usage: melkora-cli JOB ARGS...   (melkora-cli JOB --help tells more)\n", out);
    int count = 0;
    const PCliJob* jobs = GetPagesJobs(&count);
    for (int i = 0; i < count; ++i) {
        fputs(jobs[i].usage, out);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        PrintUsage(stderr);
        return 2;
    }
    if (strcmp(argv[1], "--help") == 0 || strcmp(argv[1], "-h") == 0) {
        PrintUsage(stdout);
        return 0;
    }
    const PCliJob* job = FindPagesJob(argv[1]);
    if (job == nullptr) {
        fprintf(stderr, "melkora-cli: unknown job: %s\n", argv[1]);
        PrintUsage(stderr);
        return 2;
    }
    return job->run(argc - 2, argv + 2);
}
