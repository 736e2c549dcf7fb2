// Hostile folder trees made in a test's own folder: a chain of folders far
// deeper than the system's path limit, built and removed with descriptors
// relative to the level above (no path is ever spelled out whole), and a
// bounded run of a command under a time limit.
#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

// Where a test makes a tree of many thousand folders: /dev/shm when it is a
// memory file system the test may write, where making and removing them
// takes a blink, else the system's temporary folder.
inline std::string ManyFoldersParent() {
    return access("/dev/shm", W_OK) == 0 ? std::string("/dev/shm") : std::string("/tmp");
}

// Makes levels folders named name one inside the other below folder; at
// every level in fileLevels (counted from 1 at the top), an empty file
// fileName is made in that level's folder. False when a step fails.
inline bool MakeDeepChain(const std::string& folder, const char* name, int levels,
                          const std::vector<int>& fileLevels = {}, const char* fileName = "") {
    int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    size_t nextFile = 0;
    for (int level = 1; fd >= 0 && level <= levels; ++level) {
        if (mkdirat(fd, name, 0755) != 0) {
            close(fd);
            return false;
        }
        int child = openat(fd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(fd);
        fd = child;
        if (fd >= 0 && nextFile < fileLevels.size() && fileLevels[nextFile] == level) {
            ++nextFile;
            int file = openat(fd, fileName, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            if (file >= 0) {
                close(file);
            }
        }
    }
    if (fd < 0) {
        return false;
    }
    close(fd);
    return true;
}

// Removes a chain made by MakeDeepChain (and any files in it) from the
// bottom up; std::filesystem::remove_all would need the whole path.
inline void RemoveDeepChain(const std::string& folder, const char* name) {
    std::vector<int> fds;
    int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (fd >= 0) {
        fds.push_back(fd);
        fd = openat(fd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fds.size() > 900 && fd >= 0) {
            // Keep descriptors few: close all but the last two levels.
            for (size_t i = 0; i + 1 < fds.size(); ++i) {
                close(fds[i]);
            }
            fds.erase(fds.begin(), fds.end() - 1);
            fds.push_back(fd);
            fd = openat(fd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        }
    }
    // Empty the deepest folder, then climb through ".." removing each.
    int here = fds.back();
    for (size_t i = 0; i + 1 < fds.size(); ++i) {
        close(fds[i]);
    }
    for (;;) {
        // Files of this level (only ones the test made, without folders).
        if (DIR* dir = fdopendir(dup(here))) {
            std::vector<std::string> names;
            while (struct dirent* item = readdir(dir)) {
                std::string entry = item->d_name;
                if (entry != "." && entry != ".." && entry != name) {
                    names.push_back(entry);
                }
            }
            closedir(dir);
            for (const std::string& entry : names) {
                unlinkat(here, entry.c_str(), 0);
            }
        }
        unlinkat(here, name, AT_REMOVEDIR);
        struct stat top;
        struct stat now;
        if (stat(folder.c_str(), &top) != 0 || fstat(here, &now) != 0 ||
            (top.st_ino == now.st_ino && top.st_dev == now.st_dev)) {
            close(here);
            return;
        }
        int up = openat(here, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(here);
        if (up < 0) {
            return;
        }
        here = up;
    }
}

struct BoundedRun {
    int status = -1;      // exit status, or -1 when killed or out of time
    double seconds = 0;   // how long it ran
    long maxResidentKb = 0; // of the largest child so far
};

// Runs a shell command line (a program and its arguments, redirections
// allowed) with a time limit (the coreutils timeout), returning its status,
// time and the peak memory of the children so far.
inline BoundedRun RunBounded(const std::string& command, int limitSeconds) {
    auto start = std::chrono::steady_clock::now();
    // timeout starts the command's first word; the shell keeps the rest.
    std::string bounded = "timeout -s KILL " + std::to_string(limitSeconds) + " " + command;
    int result = std::system(bounded.c_str());
    BoundedRun run;
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    run.status = WIFEXITED(result) && WEXITSTATUS(result) < 124 ? WEXITSTATUS(result) : -1;
    struct rusage usage;
    if (getrusage(RUSAGE_CHILDREN, &usage) == 0) {
        run.maxResidentKb = usage.ru_maxrss;
    }
    return run;
}
