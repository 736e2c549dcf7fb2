// melkora-cli: the program's jobs without a window, for scripts, cron lines
// and tests. Each job runs the same library code as the desktop program's
// command; this file only reads the arguments and prints the results.
//
// Exit status: 0 on success, 1 when the job ran and failed (one line on
// stderr starting "melkora-cli: "), 2 on a usage error (the usage on stderr).
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "app/cli/cli_definition.h"
#include "app/cli/cli_demo.h"
#include "app/cli/cli_pages.h"
#include "app/cli/cli_play.h"
#include "foundation/array.h"
#include "foundation/disk.h"
#include "library/playlist.h"
#include "library/statistics.h"

namespace {

constexpr int EXIT_OK = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

constexpr const char* USAGE =
    "usage: melkora-cli JOB [ARGUMENTS]\n"
    "\n"
    "Jobs:\n"
    "  stats ROOT [--purge]            counts songs, videos and radios of every folder;\n"
    "                                  prints each folder's path and counts (tab separated),\n"
    "                                  then the totals; --purge then deletes empty ini files\n"
    "  playlist ROOT list              lists the playlists of ROOT/Playlists\n"
    "  playlist ROOT show NAME         prints the entries of one playlist\n"
    "  playlist ROOT add NAME PATH...  appends files (absolute paths under ROOT) and saves\n"
    "  play PATH... [--repeat] [--shuffle] [--sink fake]\n"
    "                                  plays the files in order; prints open, end,\n"
    "                                  skip and stop as they happen\n"
    "  definition FILE                 reads a dialog, menu, toolbar, tree or table\n"
    "                                  definition (its kind from the first line) and\n"
    "                                  writes it back through the program's writer\n"
    "  demo DIR                        makes a demo collection in DIR (new or empty):\n"
    "                                  genres, artists and albums with covers, texts,\n"
    "                                  a playlist, short songs and a video\n"
    "\n"
    "Options:\n"
    "  --help                          prints this text (or a job's usage)\n"
    "  --version                       prints the program's version\n"
    "  --images \"A;B\"                  shared cover names (accepted by every job)\n";

constexpr const char* STATS_USAGE = "usage: melkora-cli stats ROOT [--purge]\n";
constexpr const char* PLAYLIST_USAGE = "usage: melkora-cli playlist ROOT list\n"
                                       "       melkora-cli playlist ROOT show NAME\n"
                                       "       melkora-cli playlist ROOT add NAME PATH...\n";

int Usage(const char* text) {
    fputs(text, stderr);
    return EXIT_USAGE;
}

int Fail(const std::string& reason) {
    fprintf(stderr, "melkora-cli: %s\n", reason.c_str());
    return EXIT_FAILED;
}

bool IsHelp(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            return true;
        }
    }
    return false;
}

// Takes out the options every job accepts; false on a bad one.
bool TakeCommonOptions(std::vector<std::string>& arguments) {
    std::vector<std::string> kept;
    for (size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--images") {
            if (i + 1 >= arguments.size()) {
                return false;
            }
            ++i; // no job of this program reads covers yet
            continue;
        }
        kept.push_back(arguments[i]);
    }
    arguments = kept;
    return true;
}

bool CheckRoot(const std::string& root, std::string& reason) {
    if (root.empty() || !SDisk().IsFolder(root.c_str())) {
        reason = "not a folder: " + root;
        return false;
    }
    return true;
}

int RunStats(std::vector<std::string> arguments) {
    if (IsHelp(arguments)) {
        fputs(STATS_USAGE, stdout);
        return EXIT_OK;
    }
    bool purge = false;
    std::vector<std::string> positional;
    for (const std::string& argument : arguments) {
        if (argument == "--purge") {
            purge = true;
        } else if (argument.rfind("--", 0) == 0) {
            return Usage(STATS_USAGE);
        } else {
            positional.push_back(argument);
        }
    }
    if (positional.size() != 1) {
        return Usage(STATS_USAGE);
    }
    std::string reason;
    if (!CheckRoot(positional[0], reason)) {
        return Fail(reason);
    }
    PStatsTable table = CountLibrary(positional[0].c_str());
    static char buffer[1 << 16];
    setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));
    for (int i = 0; i < table.GetCount(); ++i) {
        fprintf(stdout, "%s\t%u\t%u\t%u\n", table.paths.GetAt(i)->c_str(),
                unsigned(table.songs[size_t(i)]), unsigned(table.videos[size_t(i)]),
                unsigned(table.radios[size_t(i)]));
    }
    fprintf(stdout, "%s\n", table.FormatTotals().c_str());
    if (fflush(stdout) != 0) {
        return Fail("cannot write the result");
    }
    if (purge) {
        PurgeEmptyIni(positional[0].c_str());
    }
    return EXIT_OK;
}

int RunPlaylist(std::vector<std::string> arguments) {
    if (IsHelp(arguments)) {
        fputs(PLAYLIST_USAGE, stdout);
        return EXIT_OK;
    }
    if (arguments.size() < 2) {
        return Usage(PLAYLIST_USAGE);
    }
    const std::string& root = arguments[0];
    const std::string& action = arguments[1];
    bool valid = (action == "list" && arguments.size() == 2) ||
                 (action == "show" && arguments.size() == 3) ||
                 (action == "add" && arguments.size() >= 4);
    if (!valid) {
        return Usage(PLAYLIST_USAGE);
    }
    std::string reason;
    if (!CheckRoot(root, reason)) {
        return Fail(reason);
    }
    PPlaylistStore store;
    store.SetRoot(root.c_str());
    // The listing reads the folder as the panel does, without making a
    // first playlist: a job that lists or reads never writes.
    store.RefreshPlaylists(false);
    if (action == "list") {
        for (const SString* name : store.GetNames()) {
            printf("%s\n", name->c_str());
        }
        return fflush(stdout) == 0 ? EXIT_OK : Fail("cannot write the result");
    }
    const std::string& name = arguments[2];
    if (!store.SelectPlaylist(name.c_str())) {
        return Fail("no playlist named " + name);
    }
    if (!store.LoadPlaylist("")) {
        return Fail("cannot read the playlist " + name);
    }
    if (action == "show") {
        for (const SString* entry : store.GetEntries()) {
            printf("%s\n", entry->c_str());
        }
        return fflush(stdout) == 0 ? EXIT_OK : Fail("cannot write the result");
    }
    SStringArray files;
    for (size_t i = 3; i < arguments.size(); ++i) {
        if (arguments[i].empty() || arguments[i][0] != '/') {
            return Fail("not an absolute path: " + arguments[i]);
        }
        if (store.GetEntryFor(arguments[i].c_str()).IsEmpty()) {
            return Fail("not a file under the root " + root + ": " + arguments[i]);
        }
        files.Add(arguments[i].c_str());
    }
    // Reads the playlist again under its lock, so that adds running at the
    // same time in other processes are all kept.
    if (!store.AppendFilesAndSave(files)) {
        return Fail("cannot save the playlist " + name);
    }
    return EXIT_OK;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) {
        Usage(USAGE);
        PrintPagesUsage(stderr);
        return EXIT_USAGE;
    }
    std::string job = arguments.front();
    arguments.erase(arguments.begin());
    if (job == "--help" || job == "-h") {
        fputs(USAGE, stdout);
        PrintPagesUsage(stdout);
        return EXIT_OK;
    }
    if (job == "--version") {
        printf("melkora-cli %s\n", MELKORA_VERSION);
        return EXIT_OK;
    }
    // The jobs of the generated pages read their own arguments.
    if (const PCliJob* pagesJob = FindPagesJob(job.c_str())) {
        return pagesJob->run(argc - 2, argv + 2);
    }
    if (job == "play") {
        return RunPlayJob(argc - 2, argv + 2);
    }
    if (job == "definition") {
        return RunDefinitionJob(argc - 2, argv + 2);
    }
    if (job == "demo") {
        return RunDemoJob(argc - 2, argv + 2);
    }
    if (!TakeCommonOptions(arguments)) {
        return Usage(USAGE);
    }
    if (job == "stats") {
        return RunStats(arguments);
    }
    if (job == "playlist") {
        return RunPlaylist(arguments);
    }
    Usage(USAGE);
    PrintPagesUsage(stderr);
    return EXIT_USAGE;
}
